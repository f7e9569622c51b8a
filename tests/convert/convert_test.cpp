// Vx_ClrConvert and Vx_ClrConvertDirect: the checks in order, the strides
// and the probes over them, the copies of equal spaces, and the routing to
// the built-in kernels with a handle's extras, the two-step path and the
// emulation branch, each against the reference formulas.
#include <gtest/gtest.h>

#include "colormodels/reference/lab_xyz_reference.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/reference/ycck_reference.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Bytes;
using test::Handle;
using test::MappedPages;
using test::Params;
using test::Random;
using Access = MappedPages::Access;

TEST(ConvertChecks, InOrder) {
    Handle lab(CS_RGB, CS_LAB);
    std::uint8_t src[64] = {}, dst[64] = {};
    EXPECT_EQ(Vx_ClrConvert(nullptr, src, dst, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, nullptr, dst, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, nullptr, 0, 0, -1, -1), ERR_NULL_ARGUMENT);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, dst, 0, 1, -1, -1), ERR_BAD_SIZE);
    EXPECT_EQ(Vx_ClrConvert(lab.h, src, dst, 1, 0, -1, -1), ERR_BAD_SIZE);
    // Alignments before the handle probe.
    MappedPages pages(2, Access::readWrite);
    pages.Protect(1, Access::none);
    auto* unreadable = reinterpret_cast<ClrHandle*>(pages.data() + pages.page());
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, -1, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, 0, -1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvert(unreadable, src, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
    // Buffers before validation: a readable block that is no live handle.
    ClrHandle fake = *lab.h;
    EXPECT_EQ(Vx_ClrConvert(&fake, pages.end() - pages.page() - 2, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvert(&fake, src, dst, 1, 1, 0, 0), ERR_INVALID_COLOR_HANDLE);
    // In place: the same space with different alignments is refused.
    Handle same(CS_HSV, CS_HSV);
    EXPECT_EQ(Vx_ClrConvert(same.h, src, src, 2, 2, 4, 0), ERR_SAME_BUFFER);
    EXPECT_EQ(Vx_ClrConvert(same.h, src, src, 2, 2, 4, 4), STATUS_OK);
    // An identity handle for an id outside the table has no row size.
    Handle odd(200, 200);
    EXPECT_EQ(Vx_ClrConvert(odd.h, src, dst, 1, 1, 0, 0), ERR_BAD_POINTER);
}

TEST(ConvertChecks, BuffersAreProbedOverTheirStrides) {
    Handle cmyk(CS_RGB, CS_CMYK);
    MappedPages pages(1, Access::readWrite);
    std::uint8_t other[256] = {};
    // Width 3, height 2: rows of 9 and 12 bytes; with both alignments 8 the
    // strides are 16 and 16. The kernels take the alignments as row padding
    // and probe (row + padding) x height themselves: a buffer that passes
    // the frame's probe but not the kernel's gets the kernel's -13.
    struct Case {
        bool onSource;
        int back, srcAlign, dstAlign;
        KtStatus status;
    } cases[] = {{true, 32, 8, 8, ERR_INVALID_PARAMETER}, {true, 31, 8, 8, ERR_BAD_POINTER},
                 {false, 32, 8, 8, ERR_INVALID_PARAMETER}, {false, 31, 8, 8, ERR_BAD_POINTER},
                 {true, 34, 8, 8, STATUS_OK},
                 // One alignment 0: neither stride is rounded.
                 {true, 18, 8, 0, ERR_INVALID_PARAMETER}, {true, 17, 8, 0, ERR_BAD_POINTER},
                 {false, 24, 0, 8, ERR_INVALID_PARAMETER}, {false, 23, 0, 8, ERR_BAD_POINTER},
                 {true, 18, 0, 8, STATUS_OK}};
    for (const Case& c : cases) {
        std::uint8_t* edge = pages.end() - c.back;
        EXPECT_EQ(Vx_ClrConvert(cmyk.h, c.onSource ? edge : other, c.onSource ? other : edge, 3, 2, c.srcAlign,
                                c.dstAlign),
                  c.status)
            << c.onSource << " " << c.back << " " << c.srcAlign << " " << c.dstAlign;
    }
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvert(cmyk.h, other, pages.data(), 3, 2, 0, 0), ERR_BAD_POINTER);
    // The planar layout's rows are sized by its 9 bits per pixel.
    Handle planar(CS_YUV410_PLANAR, CS_RGB);
    EXPECT_EQ(Vx_ClrConvert(planar.h, pages.end() - 40, other, 4, 8, 0, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvert(planar.h, pages.end() - 39, other, 4, 8, 0, 0), ERR_BAD_POINTER);
}

TEST(ConvertChecks, IdentityCopies) {
    Handle same(CS_XYZ, CS_XYZ);
    const Bytes src = Random(48, 1);
    Bytes dst(64, 0xEE);
    // Alignments 4 and 0: equal unrounded strides, one block.
    ASSERT_EQ(Vx_ClrConvert(same.h, const_cast<std::uint8_t*>(src.data()), dst.data(), 3, 4, 4, 0), STATUS_OK);
    EXPECT_TRUE(std::equal(src.begin(), src.begin() + 36, dst.begin()));
    EXPECT_EQ(dst[36], 0xEE);
    // Alignments 4 and 8: strides 12 and 16, one row of 9 bytes each.
    std::fill(dst.begin(), dst.end(), 0xEE);
    ASSERT_EQ(Vx_ClrConvert(same.h, const_cast<std::uint8_t*>(src.data()), dst.data(), 3, 3, 4, 8), STATUS_OK);
    for (int y = 0; y < 3; ++y) {
        EXPECT_TRUE(std::equal(src.begin() + 12 * y, src.begin() + 12 * y + 9, dst.begin() + 16 * y)) << y;
        EXPECT_EQ(dst[16 * y + 9], 0xEE) << y;
    }
}

TEST(ConvertDispatch, LabTables) {
    // Lab to RGB: the formula without Lab options; the table's white point
    // and matrix with them (as given at creation, or the second set when
    // the parameter call makes the table).
    constexpr int kCount = 8192;
    Bytes lab = Random(3 * kCount, 7);
    for (int i = 0; i < 4096; ++i)
        for (int c = 0; c < 3; ++c) lab[3 * i + c] = static_cast<std::uint8_t>(((i >> (8 - 4 * c)) & 15) * 17);
    const double initWhite[3] = {95.0166015625, 100.0, 108.76499938964844};
    const double initMatrix[9] = {3.240478992462158,   -1.5371500253677368, -0.49853500723838806,
                                  -0.9692559838294983, 1.875991940498352,   0.04155600070953369,
                                  0.05564799904823303, -0.20404300093650818, 1.0573110580444336};
    const double setWhite[3] = {96.421, 99.997, 82.524};
    const double setMatrix[9] = {2.830880641937256,   -1.0300474166870117, -0.5604600310325623,
                                 -1.5802161693572998, 2.7214279174804688,  0.026361215859651566,
                                 0.2055138498544693,  -0.5249314904212952, 1.7662780284881592};
    ConversionParams p = Params(METHOD_BUILTIN);
    LabOptions opts = test::Lab(10);
    p.labOptions = &opts;
    Handle formula(CS_LAB, CS_RGB), table(CS_LAB, CS_BGR, &p), later(CS_LAB, CS_RGB);
    ConversionParams change = Params(0, KTCLR_CHANGE_LAB);
    change.labOptions = &opts;
    ASSERT_EQ(Vx_ClrSetConversionParams(later.h, &change), STATUS_OK);
    Bytes out(lab.size());
    for (ClrHandle* h : {formula.h, table.h, later.h}) {
        ASSERT_EQ(Vx_ClrConvert(h, lab.data(), out.data(), kCount, 1, 0, 0), STATUS_OK);
        for (int i = 0; i < kCount; ++i) {
            const std::uint8_t* in = &lab[3 * i];
            const ktref::Rgb want = h == formula.h ? ktref::LabToRgb(in[0], in[1], in[2])
                                    : h == table.h ? ktref::LabToRgbWith(in[0], in[1], in[2], initWhite, initMatrix, 0.45)
                                                   : ktref::LabToRgbWith(in[0], in[1], in[2], setWhite, setMatrix, 0.45);
            const bool bgr = h == table.h;
            ASSERT_EQ(out[3 * i + (bgr ? 2 : 0)], want.r) << i;
            ASSERT_EQ(out[3 * i + 1], want.g) << i;
            ASSERT_EQ(out[3 * i + (bgr ? 0 : 2)], want.b) << i;
        }
    }
    // RGB to Lab through the handle's table equals the formula.
    Handle forward(CS_RGB, CS_LAB, &p);
    ASSERT_NE(forward.h->rgbToLabTable, nullptr);
    const Bytes rgb = Random(3 * kCount, 3);
    ASSERT_EQ(Vx_ClrConvert(forward.h, const_cast<std::uint8_t*>(rgb.data()), out.data(), kCount, 1, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kCount; ++i)
        ASSERT_EQ(std::memcmp(&out[3 * i], ktref::RgbToLab(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]).v, 3), 0) << i;
}

TEST(ConvertDispatch, BuiltinExtrasAndSilentPairs) {
    // The CMYK black value: 175 by default, else the handle's.
    const Bytes rgb = Random(3 * 256, 9, 3);
    Bytes cmyk(4 * 256);
    ConversionParams p = Params(METHOD_BUILTIN);
    CmykOptions strong = test::Cmyk(1000);
    p.cmykOptions = &strong;
    Handle byDefault(CS_RGB, CS_CMYK), withOptions(CS_RGB, CS_CMYK, &p);
    for (auto [h, black] : {std::pair{byDefault.h, 175}, {withOptions.h, 1000}}) {
        ASSERT_EQ(Vx_ClrConvert(h, const_cast<std::uint8_t*>(rgb.data()), cmyk.data(), 256, 1, 0, 0), STATUS_OK);
        for (int i = 0; i < 256; ++i) {
            const ref::Px4 want = ref::RgbToCmyk(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2], black);
            ASSERT_TRUE(std::equal(want.begin(), want.end(), &cmyk[4 * i])) << black << " " << i;
        }
    }

    // One-step pairs without an RGB side: nothing written, success.
    std::uint8_t in[6] = {200, 10, 20, 30, 40, 50}, out[8];
    std::memset(out, 0xAB, sizeof out);
    ConversionParams builtin = Params(METHOD_BUILTIN);
    Handle labHsv(CS_LAB, CS_HSV, &builtin), xyzHsv(CS_XYZ, CS_HSV, &builtin);
    for (ClrHandle* h : {labHsv.h, xyzHsv.h}) {
        EXPECT_EQ(Vx_ClrConvert(h, in, out, 2, 1, 0, 0), STATUS_OK);
        for (std::uint8_t v : out) EXPECT_EQ(v, 0xAB);
    }
    // Two-step pairs drop the direct conversion's status; the one-step path
    // passes the kernel's on (an HLS pixel without saturation but with a hue).
    std::uint8_t badHls[3] = {1, 100, 0};
    Handle hlsCmyk(CS_HLS, CS_CMYK, &builtin), hlsRgb(CS_HLS, CS_RGB);
    EXPECT_EQ(Vx_ClrConvert(hlsCmyk.h, badHls, out, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvert(hlsRgb.h, badHls, out, 1, 1, 0, 0), ERR_INVALID_TAG);
    // In place between different spaces.
    Bytes buf = rgb;
    Handle xyz(CS_RGB, CS_XYZ);
    ASSERT_EQ(Vx_ClrConvert(xyz.h, buf.data(), buf.data(), 128, 2, 0, 0), STATUS_OK);
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(std::memcmp(&buf[3 * i], ktref::RgbToXyz(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]).v, 3), 0) << i;
}

