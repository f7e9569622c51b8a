// The Lab and XYZ kernels convert rows in chunks with a short last chunk:
// every width from 1 to 70, paddings 0 to 3 on either side, both RGB orders
// and in-place conversion, on random pixels, against the literal reference;
// padding bytes stay as they were; at every instruction-set level. The Lab
// rows against the reference on a grid of inputs, the RGB to Lab rows also
// with the range of t checked, the path of tables that do not bound it.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/lab_engine.h"
#include "colormodels/lab_tables.h"
#include "colormodels/reference/lab_xyz_reference.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using LabXyzWidths = test::AtEveryLevel;

using Bytes = std::vector<std::uint8_t>;
constexpr int kHeight = 3;
constexpr int kMaxWidth = 70;
constexpr int kMaxPad = 3;
constexpr std::uint8_t kFill = 0xA5;

// A reference pixel; `order` is the RGB side's byte order (1: R first).
using RefPixel = void (*)(const std::uint8_t* in, std::uint8_t* out, int order);

template <ktref::Triple (*F)(int, int, int)>
void FromRgb(const std::uint8_t* in, std::uint8_t* out, int order) {
    const ktref::Triple t = order ? F(in[0], in[1], in[2]) : F(in[2], in[1], in[0]);
    std::copy_n(t.v, 3, out);
}

template <ktref::Rgb (*F)(int, int, int)>
void ToRgb(const std::uint8_t* in, std::uint8_t* out, int order) {
    const ktref::Rgb p = F(in[0], in[1], in[2]);
    out[order ? 0 : 2] = p.r;
    out[1] = p.g;
    out[order ? 2 : 0] = p.b;
}

struct Case {
    const char* name;
    color::Kernel kernel;
    RefPixel ref;
};

void Check(const Case& c, std::mt19937& rng) {
    int bad = 0;
    std::string first;
    for (int width = 1; width <= kMaxWidth; ++width)
        for (int srcPad = 0; srcPad <= kMaxPad; ++srcPad)
            for (int dstPad = 0; dstPad <= kMaxPad; ++dstPad)
                for (int order : {1, 0}) {
                    const int srcStride = 3 * width + srcPad, dstStride = 3 * width + dstPad;
                    Bytes src(static_cast<std::size_t>(srcStride) * kHeight);
                    for (auto& b : src) b = static_cast<std::uint8_t>(rng());
                    Bytes want(static_cast<std::size_t>(dstStride) * kHeight, kFill);
                    for (int y = 0; y < kHeight; ++y)
                        for (int x = 0; x < width; ++x)
                            c.ref(&src[y * srcStride + 3 * x], &want[y * dstStride + 3 * x], order);
                    Bytes got(want.size(), kFill);
                    bool ok = c.kernel(src.data(), got.data(), width, kHeight, srcPad, dstPad, 0, order) == STATUS_OK &&
                              got == want;
                    if (srcPad == dstPad) {
                        // In place: the padding keeps the source's bytes.
                        Bytes inPlace = src, wantInPlace = src;
                        for (int y = 0; y < kHeight; ++y)
                            std::copy_n(&want[y * dstStride], 3 * width, &wantInPlace[y * dstStride]);
                        ok = ok && c.kernel(inPlace.data(), inPlace.data(), width, kHeight, srcPad, dstPad, 0, order) ==
                                       STATUS_OK;
                        ok = ok && inPlace == wantInPlace;
                    }
                    if (!ok && bad++ == 0)
                        first = "width " + std::to_string(width) + " pads " + std::to_string(srcPad) + "/" +
                                std::to_string(dstPad) + " order " + std::to_string(order);
                }
    EXPECT_EQ(bad, 0) << c.name << ", first: " << first;
}

