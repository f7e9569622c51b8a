// Vx_ClrConvert and Vx_ClrConvertDirect: the checks in order, the strides
// and the probes over them, the copies of equal spaces, and the routing to
// the built-in kernels with a handle's extras, the two-step path and the
// emulation branch, against the reference formulas. The kernels themselves,
// over every input, width, padding and order: tests/colormodels.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <vector>

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
using Access = MappedPages::Access;

TEST(ConvertChecks, InOrder) {
    Handle lab(CS_RGB, CS_LAB), same(CS_HSV, CS_HSV), odd(200, 200);
    std::uint8_t src[64] = {}, dst[64] = {};
    MappedPages pages(2, Access::readWrite);
    pages.Protect(1, Access::none);
    auto* unreadable = reinterpret_cast<ClrHandle*>(pages.data() + pages.page());
    ClrHandle fake = *lab.h;  // readable, but no live handle
    const struct {
        ClrHandle* h;
        std::uint8_t *from, *to;
        int width, height, srcAlign, dstAlign;
        KtStatus status;
    } rows[] = {
        {nullptr, src, dst, 0, 0, -1, -1, ERR_NULL_ARGUMENT}, {lab.h, nullptr, dst, 0, 0, -1, -1, ERR_NULL_ARGUMENT},
        {lab.h, src, nullptr, 0, 0, -1, -1, ERR_NULL_ARGUMENT}, {lab.h, src, dst, 0, 1, -1, -1, ERR_BAD_SIZE},
        {lab.h, src, dst, 1, 0, -1, -1, ERR_BAD_SIZE},
        // Alignments before the handle probe.
        {unreadable, src, dst, 1, 1, -1, 0, ERR_INVALID_PARAMETER},
        {unreadable, src, dst, 1, 1, 0, -1, ERR_INVALID_PARAMETER}, {unreadable, src, dst, 1, 1, 0, 0, ERR_BAD_POINTER},
        // Buffers before validation.
        {&fake, pages.end() - pages.page() - 2, dst, 1, 1, 0, 0, ERR_BAD_POINTER},
        {&fake, src, dst, 1, 1, 0, 0, ERR_INVALID_COLOR_HANDLE},
        // In place: the same space with different alignments is refused.
        {same.h, src, src, 2, 2, 4, 0, ERR_SAME_BUFFER}, {same.h, src, src, 2, 2, 4, 4, STATUS_OK},
        // An identity handle for an id outside the table has no row size.
        {odd.h, src, dst, 1, 1, 0, 0, ERR_BAD_POINTER},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Vx_ClrConvert(r.h, r.from, r.to, r.width, r.height, r.srcAlign, r.dstAlign), r.status) << &r - rows;
}

TEST(ConvertChecks, BuffersAreProbedOverTheirStrides) {
    Handle cmyk(CS_RGB, CS_CMYK), planar(CS_YUV410_PLANAR, CS_RGB);
    MappedPages pages(1, Access::readWrite);
    std::uint8_t other[256] = {};
    // Width 3, height 2: rows of 9 and 12 bytes; with both alignments 8 the
    // strides are 16 and 16. The kernels take the alignments as row padding
    // and probe (row + padding) x height themselves: a buffer that passes
    // the frame's probe but not the kernel's gets the kernel's -13. One
    // alignment 0: neither stride is rounded. The planar layout's rows are
    // sized by its 9 bits per pixel.
    const struct {
        ClrHandle* h;
        bool onSource;
        int back, width, height, srcAlign, dstAlign;
        KtStatus status;
    } cases[] = {{cmyk.h, true, 32, 3, 2, 8, 8, ERR_INVALID_PARAMETER}, {cmyk.h, true, 31, 3, 2, 8, 8, ERR_BAD_POINTER},
                 {cmyk.h, false, 32, 3, 2, 8, 8, ERR_INVALID_PARAMETER}, {cmyk.h, false, 31, 3, 2, 8, 8, ERR_BAD_POINTER},
                 {cmyk.h, true, 34, 3, 2, 8, 8, STATUS_OK},  {cmyk.h, true, 18, 3, 2, 8, 0, ERR_INVALID_PARAMETER},
                 {cmyk.h, true, 17, 3, 2, 8, 0, ERR_BAD_POINTER}, {cmyk.h, false, 24, 3, 2, 0, 8, ERR_INVALID_PARAMETER},
                 {cmyk.h, false, 23, 3, 2, 0, 8, ERR_BAD_POINTER}, {cmyk.h, true, 18, 3, 2, 0, 8, STATUS_OK},
                 {planar.h, true, 40, 4, 8, 0, 0, STATUS_OK}, {planar.h, true, 39, 4, 8, 0, 0, ERR_BAD_POINTER}};
    for (const auto& c : cases) {
        std::uint8_t* edge = pages.end() - c.back;
        EXPECT_EQ(Vx_ClrConvert(c.h, c.onSource ? edge : other, c.onSource ? other : edge, c.width, c.height,
                                c.srcAlign, c.dstAlign),
                  c.status)
            << &c - cases;
    }
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvert(cmyk.h, other, pages.data(), 3, 2, 0, 0), ERR_BAD_POINTER);
}

