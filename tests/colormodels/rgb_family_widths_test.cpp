// The vectorized kernels convert rows in chunks with a short last chunk:
// every width from 1 to 100, paddings 0 to 5 on either side, both RGB
// orders and in-place conversion, on random pixels, against the reference.
// Padding bytes stay as they were.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using RgbFamilyWidths = test::AtEveryLevel;

using ref::Px3;
constexpr int kHeight = 3;
constexpr int kMaxWidth = 100;
constexpr int kMaxPad = 5;
constexpr std::uint8_t kFill = 0xA5;

// A reference pixel: reads srcBytes bytes, writes dstBytes bytes; pixels are
// in the RGB flag's order on the RGB side.
using RefPixel = void (*)(const std::uint8_t* in, std::uint8_t* out, int order);

// Bytes and reference are per group of `group` pixels (a 4:2:2 pair).
struct Case {
    const char* name;
    color::Kernel kernel;
    int srcBytes, dstBytes;
    RefPixel ref;
    int black = 0;
    int group = 1;
};

Px3 Rgb(const std::uint8_t* p, int order) { return order ? Px3{p[0], p[1], p[2]} : Px3{p[2], p[1], p[0]}; }
void PutRgb(const Px3& c, std::uint8_t* p, int order) {
    p[order ? 0 : 2] = c[0];
    p[1] = c[1];
    p[order ? 2 : 0] = c[2];
}
void Put3(const Px3& c, std::uint8_t* p) { p[0] = c[0], p[1] = c[1], p[2] = c[2]; }

template <Px3 (*F)(int, int, int)>
void FromRgb(const std::uint8_t* in, std::uint8_t* out, int order) {
    const Px3 c = Rgb(in, order);
    Put3(F(c[0], c[1], c[2]), out);
}
template <Px3 (*F)(int, int, int)>
void ToRgb(const std::uint8_t* in, std::uint8_t* out, int order) {
    PutRgb(F(in[0], in[1], in[2]), out, order);
}

// Runs one case over the whole grid of widths, paddings and orders; the
// source's pixels are random, the destination's padding a fill byte.
void Check(const Case& c, std::mt19937& rng, const std::function<void(std::uint8_t*, int)>& shape = nullptr) {
    int bad = 0;
    std::string first;
    for (int width = c.group; width <= kMaxWidth; width += c.group)
        for (int srcPad = 0; srcPad <= kMaxPad; ++srcPad)
            for (int dstPad = 0; dstPad <= kMaxPad; ++dstPad)
                for (int order : {1, 0}) {
                    const int units = width / c.group;
                    const int srcStride = units * c.srcBytes + srcPad, dstStride = units * c.dstBytes + dstPad;
                    std::vector<std::uint8_t> src(static_cast<std::size_t>(srcStride) * kHeight);
                    for (auto& b : src) b = static_cast<std::uint8_t>(rng());
                    if (shape)
                        for (int y = 0; y < kHeight; ++y)
                            for (int x = 0; x < units; ++x) shape(&src[y * srcStride + x * c.srcBytes], order);
                    std::vector<std::uint8_t> want(static_cast<std::size_t>(dstStride) * kHeight, kFill);
                    for (int y = 0; y < kHeight; ++y)
                        for (int x = 0; x < units; ++x)
                            c.ref(&src[y * srcStride + x * c.srcBytes], &want[y * dstStride + x * c.dstBytes], order);
                    std::vector<std::uint8_t> got(want.size(), kFill);
                    const KtStatus status = c.kernel(src.data(), got.data(), width, kHeight, srcPad, dstPad, c.black, order);
                    bool ok = status == STATUS_OK && got == want;
                    if (c.srcBytes == c.dstBytes && srcPad == dstPad) {
                        // In place: the padding keeps the source's bytes.
                        std::vector<std::uint8_t> inPlace = src, wantInPlace = src;
                        for (int y = 0; y < kHeight; ++y)
                            std::copy_n(&want[y * dstStride], units * c.dstBytes, &wantInPlace[y * dstStride]);
                        ok = ok && c.kernel(inPlace.data(), inPlace.data(), width, kHeight, srcPad, dstPad, c.black, order) ==
                                       STATUS_OK;
                        ok = ok && inPlace == wantInPlace;
                    }
                    if (!ok && bad++ == 0)
                        first = "width " + std::to_string(width) + " pads " + std::to_string(srcPad) + "/" +
                                std::to_string(dstPad) + " order " + std::to_string(order);
                }
    EXPECT_EQ(bad, 0) << c.name << ", first: " << first;
}

template <int P>
void RgbToCmykRef(const std::uint8_t* in, std::uint8_t* out, int order) {
    const Px3 c = Rgb(in, order);
    const ref::Px4 k = ref::RgbToCmyk(c[0], c[1], c[2], P);
    std::copy(k.begin(), k.end(), out);
}
template <int P>
void CmykToRgbRef(const std::uint8_t* in, std::uint8_t* out, int order) {
    PutRgb(ref::CmykToRgb(in[0], in[1], in[2], in[3], P), out, order);
}