TEST_P(LabXyzWidths, EveryWidthPaddingOrderAndInPlace) {
    std::mt19937 rng(2024);
    const Case cases[] = {
        {"rgb->lab", color::RgbToLab, FromRgb<ktref::RgbToLab>},
        {"lab->rgb", color::LabToRgb, ToRgb<ktref::LabToRgb>},
        {"rgb->xyz", color::RgbToXyz, FromRgb<ktref::RgbToXyz>},
        {"xyz->rgb", color::XyzToRgb, ToRgb<ktref::XyzToRgb>},
    };
    for (const Case& c : cases) Check(c, rng);
}

// Every byte triple whose bytes are all multiples of kGridStep or one below,
// plus random ones: the ends of every range and much in between.
constexpr int kGridStep = 5;
constexpr int kRandomPixels = 100000;
Bytes GridAndRandom() {
    std::vector<int> levels;
    for (int v = 0; v <= 255; v += kGridStep) {
        if (v > 0) levels.push_back(v - 1);
        levels.push_back(v);
    }
    Bytes px;
    for (int a : levels)
        for (int b : levels)
            for (int c : levels) px.insert(px.end(), {std::uint8_t(a), std::uint8_t(b), std::uint8_t(c)});
    std::mt19937 rng(77);
    for (int i = 0; i < 3 * kRandomPixels; ++i) px.push_back(static_cast<std::uint8_t>(rng()));
    return px;
}

// Runs a row over the pixels (width as given, so the last chunk is short)
// and counts differences from the reference.
color::rows::Row Row(const color::rows::IsaRows& rows, int order) {
    const color::rows::OrderedRows& picked = color::rows::Pick(rows);
    return order ? picked.rgb : picked.bgr;
}

template <class Row>
void CheckVariants(const Bytes& px, const char* name, RefPixel ref, const Row& row) {
    const int width = static_cast<int>(px.size() / 3);
    for (int order : {1, 0}) {
        Bytes want(px.size());
        for (int x = 0; x < width; ++x) ref(&px[3 * x], &want[3 * x], order);
        Bytes got(px.size());
        row(px.data(), got.data(), width, order);
        int bad = 0, first = -1;
        for (int x = 0; x < width; ++x)
            if (!std::equal(&got[3 * x], &got[3 * x + 3], &want[3 * x]) && bad++ == 0) first = x;
        EXPECT_EQ(bad, 0) << name << " order " << order << ", first differing pixel " << first;
    }
}

TEST_P(LabXyzWidths, LabRowsWithAndWithoutTheRangeCheck) {
    const Bytes px = GridAndRandom();

    auto forward = std::make_unique<color::ForwardLab>();
    color::BuildForwardLab(forward.get(), 2.2222222222222223, color::kInitWhitePoint, color::kRgbToXyzMatrix);
    EXPECT_TRUE(forward->bounded);
    CheckVariants(px, "rgb->lab", FromRgb<ktref::RgbToLab>,
                  [&](const std::uint8_t* s, std::uint8_t* d, int w, int order) {
                      Row(color::ForwardLabRows(), order)(forward.get(), s, d, w);
                  });
    // The same rows with the range of t checked, as for tables that do not
    // bound it.
    forward->bounded = false;
    CheckVariants(px, "rgb->lab, range checked", FromRgb<ktref::RgbToLab>,
                  [&](const std::uint8_t* s, std::uint8_t* d, int w, int order) {
                      Row(color::ForwardLabRows(), order)(forward.get(), s, d, w);
                  });

    color::InverseLab inverse{};
    std::copy_n(color::kXyzToRgbMatrix, 9, inverse.matrix);
    const double factor[3] = {0.95, 1.0, 1.088};
    std::copy_n(factor, 3, inverse.factor);
    auto encoder = std::make_unique<color::GammaEncoder>();
    color::BuildGammaEncoder(encoder.get(), 0.45);
    const color::InverseLanes lanes{&inverse, encoder.get()};
    CheckVariants(px, "lab->rgb", ToRgb<ktref::LabToRgb>,
                  [&](const std::uint8_t* s, std::uint8_t* d, int w, int order) {
                      Row(color::InverseLabRows(), order)(&lanes, s, d, w);
                  });
}

KT_AT_EVERY_LEVEL(LabXyzWidths);

}  // namespace
}  // namespace kt
