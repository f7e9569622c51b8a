// Vx_ClrConvert's routing: built-in kernels with the handle's extras (black
// value, Lab tables, YCCK table), the two-step pairs, the silent successes,
// the ICC rows and the emulation branch.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstring>
#include <random>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/lab_tables.h"
#include "colormodels/reference/lab_xyz_reference.h"
#include "colormodels/reference/ycck_reference.h"
#include "ktclr/convert.h"
#include "support/params.h"

namespace kt {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Handle {
    ClrHandle* h = nullptr;
    Handle(int src, int dst, ConversionParams* p = nullptr) { EXPECT_EQ(Vx_ClrInit(&h, src, dst, p), STATUS_OK); }
    ~Handle() {
        if (h) Vx_ClrFree(h);
    }
};

Bytes Random(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    Bytes b(n);
    for (auto& v : b) v = static_cast<std::uint8_t>(rng());
    return b;
}

// Every Lab byte triple on a coarse grid plus random ones.
Bytes LabSamples(int count) {
    Bytes b = Random(3 * count, 7);
    for (int i = 0; i < 4096 && i < count; ++i) {
        b[3 * i] = static_cast<std::uint8_t>((i >> 8) * 17);
        b[3 * i + 1] = static_cast<std::uint8_t>(((i >> 4) & 15) * 17);
        b[3 * i + 2] = static_cast<std::uint8_t>((i & 15) * 17);
    }
    return b;
}

TEST(ConvertDispatch, LabThroughTheHandleTables) {
    constexpr int kWidth = 64, kHeight = 128;
    const Bytes lab = LabSamples(kWidth * kHeight);
    Bytes out(lab.size());

    // Without Lab options: the formula kernel.
    Handle plain(CS_LAB, CS_RGB);
    ASSERT_EQ(Vx_ClrConvert(plain.h, const_cast<std::uint8_t*>(lab.data()), out.data(), kWidth, kHeight, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const ktref::Rgb want = ktref::LabToRgb(lab[3 * i], lab[3 * i + 1], lab[3 * i + 2]);
        ASSERT_EQ(out[3 * i], want.r) << i;
        ASSERT_EQ(out[3 * i + 1], want.g) << i;
        ASSERT_EQ(out[3 * i + 2], want.b) << i;
    }

    // With them: the table's white point (not the formula's 0.95 and 1.088).
    ConversionParams p = test::Params(METHOD_BUILTIN);
    LabOptions opts = test::Lab(10);
    p.labOptions = &opts;
    Handle table(CS_LAB, CS_BGR, &p);
    ASSERT_NE(table.h->labTable, nullptr);
    ASSERT_EQ(Vx_ClrConvert(table.h, const_cast<std::uint8_t*>(lab.data()), out.data(), kWidth, kHeight, 0, 0),
              STATUS_OK);
    int differFromFormula = 0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const ktref::Rgb want = ktref::LabToRgbWith(lab[3 * i], lab[3 * i + 1], lab[3 * i + 2],
                                                    color::kInitWhitePoint, color::kXyzToRgbMatrix, 0.45);
        ASSERT_EQ(out[3 * i + 2], want.r) << i;
        ASSERT_EQ(out[3 * i + 1], want.g) << i;
        ASSERT_EQ(out[3 * i], want.b) << i;
        const ktref::Rgb formula = ktref::LabToRgb(lab[3 * i], lab[3 * i + 1], lab[3 * i + 2]);
        differFromFormula += formula.r != want.r || formula.b != want.b;
    }
    EXPECT_GT(differFromFormula, 0);

    // A table first made by the parameter call has the second white point.
    ConversionParams change = test::Params(0, KTCLR_CHANGE_LAB);
    change.labOptions = &opts;
    ASSERT_EQ(Vx_ClrSetConversionParams(plain.h, &change), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvert(plain.h, const_cast<std::uint8_t*>(lab.data()), out.data(), kWidth, kHeight, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const ktref::Rgb want = ktref::LabToRgbWith(lab[3 * i], lab[3 * i + 1], lab[3 * i + 2],
                                                    color::kSetParamsWhitePoint, color::kSetParamsMatrix, 0.45);
        ASSERT_EQ(out[3 * i], want.r) << i;
        ASSERT_EQ(out[3 * i + 1], want.g) << i;
        ASSERT_EQ(out[3 * i + 2], want.b) << i;
    }

    // RGB to Lab through the handle's table equals the formula.
    Handle forward(CS_RGB, CS_LAB, &p);
    ASSERT_NE(forward.h->rgbToLabTable, nullptr);
    const Bytes rgb = Random(3 * kWidth * kHeight, 3);
    ASSERT_EQ(Vx_ClrConvert(forward.h, const_cast<std::uint8_t*>(rgb.data()), out.data(), kWidth, kHeight, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const ktref::Triple want = ktref::RgbToLab(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
        ASSERT_EQ(std::memcmp(&out[3 * i], want.v, 3), 0) << i;
    }
}

TEST(ConvertDispatch, BuiltinExtrasAndSilentPairs) {
    // The CMYK black value: 175 by default, else the handle's.
    std::uint8_t black[3] = {0, 0, 0}, cmyk[4] = {};
    Handle byDefault(CS_RGB, CS_CMYK);
    ASSERT_EQ(Vx_ClrConvert(byDefault.h, black, cmyk, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(cmyk[0], 255);
    EXPECT_EQ(cmyk[3], 44);
    ConversionParams p = test::Params(METHOD_BUILTIN);
    CmykOptions full = test::Cmyk(1000);
    p.cmykOptions = &full;
    Handle strong(CS_RGB, CS_CMYK, &p);
    ASSERT_EQ(Vx_ClrConvert(strong.h, black, cmyk, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(cmyk[0], 0);
    EXPECT_EQ(cmyk[3], 255);

    // One-step pairs without RGB: nothing written.
    std::uint8_t in[6] = {200, 10, 20, 30, 40, 50}, out[8];
    std::memset(out, 0xAB, sizeof out);
    Handle labHsv(CS_LAB, CS_HSV);  // one step because of Lab
    EXPECT_EQ(labHsv.h->PathKind, KTCLR_PATH_TWO_STEP);  // made without parameters
    ConversionParams builtin = test::Params(METHOD_BUILTIN);
    Handle labHsv1(CS_LAB, CS_HSV, &builtin);
    Handle xyzHsv(CS_XYZ, CS_HSV, &builtin);
    for (ClrHandle* h : {labHsv1.h, xyzHsv.h}) {
        ASSERT_EQ(h->PathKind, KTCLR_PATH_ONE_STEP);
        EXPECT_EQ(Vx_ClrConvert(h, in, out, 2, 1, 0, 0), STATUS_OK);
        for (std::uint8_t v : out) EXPECT_EQ(v, 0xAB);
    }

    // Two-step pairs go through the direct conversion, whose status is
    // dropped: HSV to CMYK converts; a failing direct call still returns 1.
    Handle hsvCmyk(CS_HSV, CS_CMYK, &builtin);
    ASSERT_EQ(hsvCmyk.h->PathKind, KTCLR_PATH_TWO_STEP);
    std::uint8_t viaDirect[8];
    ASSERT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_CMYK, in, viaDirect, 2, 1, 0, 0), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvert(hsvCmyk.h, in, out, 2, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(std::memcmp(out, viaDirect, 8), 0);
    Handle hlsCmyk(CS_HLS, CS_CMYK, &builtin);
    const std::uint8_t badHls[3] = {1, 100, 0};  // no saturation but a hue
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HLS, CS_CMYK, const_cast<std::uint8_t*>(badHls), out, 1, 1, 0, 0),
              ERR_INVALID_TAG);
    EXPECT_EQ(Vx_ClrConvert(hlsCmyk.h, const_cast<std::uint8_t*>(badHls), out, 1, 1, 0, 0), STATUS_OK);
    // The kernel's own status passes through on the one-step path.
    Handle hlsRgb(CS_HLS, CS_RGB);
    EXPECT_EQ(Vx_ClrConvert(hlsRgb.h, const_cast<std::uint8_t*>(badHls), out, 1, 1, 0, 0), ERR_INVALID_TAG);

    // RGB and BGR: a swap.
    Handle swap(CS_RGB, CS_BGR);
    ASSERT_EQ(Vx_ClrConvert(swap.h, in, out, 2, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(out[0], 20);
    EXPECT_EQ(out[2], 200);
}

TEST(ConvertDispatch, YcckWithTheHandleTable) {
    constexpr int kCount = 4096;
    const Bytes rgb = Random(3 * kCount, 11);
    Bytes ycck(4 * kCount), back(3 * kCount);
    Handle to(CS_BGR, CS_YCCK);
    ASSERT_NE(to.h->ycckTable, nullptr);
    ASSERT_EQ(Vx_ClrConvert(to.h, const_cast<std::uint8_t*>(rgb.data()), ycck.data(), kCount, 1, 0, 0), STATUS_OK);
    for (int i = 0; i < kCount; ++i) {
        const ktref::Ycc want = ktref::RgbToYcc(rgb[3 * i + 2], rgb[3 * i + 1], rgb[3 * i]);
        ASSERT_EQ(ycck[4 * i], want.y) << i;
        ASSERT_EQ(ycck[4 * i + 1], want.cb) << i;
        ASSERT_EQ(ycck[4 * i + 2], want.cr) << i;
        ASSERT_EQ(ycck[4 * i + 3], 0) << i;
    }
    const Bytes samples = Random(4 * kCount, 12);
    Handle from(CS_YCCK, CS_RGB);
    ASSERT_EQ(Vx_ClrConvert(from.h, const_cast<std::uint8_t*>(samples.data()), back.data(), kCount, 1, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kCount; ++i) {
        std::uint8_t want[3];
        ktref::YccToRgb(samples[4 * i], samples[4 * i + 1], samples[4 * i + 2], want);
        ASSERT_EQ(std::memcmp(&back[3 * i], want, 3), 0) << i;
    }
    // Without a handle the global tables give the same.
    Bytes direct(3 * kCount);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_YCCK, CS_RGB, const_cast<std::uint8_t*>(samples.data()), direct.data(), kCount,
                                  1, 0, 0),
              STATUS_OK);
    EXPECT_EQ(direct, back);
}

TEST(ConvertDispatch, IccRows) {
    // Lab from the transform: a and b are moved by 128 after it ran.
    ConversionParams p = test::Params(METHOD_ICC);
    Handle lab(CS_RGB, CS_LAB, &p);
    ASSERT_NE(lab.h->iccTransform, nullptr);
    const Bytes rgb = Random(3 * 6 * 5, 21);
    Bytes raw(rgb.size()), out(3 * 8 * 5, 0xEE);
    cmsDoTransform(lab.h->iccTransform, rgb.data(), raw.data(), 30);
    // Rows of 18 bytes in strides of 18 and 24 (alignments 6 and 8): row by row.
    Bytes padded(18 * 5 + 6 * 5);
    for (int y = 0; y < 5; ++y) std::memcpy(&padded[18 * y], &rgb[18 * y], 18);
    ASSERT_EQ(Vx_ClrConvert(lab.h, padded.data(), out.data(), 6, 5, 6, 8), STATUS_OK);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x) {
            const std::uint8_t* got = &out[24 * y + 3 * x];
            const std::uint8_t* want = &raw[18 * y + 3 * x];
            EXPECT_EQ(got[0], want[0]);
            EXPECT_EQ(got[1], static_cast<std::uint8_t>(want[1] + 128));
            EXPECT_EQ(got[2], static_cast<std::uint8_t>(want[2] + 128));
        }
    EXPECT_EQ(out[18], 0xEE);  // row padding untouched

    // No transform: a null argument.
    Handle plain(CS_RGB, CS_CMYK);
    std::uint8_t in[3] = {1, 2, 3}, cmyk[4] = {9, 9, 9, 9};
    plain.h->method = METHOD_ICC;
    EXPECT_EQ(Vx_ClrConvert(plain.h, in, cmyk, 1, 1, 0, 0), ERR_NULL_ARGUMENT);
    plain.h->method = METHOD_CUSTOM_ICC;
    EXPECT_EQ(Vx_ClrConvert(plain.h, in, cmyk, 1, 1, 0, 0), ERR_NULL_ARGUMENT);
    EXPECT_EQ(cmyk[0], 9);
    plain.h->method = METHOD_BUILTIN;
}

TEST(ConvertDispatch, EmulationBranchAndUnknownMethods) {
    std::uint8_t in[3] = {10, 20, 30}, out[4];
    // Method 16 on a handle without a custom grid: the emulation branch with
    // a null grid converts nothing, except RGB to CMYK, which reads B,G,R.
    Handle toLab(CS_RGB, CS_LAB);
    toLab.h->method = METHOD_CUSTOM_EMULATION;
    std::memset(out, 0xCD, sizeof out);
    EXPECT_EQ(Vx_ClrConvert(toLab.h, in, out, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(out[0], 0xCD);
    Handle toCmyk(CS_RGB, CS_CMYK);
    toCmyk.h->method = METHOD_CUSTOM_EMULATION;
    ASSERT_EQ(Vx_ClrConvert(toCmyk.h, in, out, 1, 1, 0, 0), STATUS_OK);
    std::uint8_t want[4];
    ASSERT_EQ(color::RgbToCmyk(in, want, 1, 1, 0, 0, 175, 0), STATUS_OK);
    EXPECT_EQ(std::memcmp(out, want, 4), 0);
    EXPECT_EQ(out[0], 255 - 30);  // byte 0 taken as blue
    // Other pairs under the emulation methods: nothing written.
    Handle hsv(CS_RGB, CS_HSV);
    hsv.h->method = METHOD_BUILTIN_EMULATION;
    std::memset(out, 0xCD, sizeof out);
    EXPECT_EQ(Vx_ClrConvert(hsv.h, in, out, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(out[0], 0xCD);
    // A value that names no method.
    hsv.h->method = 64;
    EXPECT_EQ(Vx_ClrConvert(hsv.h, in, out, 1, 1, 0, 0), ERR_BAD_METHOD);
    hsv.h->method = METHOD_BUILTIN;
}

TEST(ConvertDispatch, InPlaceBetweenDifferentSpaces) {
    const Bytes rgb = Random(3 * 333, 5);
    Bytes buf = rgb;
    Handle xyz(CS_RGB, CS_XYZ);
    ASSERT_EQ(Vx_ClrConvert(xyz.h, buf.data(), buf.data(), 111, 3, 0, 0), STATUS_OK);
    for (int i = 0; i < 333; ++i) {
        const ktref::Triple want = ktref::RgbToXyz(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
        ASSERT_EQ(std::memcmp(&buf[3 * i], want.v, 3), 0) << i;
    }
}

}  // namespace
}  // namespace kt