TEST(ConvertDispatch, YcckWithTheHandleTable) {
    constexpr int kCount = 4096;
    const Bytes bgr = Random(3 * kCount, 11), samples = Random(4 * kCount, 12);
    Bytes ycck(4 * kCount), rgb(3 * kCount), direct(3 * kCount);
    Handle to(CS_BGR, CS_YCCK), from(CS_YCCK, CS_RGB);
    ASSERT_EQ(Vx_ClrConvert(to.h, const_cast<std::uint8_t*>(bgr.data()), ycck.data(), kCount, 1, 0, 0), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvert(from.h, const_cast<std::uint8_t*>(samples.data()), rgb.data(), kCount, 1, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kCount; ++i) {
        const ktref::Ycc want = ktref::RgbToYcc(bgr[3 * i + 2], bgr[3 * i + 1], bgr[3 * i]);
        ASSERT_EQ(ycck[4 * i], want.y) << i;
        ASSERT_EQ(ycck[4 * i + 1], want.cb) << i;
        ASSERT_EQ(ycck[4 * i + 2], want.cr) << i;
        ASSERT_EQ(ycck[4 * i + 3], 0) << i;
        std::uint8_t back[3];
        ktref::YccToRgb(samples[4 * i], samples[4 * i + 1], samples[4 * i + 2], back);
        ASSERT_EQ(std::memcmp(&rgb[3 * i], back, 3), 0) << i;
    }
    // Without a handle the global tables give the same.
    ASSERT_EQ(Vx_ClrConvertDirect(CS_YCCK, CS_RGB, const_cast<std::uint8_t*>(samples.data()), direct.data(), kCount,
                                  1, 0, 0),
              STATUS_OK);
    EXPECT_EQ(direct, rgb);
}

TEST(ConvertDispatch, EmulationBranchAndUnknownMethods) {
    std::uint8_t in[3] = {10, 20, 30}, out[4];
    // Method 16 on a handle without a custom grid: the emulation branch with
    // no grid converts nothing, except RGB to CMYK, which reads B, G, R.
    Handle toLab(CS_RGB, CS_LAB), toCmyk(CS_RGB, CS_CMYK), hsv(CS_RGB, CS_HSV);
    toLab.h->method = METHOD_CUSTOM_EMULATION;
    std::memset(out, 0xCD, sizeof out);
    EXPECT_EQ(Vx_ClrConvert(toLab.h, in, out, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(out[0], 0xCD);
    toCmyk.h->method = METHOD_CUSTOM_EMULATION;
    ASSERT_EQ(Vx_ClrConvert(toCmyk.h, in, out, 1, 1, 0, 0), STATUS_OK);
    const ref::Px4 want = ref::RgbToCmyk(30, 20, 10, 175);
    EXPECT_TRUE(std::equal(want.begin(), want.end(), out));
    // Other pairs under the emulation methods: nothing written.
    hsv.h->method = METHOD_BUILTIN_EMULATION;
    std::memset(out, 0xCD, sizeof out);
    EXPECT_EQ(Vx_ClrConvert(hsv.h, in, out, 1, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(out[0], 0xCD);
    hsv.h->method = 64;  // names no method
    EXPECT_EQ(Vx_ClrConvert(hsv.h, in, out, 1, 1, 0, 0), ERR_BAD_METHOD);
}

TEST(ConvertDirect, ChecksInOrder) {
    std::uint8_t a[256] = {}, b[256] = {};
    EXPECT_EQ(Vx_ClrConvertDirect(16, CS_RGB, nullptr, b, 1, 1, 0, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrConvertDirect(16, CS_RGB, a, nullptr, 1, 1, 0, 0), ERR_INVALID_PARAMETER);
    // The source layout first (its space, then the sizes), then the
    // destination's; groups before any probe.
    MappedPages none(1, Access::none);
    std::uint8_t* bad = none.data();
    struct Case {
        int src, dst;
        std::uint8_t *from, *to;
        int width, height;
        KtStatus status;
    } cases[] = {{16, 129, a, b, 0, 0, ERR_BAD_COLOR_SPACE},
                 {-1, CS_RGB, a, b, 1, 1, ERR_BAD_COLOR_SPACE},
                 {CS_RGB, 145, a, b, 0, 1, ERR_INVALID_PARAMETER},
                 {CS_RGB, 145, a, b, 1, 1, ERR_BAD_COLOR_SPACE},
                 {CS_YUV422_YUYV, CS_RGB, bad, b, 5, 1, ERR_ODD_WIDTH},
                 {CS_YUV422_UYVY, CS_RGB, bad, b, 3, 1, ERR_ODD_WIDTH},
                 {CS_RGB, CS_YUV411_PACKED, a, bad, 12, 1, ERR_ODD_WIDTH},
                 {CS_YUV410_PLANAR, CS_RGB, bad, b, 4, 6, ERR_BAD_PLANAR_SIZE},
                 {CS_RGB, CS_YUV410_PLANAR, a, bad, 6, 4, ERR_BAD_PLANAR_SIZE},
                 {CS_YUV410_PLANAR, CS_RGB, bad, b, 4, 4, ERR_BAD_POINTER},
                 {CS_YUV422_YUYV, CS_RGB, a, b, 4, 1, STATUS_OK}};
    for (const Case& c : cases)
        EXPECT_EQ(Vx_ClrConvertDirect(c.src, c.dst, c.from, c.to, c.width, c.height, 0, 0), c.status)
            << c.src << "->" << c.dst << " " << c.width << "x" << c.height;

    // Probes: (row + padding) x height on each side; a padding below 1 is 0.
    MappedPages pages(1, Access::readWrite);
    std::uint8_t* end = pages.end();
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, end - 14, b, 2, 2, 1, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, end - 13, b, 2, 2, 1, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, end - 12, b, 2, 2, -5, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, end - 16, 2, 2, 0, 0), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, end - 15, 2, 2, 0, 0), ERR_BAD_POINTER);
    EXPECT_NE(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, end - 20, b, 4, 4, 0, 0), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_YUV410_PLANAR, CS_RGB, end - 19, b, 4, 4, 0, 0), ERR_BAD_POINTER);
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, end - 16, 2, 2, 0, 0), ERR_BAD_POINTER);

    // In place: equal paddings are refused, different ones copy.
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_HSV, a, a, 2, 2, 4, 4), ERR_SAME_BUFFER);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_HSV, a, a, 2, 2, 0, 1), STATUS_OK);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_XYZ, a, a, 2, 2, 4, 4), STATUS_OK);
}

