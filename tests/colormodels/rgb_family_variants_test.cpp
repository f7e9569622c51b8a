// The kernels from RGB to YCbCr, YUV and YIQ have one row variant per
// instruction set, and the process runs only the best one. Here every
// variant the processor has is run against the reference: all 2^24 inputs
// in both RGB orders, every width from 1 to 100 with paddings and in place,
// and long grey rows whose every step lies near a whole number (so that each
// step is redone from the double formula and the store of redone steps
// fills).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "colormodels/affine_variants.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using color::Variant;
using ref::Px3;

using test::Name;
using test::VariantKernel;
using test::Variants;
using Forward = Px3 (*)(int, int, int);

struct Case {
    const char* name;
    VariantKernel kernel;
    Forward ref;
};

constexpr Case kCases[] = {
    {"rgb->ycbcr", color::affine::RgbToYcbcrWith, ref::RgbToYcbcr},
    {"rgb->yuv", color::affine::RgbToYuvWith, ref::RgbToYuv},
    {"rgb->yiq", color::affine::RgbToYiqWith, ref::RgbToYiq},
};

// The reference's bytes of pixels read as R, G, B in the flag's order.
void Reference(Forward f, const std::uint8_t* in, std::uint8_t* out, std::int64_t pixels, int order) {
    for (std::int64_t i = 0; i < pixels; ++i, in += 3, out += 3) {
        const Px3 p = order ? f(in[0], in[1], in[2]) : f(in[2], in[1], in[0]);
        std::memcpy(out, p.data(), 3);
    }
}

// Pixels that differ, and the first one as text.
std::int64_t Differ(const std::vector<std::uint8_t>& want, const std::vector<std::uint8_t>& got, std::string& first) {
    std::int64_t bad = 0;
    for (std::size_t i = 0; i < want.size(); i += 3)
        if (std::memcmp(&want[i], &got[i], 3) != 0 && bad++ == 0) first = "pixel " + std::to_string(i / 3);
    return bad;
}

TEST(RgbFamilyVariants, EveryInputEveryVariant) {
    const std::vector<std::uint8_t> in = test::AllTriples();
    const std::int64_t pixels = std::int64_t{1} << 24;
    std::vector<std::uint8_t> want(in.size()), got(in.size());
    for (const Case& c : kCases)
        for (int order : {1, 0}) {
            test::Split2(pixels, [&](std::int64_t a, std::int64_t b) {
                Reference(c.ref, &in[3 * a], &want[3 * a], b - a, order);
            });
            for (Variant v : Variants()) {
                std::fill(got.begin(), got.end(), 0);
                const auto kernel = [&](const std::uint8_t* s, std::uint8_t* d, int w, int h, int sp, int dp, int,
                                        int o) { return c.kernel(v, s, d, w, h, sp, dp, 0, o); };
                KtStatus st[2] = {};
                const int side = test::kAllSide, mid = side / 2;
                const std::size_t half = static_cast<std::size_t>(3) * side * mid;
                test::Split2(2, [&](std::int64_t a, std::int64_t) {
                    st[a] = kernel(in.data() + half * a, got.data() + half * a, side, mid, 0, 0, 0, order);
                });
                EXPECT_EQ(st[0], STATUS_OK);
                EXPECT_EQ(st[1], STATUS_OK);
                std::string first;
                EXPECT_EQ(Differ(want, got, first), 0) << c.name << " " << Name(v) << " order " << order << ", first "
                                                        << first;
            }
        }
}