// Equal spaces copy: Vx_ClrConvert by its strides, Vx_ClrConvertDirect by
// its paddings alone (rows then overlap). Each row: the source runs that
// must land at each destination offset, and the first byte left alone.
TEST(ConvertChecks, EqualSpacesCopy) {
    const Bytes src = test::Random(64, 1);
    Handle xyz(CS_XYZ, CS_XYZ);
    const struct {
        bool direct;
        int space, width, height, srcPad, dstPad;
        std::vector<std::array<int, 3>> runs;  // destination, source, length
        int untouched;
    } rows[] = {
        // Alignments 4 and 0: equal unrounded strides, one block.
        {false, CS_XYZ, 3, 4, 4, 0, {{0, 0, 36}}, 36},
        // Alignments 4 and 8: strides 12 and 16, one row of 9 bytes each.
        {false, CS_XYZ, 3, 3, 4, 8, {{0, 0, 9}, {16, 12, 9}, {32, 24, 9}}, 9},
        // Paddings below 2: one block of (bits x width) / 8 x height bytes.
        {true, CS_YUV411_PACKED, 8, 3, 1, 0, {{0, 0, 36}}, 36},
        // Paddings 0 and 4: the first source row lands at 0, 4, 8.
        {true, CS_RGB, 3, 3, 0, 4, {{0, 0, 4}, {4, 0, 4}, {8, 0, 9}}, 17},
        // Paddings 6 and 2: the source steps by 6, the destination by 2.
        {true, CS_CMY, 1, 3, 6, 2, {{0, 0, 1}, {2, 6, 1}, {4, 12, 3}}, 7},
    };
    for (const auto& r : rows) {
        Bytes in = src, dst(128, 0xEE);
        ASSERT_EQ(r.direct ? Vx_ClrConvertDirect(r.space, r.space, in.data(), dst.data(), r.width, r.height, r.srcPad,
                                                 r.dstPad)
                           : Vx_ClrConvert(xyz.h, in.data(), dst.data(), r.width, r.height, r.srcPad, r.dstPad),
                  STATUS_OK);
        for (auto [at, from, n] : r.runs)
            EXPECT_TRUE(std::equal(&src[from], &src[from] + n, &dst[at])) << &r - rows << " at " << at;
        EXPECT_EQ(dst[r.untouched], 0xEE) << &r - rows;
    }
}

// The Lab table's white point and matrix as given at creation, and the
// second set that a parameter call making the table uses.
const double kInitWhite[3] = {95.0166015625, 100.0, 108.76499938964844};
const double kInitMatrix[9] = {3.240478992462158,   -1.5371500253677368, -0.49853500723838806,
                               -0.9692559838294983, 1.875991940498352,   0.04155600070953369,
                               0.05564799904823303, -0.20404300093650818, 1.0573110580444336};
const double kSetWhite[3] = {96.421, 99.997, 82.524};
const double kSetMatrix[9] = {2.830880641937256,   -1.0300474166870117, -0.5604600310325623,
                              -1.5802161693572998, 2.7214279174804688,  0.026361215859651566,
                              0.2055138498544693,  -0.5249314904212952, 1.7662780284881592};

