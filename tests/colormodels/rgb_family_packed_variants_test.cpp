// Packed 4:2:2 to RGB and 4-bit RGB both ways have one row variant per
// instruction set, and the process runs only the best one. Here every
// variant the processor has is run against the reference: every (Y, U, V)
// of both 4:2:2 layouts, every 4-bit RGB code, every 24-bit RGB value, in
// both RGB orders; then every width from 1 to 100 with paddings, odd 4:2:2
// widths, and RGB to 4-bit RGB in place.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "colormodels/packed_variants.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using color::Variant;
using ref::Px3;

using test::Name;
using test::VariantKernel;
using test::Variants;
// The reference over one unpadded row.
using RefRow = void (*)(const std::uint8_t*, std::uint8_t*, std::int64_t width, int order);

void Put(const Px3& p, std::uint8_t* out, int order) {
    out[0] = order ? p[0] : p[2];
    out[1] = p[1];
    out[2] = order ? p[2] : p[0];
}

// Byte positions of Y0, U, Y1, V in a 4-byte group.
template <int Y0, int U, int Y1, int V>
void Yuv422Row(const std::uint8_t* in, std::uint8_t* out, std::int64_t width, int order) {
    for (std::int64_t x = 0; x < width; x += 2, in += 4, out += 6) {
        Put(ref::PackedToRgb(in[Y0], in[U], in[V]), out, order);
        Put(ref::PackedToRgb(in[Y1], in[U], in[V]), out + 3, order);
    }
}

void FromRgbRow(const std::uint8_t* in, std::uint8_t* out, std::int64_t width, int order) {
    for (std::int64_t x = 0; x < width; ++x, in += 3, out += 2) {
        const auto c = order ? ref::RgbToRgb444(in[0], in[1], in[2]) : ref::RgbToRgb444(in[2], in[1], in[0]);
        std::memcpy(out, c.data(), 2);
    }
}

void ToRgbRow(const std::uint8_t* in, std::uint8_t* out, std::int64_t width, int order) {
    for (std::int64_t x = 0; x < width; ++x, in += 2, out += 3) Put(ref::Rgb444ToRgb(in[0], in[1]), out, order);
}

struct Case {
    const char* name;
    VariantKernel kernel;
    RefRow ref;
    int srcBytes, dstBytes, group;  // bytes per pixel (two for 4:2:2, per pixel of a pair)
};

constexpr Case kYuyv{"yuyv->rgb", color::packed::YuyvToRgbWith, Yuv422Row<0, 1, 2, 3>, 2, 3, 2};
constexpr Case kUyvy{"uyvy->rgb", color::packed::UyvyToRgbWith, Yuv422Row<1, 0, 3, 2>, 2, 3, 2};
constexpr Case kFrom444{"rgb->rgb444", color::packed::RgbToRgb444With, FromRgbRow, 3, 2, 1};
constexpr Case kTo444{"rgb444->rgb", color::packed::Rgb444ToRgbWith, ToRgbRow, 2, 3, 1};
constexpr Case kCases[] = {kYuyv, kUyvy, kFrom444, kTo444};

// Runs the case over an unpadded image of `pixels` pixels as rows of
// `width`, on two threads, against the reference in both orders.
void ExpectWhole(const Case& c, const std::vector<std::uint8_t>& in, int width) {
    const std::int64_t pixels = static_cast<std::int64_t>(in.size()) / c.srcBytes;
    const int height = static_cast<int>(pixels / width), mid = height / 2;
    const std::size_t srcRows = static_cast<std::size_t>(c.srcBytes) * width * mid;
    const std::size_t dstRows = static_cast<std::size_t>(c.dstBytes) * width * mid;
    std::vector<std::uint8_t> want(static_cast<std::size_t>(c.dstBytes * pixels)), got(want.size());
    for (int order : {1, 0}) {
        test::Split2(2, [&](std::int64_t a, std::int64_t) {
            c.ref(in.data() + srcRows * a, want.data() + dstRows * a, pixels / 2, order);
        });
        for (Variant v : Variants()) {
            std::fill(got.begin(), got.end(), 0);
            KtStatus st[2] = {};
            test::Split2(2, [&](std::int64_t a, std::int64_t) {
                st[a] = c.kernel(v, in.data() + srcRows * a, got.data() + dstRows * a, width,
                                 a == 0 ? mid : height - mid, 0, 0, 0, order);
            });
            EXPECT_EQ(st[0], STATUS_OK);
            EXPECT_EQ(st[1], STATUS_OK);
            const auto bad = std::mismatch(want.begin(), want.end(), got.begin());
            EXPECT_TRUE(bad.first == want.end()) << c.name << " " << Name(v) << " order " << order << ", first at pixel "
                                                 << (bad.first - want.begin()) / c.dstBytes;
        }
    }
}

