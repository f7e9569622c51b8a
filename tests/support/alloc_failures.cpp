#include "support/alloc_failures.h"

#include <gtest/gtest.h>

namespace kt::test {

LiveCounts LiveCounts::Now() {
    LiveCounts c{};
    for (int m = 0; m < static_cast<int>(mem::Module::count); ++m)
        c.perModule[m] = mem::testing::LiveBlocks(static_cast<mem::Module>(m));
    return c;
}

bool LiveCounts::operator==(const LiveCounts& o) const {
    for (int m = 0; m < static_cast<int>(mem::Module::count); ++m)
        if (perModule[m] != o.perModule[m]) return false;
    return true;
}

int ForEachAllocationFailure(const std::function<int()>& run, const std::function<void(int, int)>& check) {
    for (int n = 1; n < 100000; ++n) {
        const LiveCounts before = LiveCounts::Now();
        mem::testing::FailNthAllocation(n);
        const int status = run();
        const bool fired = mem::testing::FailureFired();
        mem::testing::FailNthAllocation(0);
        if (!fired) return n - 1;
        check(n, status);
        EXPECT_TRUE(LiveCounts::Now() == before) << "blocks leaked when allocation " << n << " failed";
    }
    ADD_FAILURE() << "operation never completed";
    return -1;
}

}  // namespace kt::test