// Black values on each path: no removal or restoration, the usual ones,
// and a removal too large for an int.
TEST_P(RgbFamilyWidths, Cmyk) {
    std::mt19937 rng(4242);
    const Case cases[] = {
        {"rgb->cmyk 175", color::RgbToCmyk, 3, 4, RgbToCmykRef<175>, 175},
        {"rgb->cmyk 500", color::RgbToCmyk, 3, 4, RgbToCmykRef<500>, 500},
        {"rgb->cmyk 1000", color::RgbToCmyk, 3, 4, RgbToCmykRef<1000>, 1000},
        {"rgb->cmyk 65536", color::RgbToCmyk, 3, 4, RgbToCmykRef<65536>, 65536},
        {"rgb->cmyk -5000", color::RgbToCmyk, 3, 4, RgbToCmykRef<-5000>, -5000},
        {"cmyk->rgb 175", color::CmykToRgb, 4, 3, CmykToRgbRef<175>, 175},
        {"cmyk->rgb 600", color::CmykToRgb, 4, 3, CmykToRgbRef<600>, 600},
        {"cmyk->rgb 1000", color::CmykToRgb, 4, 3, CmykToRgbRef<1000>, 1000},
        {"cmyk->rgb 5000", color::CmykToRgb, 4, 3, CmykToRgbRef<5000>, 5000},
    };
    for (const Case& c : cases) Check(c, rng);
}

template <int Y0, int U, int Y1, int V>
void Yuv422Ref(const std::uint8_t* in, std::uint8_t* out, int order) {
    PutRgb(ref::PackedToRgb(in[Y0], in[U], in[V]), out, order);
    PutRgb(ref::PackedToRgb(in[Y1], in[U], in[V]), out + 3, order);
}
void RgbTo444Ref(const std::uint8_t* in, std::uint8_t* out, int order) {
    const Px3 c = Rgb(in, order);
    const auto code = ref::RgbToRgb444(c[0], c[1], c[2]);
    std::copy(code.begin(), code.end(), out);
}
void Rgb444ToRgbRef(const std::uint8_t* in, std::uint8_t* out, int order) {
    PutRgb(ref::Rgb444ToRgb(in[0], in[1]), out, order);
}

// Pixels of other sizes: the padding stays, and RGB to 4-bit RGB (which
// shrinks the row) converts in place with equal paddings.
TEST_P(RgbFamilyWidths, PackedSpaces) {
    std::mt19937 rng(4422);
    const Case cases[] = {
        {"yuyv->rgb", color::YuyvToRgb, 4, 6, Yuv422Ref<0, 1, 2, 3>, 0, 2},
        {"uyvy->rgb", color::UyvyToRgb, 4, 6, Yuv422Ref<1, 0, 3, 2>, 0, 2},
        {"rgb->rgb444", color::RgbToRgb444, 3, 2, RgbTo444Ref},
        {"rgb444->rgb", color::Rgb444ToRgb, 2, 3, Rgb444ToRgbRef},
    };
    for (const Case& c : cases) Check(c, rng);
}

bool HlsPixel(const std::uint8_t* in, std::uint8_t* out, int order) {
    Px3 c{};
    if (!ref::HlsToRgb(in[0], in[1], in[2], &c)) return false;
    PutRgb(c, out, order);
    return true;
}
void HlsToRgbRef(const std::uint8_t* in, std::uint8_t* out, int order) { HlsPixel(in, out, order); }

TEST_P(RgbFamilyWidths, ThreeByteSpaces) {
    std::mt19937 rng(12345);
    const Case cases[] = {
        {"rgb->hsv", color::RgbToHsv, 3, 3, FromRgb<ref::RgbToHsv>},
        {"hsv->rgb", color::HsvToRgb, 3, 3, ToRgb<ref::HsvToRgb>},
        {"rgb->hls", color::RgbToHls, 3, 3, FromRgb<ref::RgbToHls>},
        {"rgb->hsi", color::RgbToHsi, 3, 3, FromRgb<ref::RgbToHsi>},
        {"hsi->rgb", color::HsiToRgb, 3, 3, ToRgb<ref::HsiToRgb>},
        {"rgb->yuv", color::RgbToYuv, 3, 3, FromRgb<ref::RgbToYuv>},
        {"yuv->rgb", color::YuvToRgb, 3, 3, ToRgb<ref::YuvToRgb>},
        {"rgb->yiq", color::RgbToYiq, 3, 3, FromRgb<ref::RgbToYiq>},
        {"yiq->rgb", color::YiqToRgb, 3, 3, ToRgb<ref::YiqToRgb>},
        {"rgb->ycbcr", color::RgbToYcbcr, 3, 3, FromRgb<ref::RgbToYcbcr>},
        {"ycbcr->rgb", color::YcbcrToRgb, 3, 3, ToRgb<ref::YcbcrToRgb>},
    };
    for (const Case& c : cases) Check(c, rng);
    // HLS to RGB rejects a hue without saturation: such pixels get one.
    Check({"hls->rgb", color::HlsToRgb, 3, 3, HlsToRgbRef}, rng, [](std::uint8_t* p, int) {
        if (p[2] == 0) p[2] = 1;
    });
}

// A hue without saturation stops HLS to RGB at that pixel in any row
// position: the pixels before it converted, everything after untouched.
TEST_P(RgbFamilyWidths, HlsRejectedPixelAnywhere) {
    std::mt19937 rng(777);
    for (int width = 1; width <= 70; ++width)
        for (int at = 0; at < width; ++at) {
            std::vector<std::uint8_t> src(3 * width);
            for (auto& b : src) b = static_cast<std::uint8_t>(rng() | 1);
            src[3 * at] = 9;
            src[3 * at + 2] = 0;
            std::vector<std::uint8_t> got(src.size(), kFill), want(src.size(), kFill);
            for (int x = 0; x < at; ++x) ASSERT_TRUE(HlsPixel(&src[3 * x], &want[3 * x], 1));
            ASSERT_EQ(color::HlsToRgb(src.data(), got.data(), width, 1, 0, 0, 0, 1), ERR_INVALID_TAG);
            ASSERT_EQ(got, want) << "width " << width << " at " << at;
        }
}

KT_AT_EVERY_LEVEL(RgbFamilyWidths);

}  // namespace
}  // namespace kt