TEST(RgbFamilyPackedVariants, EveryInputEveryVariant) {
    // 4:2:2: every (U, V), and Y0, Y1 running over all 256 lumas.
    std::vector<std::uint8_t> yuyv(std::size_t{1} << 25), uyvy(yuyv.size());
    for (std::uint32_t g = 0; g < (1u << 23); ++g) {
        const auto y0 = static_cast<std::uint8_t>(2 * (g & 127)), y1 = static_cast<std::uint8_t>(y0 + 1);
        const auto u = static_cast<std::uint8_t>(g >> 7), v = static_cast<std::uint8_t>(g >> 15);
        const std::uint8_t a[4] = {y0, u, y1, v}, b[4] = {u, y0, v, y1};
        std::memcpy(&yuyv[4 * g], a, 4);
        std::memcpy(&uyvy[4 * g], b, 4);
    }
    ExpectWhole(kYuyv, yuyv, test::kAllSide);
    ExpectWhole(kUyvy, uyvy, test::kAllSide);
    yuyv = {};
    uyvy = {};

    std::vector<std::uint8_t> codes(std::size_t{2} << 16);
    for (std::uint32_t i = 0; i < (1u << 16); ++i) {
        codes[2 * i] = static_cast<std::uint8_t>(i);
        codes[2 * i + 1] = static_cast<std::uint8_t>(i >> 8);
    }
    ExpectWhole(kTo444, codes, 256);
    ExpectWhole(kFrom444, test::AllTriples(), test::kAllSide);
}

// Every width, both paddings and orders: the padding bytes stay as they
// were, odd 4:2:2 widths fail with nothing written, and RGB to 4-bit RGB
// (which shrinks the row) converts in place with equal paddings.
TEST(RgbFamilyPackedVariants, WidthsPaddingsInPlace) {
    constexpr int kHeight = 3, kMaxWidth = 100, kMaxPad = 5;
    constexpr std::uint8_t kFill = 0xA5;
    std::mt19937 rng(2025);
    for (Variant v : Variants())
        for (const Case& c : kCases) {
            int bad = 0;
            std::string first;
            for (int width = 1; width <= kMaxWidth; ++width)
                for (int srcPad = 0; srcPad <= kMaxPad; ++srcPad)
                    for (int dstPad = 0; dstPad <= kMaxPad; ++dstPad)
                        for (int order : {1, 0}) {
                            const int srcStride = c.srcBytes * width + srcPad, dstStride = c.dstBytes * width + dstPad;
                            std::vector<std::uint8_t> src(static_cast<std::size_t>(srcStride) * kHeight);
                            for (auto& b : src) b = static_cast<std::uint8_t>(rng());
                            std::vector<std::uint8_t> want(static_cast<std::size_t>(dstStride) * kHeight, kFill);
                            const bool odd = width % c.group != 0;
                            if (!odd)
                                for (int y = 0; y < kHeight; ++y)
                                    c.ref(&src[y * srcStride], &want[y * dstStride], width, order);
                            std::vector<std::uint8_t> got(want.size(), kFill);
                            bool ok = c.kernel(v, src.data(), got.data(), width, kHeight, srcPad, dstPad, 0, order) ==
                                          (odd ? ERR_ODD_WIDTH : STATUS_OK) &&
                                      got == want;
                            if (c.srcBytes > c.dstBytes && srcPad == dstPad) {
                                std::vector<std::uint8_t> inPlace = src, wantInPlace = src;
                                for (int y = 0; y < kHeight; ++y)
                                    std::copy_n(&want[y * dstStride], c.dstBytes * width, &wantInPlace[y * dstStride]);
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

}  // namespace
}  // namespace kt
