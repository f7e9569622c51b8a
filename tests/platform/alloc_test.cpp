#include "platform/alloc.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/alloc_control.h"

namespace kt {
namespace {

using mem::Module;
namespace ctl = mem::testing;

// The live-block counts every leak check relies on, per module; a grown
// block keeps its bytes.
TEST(Allocator, CountsLiveBlocksPerModule) {
    const auto icc = ctl::LiveBlocks(Module::iccprofile), save = ctl::LiveBlocks(Module::iccsave);
    void* a = mem::Alloc(10, Module::iccprofile, __LINE__);
    void* b = mem::AllocZero(64, Module::iccsave, __LINE__);
    void* c = mem::AllocLarge(1 << 20, Module::iccprofile, __LINE__);
    ASSERT_TRUE(a && b && c);
    EXPECT_TRUE(ctl::LiveBlocks(Module::iccprofile) == icc + 2 && ctl::LiveBlocks(Module::iccsave) == save + 1);
    EXPECT_EQ(std::memcmp(b, std::string(64, '\0').data(), 64), 0);
    std::memset(a, 0x5a, 10);
    a = mem::Realloc(a, 100000, Module::iccprofile, __LINE__);
    ASSERT_TRUE(a);
    EXPECT_EQ(static_cast<unsigned char*>(a)[9], 0x5a);
    EXPECT_EQ(ctl::LiveBlocks(Module::iccprofile), icc + 2);
    mem::Free(a, Module::iccprofile, __LINE__);
    mem::Free(b, Module::iccsave, __LINE__);
    mem::FreeLarge(c, Module::iccprofile, __LINE__);
    mem::Free(nullptr, Module::ktclr, __LINE__);
    EXPECT_TRUE(ctl::LiveBlocks(Module::iccprofile) == icc && ctl::LiveBlocks(Module::iccsave) == save);
    EXPECT_EQ(mem::Alloc(SIZE_MAX, Module::iccload, __LINE__), nullptr);
    EXPECT_EQ(mem::AllocZero(SIZE_MAX - 8, Module::iccload, __LINE__), nullptr);
}

// Only the chosen allocation fails; a failed realloc leaves the block alone.
TEST(Allocator, FailsTheNthAllocation) {
    ctl::FailNthAllocation(3);
    void* a = mem::Alloc(8, Module::ktclr, __LINE__);
    void* b = mem::Alloc(8, Module::ktclr, __LINE__);
    EXPECT_FALSE(ctl::FailureFired());
    void* c = mem::Alloc(8, Module::ktclr, __LINE__);
    void* d = mem::Alloc(8, Module::ktclr, __LINE__);
    EXPECT_TRUE(ctl::FailureFired() && a && b && d && !c);
    EXPECT_TRUE(ctl::LastAllocationSite().module == Module::ktclr && ctl::LastAllocationSite().line > 0);
    ctl::FailNthAllocation(1);
    EXPECT_EQ(mem::Realloc(a, 400, Module::ktclr, __LINE__), nullptr);
    ctl::FailNthAllocation(0);
    for (void* p : {a, b, d}) mem::Free(p, Module::ktclr, __LINE__);
}

}  // namespace
}  // namespace kt