void Put(std::uint8_t* out, ktref::Rgb c, bool bgr) { out[bgr ? 2 : 0] = c.r, out[1] = c.g, out[bgr ? 0 : 2] = c.b; }
ref::Px3 Hsv(const std::uint8_t* in) { return ref::HsvToRgb(in[0], in[1], in[2]); }
void PutYcck(std::uint8_t* out, int r, int g, int b) {
    const ktref::Ycc y = ktref::RgbToYcc(r, g, b);
    out[0] = y.y, out[1] = y.cb, out[2] = y.cr, out[3] = 0;
}

// Each route's pixels against the reference, every channel stepped through
// 16 levels: the kernel each route reaches, with the handle's extras. The
// default black: the two-step rows and the emulation branch below.
TEST(ConvertDispatch, RoutesAndHandleExtras) {
    ConversionParams withOptions = Params(METHOD_BUILTIN), setLab = Params(0, KTCLR_CHANGE_LAB);
    LabOptions lab = test::Lab(10);
    CmykOptions strong = test::Cmyk(1000);
    withOptions.labOptions = setLab.labOptions = &lab;
    withOptions.cmykOptions = &strong;
    using Want = std::function<void(const std::uint8_t* in, std::uint8_t* out)>;
    const struct {
        int src, dst, inBytes, outBytes;
        ConversionParams* params;  // at creation
        ConversionParams* change;  // after it
        bool direct;
        Want want;
    } routes[] = {
        {CS_LAB, CS_RGB, 3, 3, nullptr, nullptr, false,
         [](auto in, auto out) { Put(out, ktref::LabToRgb(in[0], in[1], in[2]), false); }},
        {CS_LAB, CS_BGR, 3, 3, &withOptions, nullptr, false,
         [](auto in, auto out) { Put(out, ktref::LabToRgbWith(in[0], in[1], in[2], kInitWhite, kInitMatrix, 0.45), true); }},
        {CS_LAB, CS_RGB, 3, 3, nullptr, &setLab, false,
         [](auto in, auto out) { Put(out, ktref::LabToRgbWith(in[0], in[1], in[2], kSetWhite, kSetMatrix, 0.45), false); }},
        {CS_RGB, CS_LAB, 3, 3, &withOptions, nullptr, false,
         [](auto in, auto out) { std::memcpy(out, ktref::RgbToLab(in[0], in[1], in[2]).v, 3); }},
        {CS_RGB, CS_CMYK, 3, 4, &withOptions, nullptr, false,
         [](auto in, auto out) { std::ranges::copy(ref::RgbToCmyk(in[0], in[1], in[2], 1000), out); }},
        {CS_BGR, CS_YCCK, 3, 4, nullptr, nullptr, false, [](auto in, auto out) { PutYcck(out, in[2], in[1], in[0]); }},
        {CS_YCCK, CS_RGB, 4, 3, nullptr, nullptr, false, [](auto in, auto out) { ktref::YccToRgb(in[0], in[1], in[2], out); }},
        {CS_YCCK, CS_RGB, 4, 3, nullptr, nullptr, true, [](auto in, auto out) { ktref::YccToRgb(in[0], in[1], in[2], out); }},
        {CS_HSV, CS_CMYK, 3, 4, nullptr, nullptr, true,
         [](auto in, auto out) { std::ranges::copy(ref::RgbToCmyk(Hsv(in)[0], Hsv(in)[1], Hsv(in)[2], 175), out); }},
        {CS_HSV, CS_YCCK, 3, 4, nullptr, nullptr, true, [](auto in, auto out) { PutYcck(out, Hsv(in)[0], Hsv(in)[1], Hsv(in)[2]); }},
    };
    constexpr int kCount = 4096;
    for (const auto& r : routes) {
        SCOPED_TRACE(&r - routes);
        Bytes in(r.inBytes * kCount, 0x5A), out(r.outBytes * kCount);
        for (int i = 0; i < kCount; ++i)
            for (int c = 0; c < 3; ++c) in[i * r.inBytes + c] = static_cast<std::uint8_t>(((i >> (8 - 4 * c)) & 15) * 17);
        Handle h(r.src, r.dst, r.params);
        ASSERT_TRUE(!r.change || Vx_ClrSetConversionParams(h.h, r.change) == STATUS_OK);
        ASSERT_EQ(r.direct ? Vx_ClrConvertDirect(r.src, r.dst, in.data(), out.data(), 64, 64, 0, 0)
                           : Vx_ClrConvert(h.h, in.data(), out.data(), 64, 64, 0, 0),
                  STATUS_OK);
        for (int i = 0; i < kCount; ++i) {
            std::uint8_t want[4];
            r.want(&in[i * r.inBytes], want);
            ASSERT_EQ(std::memcmp(&out[i * r.outBytes], want, r.outBytes), 0) << "pixel " << i;
        }
    }
}

