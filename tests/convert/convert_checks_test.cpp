// Vx_ClrConvert: every check in order, the strides and their alignment rule,
// the in-place rule and the identity copy.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "ktclr/convert.h"
#include "support/mapped_memory.h"

namespace kt {
namespace {

using test::MappedPages;
using Access = MappedPages::Access;

struct Handle {
    ClrHandle* h = nullptr;
    Handle(int src, int dst) { EXPECT_EQ(Vx_ClrInit(&h, src, dst, nullptr), STATUS_OK); }
    ~Handle() {
        if (h) Vx_ClrFree(h);
    }
};

TEST(ConvertChecks, InOrder) {
    Handle lab(CS_RGB, CS_LAB);
    std::uint8_t src[64] = {}, dst[64] = {};
    // 1. nulls come before sizes, sizes before alignments.
    EXPECT_EQ(Vx_ClrConvert(nullptr, src, dst, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, nullptr, dst, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, nullptr, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, dst, 0, 1, -1, -1), ERR_BAD_SIZE);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, dst, 1, 0, -1, -1), ERR_BAD_SIZE);
    // 3. alignments before the handle probe.
    MappedPages pages(2, Access::readWrite);
    pages.Protect(1, Access::none);
    auto* unreadable = reinterpret_cast<ClrHandle*>(pages.data() + pages.page());
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, -1, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, 0, -1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
    // 5. buffers before validation: a readable block that is no live handle.
    std::vector<std::uint8_t> fakeBlock(sizeof(ClrHandle));
    auto* fake = reinterpret_cast<ClrHandle*>(fakeBlock.data());
    std::memcpy(fake, lab.h, sizeof(ClrHandle));
    EXPECT_EQ(Vx_ClrConvert(fake, pages.end() - 2, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(fake, src, dst, 1, 1, 0, 0), ERR_INVALID_COLOR_HANDLE);
    // 7. in place: same space with different alignments is refused.
    Handle same(CS_HSV, CS_HSV);
    EXPECT_EQ(Vx_ClrConvert(same.h, src, src, 2, 2, 4, 0), ERR_SAME_BUFFER);
    EXPECT_EQ(Vx_ClrConvert(same.h, src, src, 2, 2, 4, 4), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvert(same.h, src, src, 2, 2, 0, 0), STATUS_OK);
}

TEST(ConvertChecks, BuffersAreProbedOverTheirStrides) {
    Handle lab(CS_RGB, CS_CMYK);
    MappedPages pages(1, Access::readWrite);
    // Width 3, height 2: rows of 9 and 12 bytes. With both alignments 8 the
    // strides are 16 and 16.
    std::uint8_t other[256] = {};
    // The kernels take the alignments as row padding and probe (row +
    // padding) x height themselves; a buffer that passes the frame's check
    // but not the kernel's gets the kernel's ERR_INVALID_PARAMETER.
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 32, other, 3, 2, 8, 8), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 31, other, 3, 2, 8, 8), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, other, pages.end() - 32, 3, 2, 8, 8), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, other, pages.end() - 31, 3, 2, 8, 8), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 34, other, 3, 2, 8, 8), STATUS_OK);
    // One alignment 0: neither stride is rounded, not even the other side's.
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 18, other, 3, 2, 8, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 17, other, 3, 2, 8, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, other, pages.end() - 24, 3, 2, 0, 8), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, other, pages.end() - 23, 3, 2, 0, 8), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(lab.h, pages.end() - 18, other, 3, 2, 0, 8), STATUS_OK);
    // A read-only destination is refused before anything is written.
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvert(lab.h, other, pages.data(), 3, 2, 0, 0), ERR_BAD_POINTER);
    // The planar layout's rows are sized by its 9 bits per pixel.
    pages.Protect(0, Access::readWrite);
    Handle planar(CS_YUV410_PLANAR, CS_RGB);
    EXPECT_EQ(Vx_ClrConvert(planar.h, pages.end() - 40, other, 4, 8, 0, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvert(planar.h, pages.end() - 39, other, 4, 8, 0, 0), ERR_BAD_POINTER);
}

TEST(ConvertChecks, IdentityCopies) {
    Handle same(CS_XYZ, CS_XYZ);
    std::uint8_t src[48], dst[64];
    for (int i = 0; i < 48; ++i) src[i] = static_cast<std::uint8_t>(i + 1);
    // Alignments 4 and 0: equal unrounded strides, one block.
    std::memset(dst, 0xEE, sizeof dst);
    ASSERT_EQ(Vx_ClrConvert(same.h, src, dst, 3, 4, 4, 0), STATUS_OK);
    EXPECT_EQ(std::memcmp(dst, src, 36), 0);
    EXPECT_EQ(dst[36], 0xEE);
    // Alignments 4 and 8: strides 12 and 16, one row of 9 bytes each.
    std::memset(dst, 0xEE, sizeof dst);
    ASSERT_EQ(Vx_ClrConvert(same.h, src, dst, 3, 3, 4, 8), STATUS_OK);
    for (int y = 0; y < 3; ++y) {
        EXPECT_EQ(std::memcmp(dst + 16 * y, src + 12 * y, 9), 0) << y;
        EXPECT_EQ(dst[16 * y + 9], 0xEE) << y;
    }
    // An identity handle for an id outside the table has no row size.
    ClrHandle* odd = nullptr;
    ASSERT_EQ(Vx_ClrInit(&odd, 200, 200, nullptr), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvert(odd, src, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
    Vx_ClrFree(odd);
}

}  // namespace
}  // namespace kt
