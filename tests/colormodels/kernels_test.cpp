// Every kernel of the case table at every instruction-set level against
// the references: all its exhaustive inputs in both RGB orders, then every
// width, both paddings, both orders and in place on random pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "colormodels/kernel_cases.h"

namespace kt {
namespace {

using test::Case;
using test::Inputs;
using Bytes = std::vector<std::uint8_t>;

// The inputs as one byte stream.
Bytes Stream(Inputs inputs) {
    const std::uint32_t n = inputs == Inputs::codes ? 1u << 16 : 1u << 24;
    Bytes v(static_cast<std::size_t>(n) * (inputs == Inputs::triples ? 3 : inputs == Inputs::codes ? 2 : 4));
    for (std::uint32_t i = 0; i < n; ++i) {
        const auto a = static_cast<std::uint8_t>(i >> 16), b = static_cast<std::uint8_t>(i >> 8),
                   c = static_cast<std::uint8_t>(i);
        switch (inputs) {
            case Inputs::triples: v[3 * i] = a, v[3 * i + 1] = b, v[3 * i + 2] = c; break;
            case Inputs::codes: v[2 * i] = b, v[2 * i + 1] = c; break;
            case Inputs::yuyv: v[4 * i] = a, v[4 * i + 1] = b, v[4 * i + 2] = ~a, v[4 * i + 3] = c; break;
            case Inputs::uyvy: v[4 * i] = b, v[4 * i + 1] = a, v[4 * i + 2] = c, v[4 * i + 3] = ~a; break;
            case Inputs::cmyk:
                v[4 * i] = a, v[4 * i + 1] = b, v[4 * i + 2] = c;
                v[4 * i + 3] = static_cast<std::uint8_t>(i * 2654435761u >> 24);
                break;
        }
    }
    // Then 16 rows of grey pixels, one in 97 with another green: nearly every
    // step of the affine kernels lies near a whole number and is redone, many
    // more in a row than their redo store holds (YUV and YCbCr).
    for (std::uint32_t i = 0; inputs == Inputs::triples && i < 16 * 4096; ++i) {
        const auto grey = static_cast<std::uint8_t>(i * 2654435761u >> 24);
        v.insert(v.end(), {grey, static_cast<std::uint8_t>(i % 97 ? grey : grey ^ 0x5A), grey});
    }
    // Then 8 rows of pixels whose YIQ luma, (299 R + 587 G + 114 B) / 263000
    // x 255 + 0.5, lies 1/52600 below a whole number, some in each RGB order:
    // every YIQ step is redone, and the fixed-point floor alone is one too high.
    static constexpr std::uint8_t kYiqNear[5][3] = {
        {160, 187, 160}, {0, 29, 9}, {9, 29, 0}, {254, 233, 138}, {138, 233, 254}};
    for (std::uint32_t i = 0; inputs == Inputs::triples && i < 8 * 4096; ++i)
        v.insert(v.end(), kYiqNear[i % 5], kYiqNear[i % 5] + 3);
    return v;
}

class Exhaustive : public ::testing::TestWithParam<int> {};

// Each case's inputs and references once per order, then the kernel at
// every level. The groups the kernel accepts go through in one image of
// 4096-group rows (one row when they do not fill whole rows); the groups
// it refuses are left out (hls_rgb; the refusal itself is tested in
// kernels_edges_test.cpp). Too slow under the sanitizers, which run the
// grid below instead.
TEST_P(Exhaustive, EveryInputAtEveryLevel) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "exhaustive sweeps run in the plain build";
#endif
    const Case& c = test::kCases[GetParam()];
    const Bytes all = Stream(c.inputs);
    for (int order : {1, 0}) {
        Bytes src, want(all.size() / c.srcBytes * c.dstBytes);
        src.reserve(all.size());
        std::size_t n = 0;
        for (std::size_t i = 0; i < all.size(); i += c.srcBytes)
            if (c.ref(&all[i], &want[n * c.dstBytes], order, c.black))
                ++n, src.insert(src.end(), &all[i], &all[i] + c.srcBytes);
        want.resize(n * c.dstBytes);
        const int rowGroups = n % 4096 == 0 ? 4096 : static_cast<int>(n);
        for (color::Isa level : test::Levels()) {
            const test::IsaCap cap(level);
            Bytes got(want.size());
            EXPECT_EQ(c.kernel(src.data(), got.data(), rowGroups * c.group, static_cast<int>(n / rowGroups), 0, 0,
                               c.black, order),
                      STATUS_OK);
            const auto bad = std::mismatch(got.begin(), got.end(), want.begin()).first - got.begin();
            EXPECT_EQ(bad, static_cast<std::ptrdiff_t>(got.size()))
                << test::Name(level) << " order " << order << ": group " << bad / c.dstBytes << " of " << n;
        }
    }
}

class Grid : public ::testing::TestWithParam<int> {};

// Random groups the kernel accepts, every width up to 100, paddings 0..5,
// both orders, at every level; the destination's padding a fill byte that
// must stay, and with equal sizes the same conversion in place (where the
// padding keeps the source's bytes).
TEST_P(Grid, WidthsPaddingsOrdersInPlace) {
    constexpr int kHeight = 3;
    constexpr std::uint8_t kFill = 0xA5;
    const Case& c = test::kCases[GetParam()];
    for (color::Isa level : test::Levels()) {
        const test::IsaCap cap(level);
        std::mt19937 rng(4242);
        int bad = 0;
        std::string first;
        for (int width = c.group; width <= 100; width += c.group)
            for (int srcPad = 0; srcPad <= 5; ++srcPad)
                for (int dstPad = 0; dstPad <= 5; ++dstPad)
                    for (int order : {1, 0}) {
                        const int groups = width / c.group;
                        const int srcStride = groups * c.srcBytes + srcPad, dstStride = groups * c.dstBytes + dstPad;
                        Bytes src(static_cast<std::size_t>(srcStride) * kHeight);
                        Bytes want(static_cast<std::size_t>(dstStride) * kHeight, kFill), got(want.size(), kFill);
                        for (int y = 0; y < kHeight; ++y)
                            for (int x = 0; x < groups; ++x) {
                                std::uint8_t* in = &src[y * srcStride + x * c.srcBytes];
                                do
                                    for (int k = 0; k < c.srcBytes; ++k) in[k] = static_cast<std::uint8_t>(rng());
                                while (!c.ref(in, &want[y * dstStride + x * c.dstBytes], order, c.black));
                            }
                        bool ok = c.kernel(src.data(), got.data(), width, kHeight, srcPad, dstPad, c.black, order) ==
                                      STATUS_OK &&
                                  got == want;
                        if (c.srcBytes == c.dstBytes && srcPad == dstPad) {
                            Bytes inPlace = src, wantInPlace = src;
                            for (int y = 0; y < kHeight; ++y)
                                std::copy_n(&want[y * dstStride], groups * c.dstBytes, &wantInPlace[y * dstStride]);
                            ok = ok && c.kernel(inPlace.data(), inPlace.data(), width, kHeight, srcPad, dstPad,
                                                c.black, order) == STATUS_OK;
                            ok = ok && inPlace == wantInPlace;
                        }
                        if (!ok && bad++ == 0)
                            first = "width " + std::to_string(width) + " pads " + std::to_string(srcPad) + "/" +
                                    std::to_string(dstPad) + " order " + std::to_string(order);
                    }
        EXPECT_EQ(bad, 0) << test::Name(level) << ", first: " << first;
    }
}

KT_FOR_EVERY_CASE(Exhaustive);
KT_FOR_EVERY_CASE(Grid);

}  // namespace
}  // namespace kt