// Pairs that write nothing or drop a status; ICC methods without a
// transform refuse with a null argument. An HLS pixel without
// saturation but with a hue fails its kernel.
TEST(ConvertDispatch, SilentPairsAndStatuses) {
    std::uint8_t in[8] = {200, 10, 20, 30, 40, 50}, badHls[6] = {1, 100, 0, 1, 100, 0};
    ConversionParams builtin = Params(METHOD_BUILTIN);
    Handle labHsv(CS_LAB, CS_HSV, &builtin), xyzHsv(CS_XYZ, CS_HSV, &builtin), hlsCmyk(CS_HLS, CS_CMYK, &builtin),
        hlsRgb(CS_HLS, CS_RGB), toLab(CS_RGB, CS_LAB), hsv(CS_RGB, CS_HSV), hsv2(CS_RGB, CS_HSV), icc(CS_RGB, CS_CMYK),
        customIcc(CS_RGB, CS_CMYK);
    toLab.h->method = METHOD_CUSTOM_EMULATION;  // no custom grid: nothing converted
    hsv.h->method = METHOD_BUILTIN_EMULATION;   // no grid for the pair
    hsv2.h->method = 64;                        // names no method
    icc.h->method = METHOD_ICC, customIcc.h->method = METHOD_CUSTOM_ICC;  // no transform: a null argument
    const struct {
        ClrHandle* h;  // null: Vx_ClrConvertDirect
        int src, dst;
        std::uint8_t* from;
        KtStatus status;
    } rows[] = {
        // One-step pairs without an RGB side.
        {labHsv.h, 0, 0, in, STATUS_OK}, {xyzHsv.h, 0, 0, in, STATUS_OK},
        // Two-step pairs drop the direct conversion's status; the one-step
        // path and Vx_ClrConvertDirect pass the kernel's on.
        {hlsCmyk.h, 0, 0, badHls, STATUS_OK}, {hlsRgb.h, 0, 0, badHls, ERR_INVALID_TAG},
        {nullptr, CS_HLS, CS_XYZ, badHls, ERR_INVALID_TAG},
        // A 4-bit RGB destination through RGB is left as it was.
        {nullptr, CS_HSV, CS_RGB444, in, STATUS_OK}, {nullptr, CS_YUV422_YUYV, CS_RGB444, in, STATUS_OK},
        {toLab.h, 0, 0, in, STATUS_OK}, {hsv.h, 0, 0, in, STATUS_OK},
        {hsv2.h, 0, 0, in, ERR_BAD_METHOD}, {icc.h, 0, 0, in, ERR_NULL_ARGUMENT},
        {customIcc.h, 0, 0, in, ERR_NULL_ARGUMENT},
    };
    for (const auto& r : rows) {
        std::uint8_t out[8];
        std::memset(out, 0xAB, sizeof out);
        EXPECT_EQ(r.h ? Vx_ClrConvert(r.h, r.from, out, 1, 1, 0, 0)
                      : Vx_ClrConvertDirect(r.src, r.dst, r.from, out, 2, 1, 0, 0),
                  r.status)
            << &r - rows;
        EXPECT_EQ(out[0], 0xAB) << &r - rows;
    }
    // The emulation branch takes RGB to CMYK with the kernel, reading B, G, R.
    Handle toCmyk(CS_RGB, CS_CMYK);
    toCmyk.h->method = METHOD_CUSTOM_EMULATION;
    std::uint8_t out[4];
    ASSERT_EQ(Vx_ClrConvert(toCmyk.h, in + 1, out, 1, 1, 0, 0), STATUS_OK);
    const ref::Px4 want = ref::RgbToCmyk(30, 20, 10, 175);
    EXPECT_TRUE(std::equal(want.begin(), want.end(), out));
}