// Every width, both paddings and orders, in place too; half the pixels grey
// (sums at whole numbers, so that short rows and row ends are redone).
TEST(RgbFamilyVariants, WidthsPaddingsInPlace) {
    constexpr int kHeight = 3, kMaxWidth = 100, kMaxPad = 5;
    constexpr std::uint8_t kFill = 0xA5;
    std::mt19937 rng(2024);
    for (Variant v : Variants())
        for (const Case& c : kCases) {
            int bad = 0;
            std::string first;
            for (int width = 1; width <= kMaxWidth; ++width)
                for (int srcPad = 0; srcPad <= kMaxPad; ++srcPad)
                    for (int dstPad = 0; dstPad <= kMaxPad; ++dstPad)
                        for (int order : {1, 0}) {
                            const int srcStride = 3 * width + srcPad, dstStride = 3 * width + dstPad;
                            std::vector<std::uint8_t> src(static_cast<std::size_t>(srcStride) * kHeight);
                            for (auto& b : src) b = static_cast<std::uint8_t>(rng());
                            for (int y = 0; y < kHeight; ++y)
                                for (int x = 0; x < width; ++x)
                                    if (rng() & 1) {
                                        std::uint8_t* p = &src[y * srcStride + 3 * x];
                                        p[1] = p[2] = p[0];
                                    }
                            std::vector<std::uint8_t> want(static_cast<std::size_t>(dstStride) * kHeight, kFill);
                            for (int y = 0; y < kHeight; ++y)
                                Reference(c.ref, &src[y * srcStride], &want[y * dstStride], width, order);
                            std::vector<std::uint8_t> got(want.size(), kFill);
                            bool ok = c.kernel(v, src.data(), got.data(), width, kHeight, srcPad, dstPad, 0, order) ==
                                          STATUS_OK &&
                                      got == want;
                            if (srcPad == dstPad) {
                                // In place: the padding keeps the source's bytes.
                                std::vector<std::uint8_t> inPlace = src, wantInPlace = src;
                                for (int y = 0; y < kHeight; ++y)
                                    std::copy_n(&want[y * dstStride], 3 * width, &wantInPlace[y * dstStride]);
                                ok = ok && c.kernel(v, inPlace.data(), inPlace.data(), width, kHeight, srcPad, dstPad,
                                                    0, order) == STATUS_OK;
                                ok = ok && inPlace == wantInPlace;
                            }
                            if (!ok && bad++ == 0)
                                first = "width " + std::to_string(width) + " pads " + std::to_string(srcPad) + "/" +
                                        std::to_string(dstPad) + " order " + std::to_string(order);
                        }
            EXPECT_EQ(bad, 0) << c.name << " " << Name(v) << ", first: " << first;
        }
}

// Long rows of grey pixels with a few random ones: nearly every step is
// redone, many more than the redo store holds, converted apart and in place.
TEST(RgbFamilyVariants, LongRowsRedone) {
    constexpr int kWidth = 3001, kHeight = 4;
    std::mt19937 rng(99);
    std::vector<std::uint8_t> src(static_cast<std::size_t>(3) * kWidth * kHeight);
    for (std::size_t i = 0; i < src.size(); i += 3) {
        const auto grey = static_cast<std::uint8_t>(rng());
        src[i] = src[i + 1] = src[i + 2] = grey;
        if (rng() % 97 == 0) src[i + 1] = static_cast<std::uint8_t>(rng());
    }
    for (Variant v : Variants())
        for (const Case& c : kCases)
            for (int order : {1, 0}) {
                std::vector<std::uint8_t> want(src.size()), got(src.size());
                Reference(c.ref, src.data(), want.data(), std::int64_t{kWidth} * kHeight, order);
                ASSERT_EQ(c.kernel(v, src.data(), got.data(), kWidth, kHeight, 0, 0, 0, order), STATUS_OK);
                std::string first;
                EXPECT_EQ(Differ(want, got, first), 0) << c.name << " " << Name(v) << " order " << order << ", "
                                                        << first;
                std::vector<std::uint8_t> inPlace = src;
                ASSERT_EQ(c.kernel(v, inPlace.data(), inPlace.data(), kWidth, kHeight, 0, 0, 0, order), STATUS_OK);
                EXPECT_EQ(Differ(want, inPlace, first), 0) << c.name << " " << Name(v) << " in place, order " << order
                                                           << ", " << first;
            }
}

}  // namespace
}  // namespace kt
