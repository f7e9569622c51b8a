// Runs an operation once per allocation it makes, failing that allocation,
// and checks that every module's live-block count comes back where it was.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/alloc_control.h"

namespace kt::test {

struct LiveCounts {
    std::int64_t perModule[static_cast<int>(mem::Module::count)];
    static LiveCounts Now();
    bool operator==(const LiveCounts& o) const;
};

// Calls `run` with allocation number n = 1, 2, ... set to fail, until a run
// completes without the failure firing. `run` returns the status it got and
// must undo whatever it made on success; `check(n, status)` judges each
// failing run. Returns the number of allocations of a clean run.
int ForEachAllocationFailure(const std::function<int()>& run, const std::function<void(int n, int status)>& check);

}  // namespace kt::test
