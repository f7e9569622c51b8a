// The allocator's failure control, on which every allocation-failure table
// relies, and sizes that would wrap its block header.
#include "platform/alloc.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/alloc_control.h"

namespace kt {
namespace {

using mem::Module;
namespace ctl = mem::testing;

// Only the chosen allocation fails, and a failed realloc leaves its block.
TEST(Allocator, FailsTheChosenAllocationOnly) {
    const auto before = ctl::LiveBlocks(Module::iccsave);
    ctl::FailNthAllocation(3);
    void* a = mem::Alloc(10, Module::iccsave, __LINE__);
    void* b = mem::AllocZero(64, Module::iccsave, __LINE__);
    EXPECT_FALSE(ctl::FailureFired());
    EXPECT_EQ(mem::Realloc(a, 100000, Module::iccsave, __LINE__), nullptr);
    EXPECT_TRUE(ctl::FailureFired() && a && b && ctl::LiveBlocks(Module::iccsave) == before + 2);
    mem::Free(a, Module::iccsave, __LINE__);
    mem::Free(b, Module::iccsave, __LINE__);
    EXPECT_EQ(ctl::LiveBlocks(Module::iccsave), before);
    EXPECT_EQ(mem::Alloc(SIZE_MAX, Module::iccload, __LINE__), nullptr);
    EXPECT_EQ(mem::AllocZero(SIZE_MAX - 8, Module::iccload, __LINE__), nullptr);
    ctl::FailNthAllocation(0);
}

}  // namespace
}  // namespace kt