// The source layout first (its space, then the sizes), then the
// destination's; groups before any probe. Probes: (row + padding) x height
// on each side; a padding below 1 is 0.
TEST(ConvertDirect, ChecksInOrder) {
    std::uint8_t a[256] = {}, b[256] = {};
    MappedPages none(1, Access::none), pages(1, Access::readWrite);
    std::uint8_t *bad = none.data(), *end = pages.end();
    const struct {
        int src, dst;
        std::uint8_t *from, *to;
        int width, height, srcPad, dstPad;
        KtStatus status;
    } cases[] = {{16, CS_RGB, nullptr, b, 1, 1, 0, 0, ERR_INVALID_PARAMETER},
                 {16, CS_RGB, a, nullptr, 1, 1, 0, 0, ERR_INVALID_PARAMETER},
                 {16, 129, a, b, 0, 0, 0, 0, ERR_BAD_COLOR_SPACE}, {-1, CS_RGB, a, b, 1, 1, 0, 0, ERR_BAD_COLOR_SPACE},
                 {CS_RGB, 145, a, b, 0, 1, 0, 0, ERR_INVALID_PARAMETER},
                 {CS_RGB, 145, a, b, 1, 1, 0, 0, ERR_BAD_COLOR_SPACE},
                 {CS_YUV422_YUYV, CS_RGB, bad, b, 5, 1, 0, 0, ERR_ODD_WIDTH},
                 {CS_YUV422_UYVY, CS_RGB, bad, b, 3, 1, 0, 0, ERR_ODD_WIDTH},
                 {CS_RGB, CS_YUV411_PACKED, a, bad, 12, 1, 0, 0, ERR_ODD_WIDTH},
                 {CS_YUV410_PLANAR, CS_RGB, bad, b, 4, 6, 0, 0, ERR_BAD_PLANAR_SIZE},
                 {CS_RGB, CS_YUV410_PLANAR, a, bad, 6, 4, 0, 0, ERR_BAD_PLANAR_SIZE},
                 {CS_YUV410_PLANAR, CS_RGB, bad, b, 4, 4, 0, 0, ERR_BAD_POINTER},
                 {CS_YUV422_YUYV, CS_RGB, a, b, 4, 1, 0, 0, STATUS_OK},
                 {CS_RGB, CS_XYZ, end - 14, b, 2, 2, 1, 0, STATUS_OK},
                 {CS_RGB, CS_XYZ, end - 13, b, 2, 2, 1, 0, ERR_BAD_POINTER},
                 {CS_RGB, CS_XYZ, end - 12, b, 2, 2, -5, 0, STATUS_OK},
                 {CS_RGB, CS_CMYK, a, end - 16, 2, 2, 0, 0, STATUS_OK},
                 {CS_RGB, CS_CMYK, a, end - 15, 2, 2, 0, 0, ERR_BAD_POINTER},
                 {CS_YUV410_PLANAR, CS_RGB, end - 19, b, 4, 4, 0, 0, ERR_BAD_POINTER},
                 {CS_YUV410_PLANAR, CS_RGB, end - 20, b, 4, 4, 0, 0, STATUS_OK},
                 // In place: equal paddings are refused, different ones copy.
                 {CS_HSV, CS_HSV, a, a, 2, 2, 4, 4, ERR_SAME_BUFFER}, {CS_HSV, CS_HSV, a, a, 2, 2, 0, 1, STATUS_OK},
                 {CS_RGB, CS_XYZ, a, a, 2, 2, 4, 4, STATUS_OK}};
    for (const auto& c : cases)
        EXPECT_EQ(Vx_ClrConvertDirect(c.src, c.dst, c.from, c.to, c.width, c.height, c.srcPad, c.dstPad), c.status)
            << &c - cases;
    pages.Protect(0, Access::read);
    EXPECT_EQ(Vx_ClrConvertDirect(CS_RGB, CS_CMYK, a, end - 16, 2, 2, 0, 0), ERR_BAD_POINTER);
}

}  // namespace
}  // namespace kt
