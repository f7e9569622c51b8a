// Test-only control of the allocator. Not part of the public interface: the
// shared library does not export these.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/alloc.h"

namespace kt::mem::testing {

// Blocks currently live for a module (large blocks included).
std::int64_t LiveBlocks(Module module);
std::int64_t LiveBlocksTotal();

// Allocations attempted since the counter was last reset.
std::int64_t AllocationCount();
void ResetAllocationCount();

// Makes the n-th allocation from now (1-based) fail; 0 disables.
void FailNthAllocation(std::int64_t n);
// True once the armed failure has fired.
bool FailureFired();

// Where the most recent allocation came from (module and line).
struct Site {
    Module module;
    int line;
};
Site LastAllocationSite();

}  // namespace kt::mem::testing