TEST(ConvertDirect, EqualSpacesCopy) {
    Bytes src = Random(64, 1), dst(128, 0xEE);
    auto copy = [&](int space, int width, int height, int srcPad, int dstPad) {
        std::fill(dst.begin(), dst.end(), 0xEE);
        return Vx_ClrConvertDirect(space, space, src.data(), dst.data(), width, height, srcPad, dstPad);
    };
    auto same = [&](int at, int from, int n) { return std::equal(&src[from], &src[from] + n, &dst[at]); };
    // Paddings below 2: one block of (bits x width) / 8 x height bytes.
    ASSERT_EQ(copy(CS_YUV411_PACKED, 8, 3, 1, 0), STATUS_OK);
    EXPECT_TRUE(same(0, 0, 36));
    EXPECT_EQ(dst[36], 0xEE);
    // Paddings 0 and 4: the first source row lands at 0, 4, 8, each copy
    // overwriting most of the one before.
    ASSERT_EQ(copy(CS_RGB, 3, 3, 0, 4), STATUS_OK);
    EXPECT_TRUE(same(0, 0, 4) && same(4, 0, 4) && same(8, 0, 9));
    EXPECT_EQ(dst[17], 0xEE);
    // Paddings 6 and 2: the source steps by 6, the destination by 2.
    ASSERT_EQ(copy(CS_CMY, 1, 3, 6, 2), STATUS_OK);
    EXPECT_TRUE(same(0, 0, 1) && same(2, 6, 1) && same(4, 12, 3));
    EXPECT_EQ(dst[7], 0xEE);
}

