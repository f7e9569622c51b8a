// The kernels from RGB to YCbCr, YUV and YIQ at every instruction-set
// level on long grey rows whose every step lies near a whole number, so
// that each step is redone from the double formula and the store of redone
// steps fills.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using ref::Px3;
using RgbFamilyAffine = test::AtEveryLevel;
using Forward = Px3 (*)(int, int, int);

struct Case {
    const char* name;
    color::Kernel kernel;
    Forward ref;
};

constexpr Case kCases[] = {
    {"rgb->ycbcr", color::RgbToYcbcr, ref::RgbToYcbcr},
    {"rgb->yuv", color::RgbToYuv, ref::RgbToYuv},
    {"rgb->yiq", color::RgbToYiq, ref::RgbToYiq},
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

// Long rows of grey pixels with a few random ones: nearly every step is
// redone, many more than the redo store holds, converted apart and in place.
TEST_P(RgbFamilyAffine, LongRowsRedone) {
    constexpr int kWidth = 3001, kHeight = 4;
    std::mt19937 rng(99);
    std::vector<std::uint8_t> src(static_cast<std::size_t>(3) * kWidth * kHeight);
    for (std::size_t i = 0; i < src.size(); i += 3) {
        const auto grey = static_cast<std::uint8_t>(rng());
        src[i] = src[i + 1] = src[i + 2] = grey;
        if (rng() % 97 == 0) src[i + 1] = static_cast<std::uint8_t>(rng());
    }
    for (const Case& c : kCases)
            for (int order : {1, 0}) {
                std::vector<std::uint8_t> want(src.size()), got(src.size());
                Reference(c.ref, src.data(), want.data(), std::int64_t{kWidth} * kHeight, order);
                ASSERT_EQ(c.kernel(src.data(), got.data(), kWidth, kHeight, 0, 0, 0, order), STATUS_OK);
                std::string first;
                EXPECT_EQ(Differ(want, got, first), 0) << c.name << " order " << order << ", "
                                                        << first;
                std::vector<std::uint8_t> inPlace = src;
                ASSERT_EQ(c.kernel(inPlace.data(), inPlace.data(), kWidth, kHeight, 0, 0, 0, order), STATUS_OK);
                EXPECT_EQ(Differ(want, inPlace, first), 0) << c.name << " in place, order " << order
                                                           << ", " << first;
            }
}

KT_AT_EVERY_LEVEL(RgbFamilyAffine);

}  // namespace
}  // namespace kt