TEST(ConvertDirect, TwoStepsThroughRgb) {
    constexpr int kWidth = 16, kHeight = 4;
    const Bytes hsv = Random(3 * kWidth * kHeight, 2);
    // Padded source and destination; the temporary is packed.
    Bytes padded(hsv.size() + 2 * kHeight), cmyk((4 * kWidth + 2) * kHeight), ycck(4 * kWidth * kHeight);
    for (int y = 0; y < kHeight; ++y)
        std::copy_n(&hsv[3 * kWidth * y], 3 * kWidth, &padded[(3 * kWidth + 2) * y]);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_CMYK, padded.data(), cmyk.data(), kWidth, kHeight, 2, 2), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvertDirect(CS_HSV, CS_YCCK, const_cast<std::uint8_t*>(hsv.data()), ycck.data(), kWidth,
                                  kHeight, 0, 0),
              STATUS_OK);
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const ref::Px3 rgb = ref::HsvToRgb(hsv[3 * i], hsv[3 * i + 1], hsv[3 * i + 2]);
        const ref::Px4 want = ref::RgbToCmyk(rgb[0], rgb[1], rgb[2], 175);
        ASSERT_TRUE(std::equal(want.begin(), want.end(), &cmyk[(4 * kWidth + 2) * (i / kWidth) + 4 * (i % kWidth)]))
            << i;
        const ktref::Ycc y = ktref::RgbToYcc(rgb[0], rgb[1], rgb[2]);
        const std::uint8_t wantYcck[4] = {y.y, y.cb, y.cr, 0};
        ASSERT_EQ(std::memcmp(&ycck[4 * i], wantYcck, 4), 0) << i;
    }
    // A 4-bit RGB destination is left as it was, with success.
    Bytes untouched(2 * kWidth * kHeight, 0x5A);
    for (int src : {CS_HSV, CS_YUV422_YUYV}) {
        EXPECT_EQ(Vx_ClrConvertDirect(src, CS_RGB444, const_cast<std::uint8_t*>(hsv.data()), untouched.data(), kWidth,
                                      kHeight, 0, 0),
                  STATUS_OK);
        EXPECT_EQ(untouched, Bytes(2 * kWidth * kHeight, 0x5A));
    }
    // The first kernel's failure is returned.
    std::uint8_t badHls[3] = {3, 50, 0};
    EXPECT_EQ(Vx_ClrConvertDirect(CS_HLS, CS_XYZ, badHls, cmyk.data(), 1, 1, 0, 0), ERR_INVALID_TAG);
}

}  // namespace
}  // namespace kt
