// Vx_ClrSetConversionParams: the statuses of each bit of the change mask,
// and what each option bit copies (argument checks: handle_test.cpp; the
// ICC bits: icc_test.cpp; the Lab table's white point: ConvertDispatch).
#include <gtest/gtest.h>

#include <cstring>

#include "colormodels/lab_tables.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Handle;
using test::Params;

// Each bit refuses a handle without its space and a missing record; the
// method bit refuses only the unprepared ICC methods. Steps done before a
// failing one stay done.
TEST(SetParams, StatusesOfEachBit) {
    unsigned char buffer[4] = {};
    CmykOptions cmyk = test::Cmyk(0);
    YuvOptions yuv = test::Yuv(buffer, 4);
    LabOptions lab = test::Lab(0);
    IccOptions icc{};
    enum Records { none, all, noCmyk };
    constexpr std::uint32_t kBuiltin = METHOD_BUILTIN;
    const struct {
        int src, dst;
        std::uint32_t mask, method;
        Records records;
        KtStatus status;
    } rows[] = {
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD, METHOD_CUSTOM_ICC, none, ERR_BAD_METHOD},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD, METHOD_ICC, none, ERR_BAD_METHOD},
        // Values outside the four checked ones are taken as they come.
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD, 64, none, STATUS_OK},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD, 3, none, STATUS_OK},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD, 0, none, STATUS_OK},
        {CS_RGB, CS_LAB, KTCLR_CHANGE_CMYK, 0, all, ERR_BAD_METHOD},
        {CS_CMYK, CS_RGB, KTCLR_CHANGE_CMYK, 0, none, ERR_INVALID_PARAMETER},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_YUV, 0, all, ERR_BAD_METHOD},
        // The YUV bit tests the CMYK pointer as well as its own.
        {CS_YUV, CS_RGB, KTCLR_CHANGE_YUV, 0, noCmyk, ERR_INVALID_PARAMETER},
        {CS_YUV, CS_RGB, KTCLR_CHANGE_YUV, 0, none, ERR_INVALID_PARAMETER},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_LAB, 0, all, ERR_BAD_METHOD},
        {CS_LAB, CS_RGB, KTCLR_CHANGE_LAB, 0, none, ERR_INVALID_PARAMETER},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_ICC_OPTIONS, 0, none, ERR_INVALID_PARAMETER},
        {CS_RGB, CS_HSV, KTCLR_CHANGE_METHOD | KTCLR_CHANGE_LAB, 16, all, ERR_BAD_METHOD},
    };
    for (const auto& r : rows) {
        ConversionParams init = Params(METHOD_BUILTIN);
        Handle h(r.src, r.dst, &init);
        ConversionParams p = Params(r.method, r.mask);
        if (r.records != none) {
            p.cmykOptions = r.records == all ? &cmyk : nullptr;
            p.yuvOptions = &yuv, p.labOptions = &lab, p.iccOptions = &icc;
        }
        EXPECT_EQ(Vx_ClrSetConversionParams(h.h, &p), r.status) << &r - rows;
        const bool changed = (r.mask & KTCLR_CHANGE_METHOD) && (r.status == STATUS_OK || r.method == 16);
        EXPECT_EQ(h.h->method, changed ? r.method : kBuiltin) << &r - rows;
    }
}

// A handle without a record gets the caller's whole; one with a record
// takes only the masked values (the YUV bytes go into the buffer it has).
TEST(SetParams, OptionRecordsTakeTheMaskedValues) {
    unsigned char first[4] = {1, 2, 3, 4}, second[4] = {9, 8, 7, 6};
    YuvOptions yuv = test::Yuv(first, 4), change = test::Yuv(second, 4, KTCLR_YUV_VALUE1 | KTCLR_YUV_VALUE4 |
                                                                            KTCLR_YUV_BUFFER | KTCLR_YUV_VALUE5);
    LabOptions lab = test::Lab(0), ranges = test::Lab(20, 1u | 4u | 32u);
    IccOptions icc{{1, 2, 3, 4, 5}}, next{{10, 20, 30, 40, 50}};
    CmykOptions cmyk = test::Cmyk(90, 0);
    ConversionParams init = Params(METHOD_BUILTIN);
    init.yuvOptions = &yuv, init.labOptions = &lab, init.iccOptions = &icc;
    Handle madeYuv(CS_YUV, CS_CMYK, &init), madeLab(CS_RGB, CS_LAB, &init), bareYuv(CS_CMYK, CS_YUV),
        bareLab(CS_LAB, CS_RGB);
    change.values[0] = 11, change.values[1] = 22, change.values[3] = 44, change.value5 = 55;
    ConversionParams p = Params(0, KTCLR_CHANGE_CMYK | KTCLR_CHANGE_YUV | KTCLR_CHANGE_ICC_OPTIONS);
    p.cmykOptions = &cmyk, p.yuvOptions = &change, p.iccOptions = &next, p.labOptions = &ranges;
    for (Handle* h : {&madeYuv, &bareYuv}) ASSERT_EQ(Vx_ClrSetConversionParams(h->h, &p), STATUS_OK);
    p.prepareMethods = KTCLR_CHANGE_LAB | KTCLR_CHANGE_ICC_OPTIONS;
    for (Handle* h : {&madeLab, &bareLab}) ASSERT_EQ(Vx_ClrSetConversionParams(h->h, &p), STATUS_OK);

    // CMYK: copied whole, mask or not; once held, bit 1 of the mask decides.
    EXPECT_EQ(bareYuv.h->cmykOptions->value, 90u);
    cmyk.value = 10, p.prepareMethods = KTCLR_CHANGE_CMYK;
    for (auto [mask, held] : {std::pair{0u, 90u}, {1u, 10u}}) {
        cmyk.validMask = mask;
        EXPECT_EQ(Vx_ClrSetConversionParams(bareYuv.h, &p), STATUS_OK);
        EXPECT_EQ(bareYuv.h->cmykOptions->value, held);
    }
    // YUV: still the first buffer, now holding the new bytes.
    const YuvOptions* y = madeYuv.h->yuvOptions;
    EXPECT_TRUE(y->values[0] == 11 && y->values[1] == 0 && y->values[3] == 44 && y->value5 == 55);
    EXPECT_TRUE(y->buffer == first && first[0] == 9 && first[3] == 6);
    EXPECT_EQ(bareYuv.h->yuvOptions->buffer, second);
    // Lab: a table of its own with the default ranges, or the masked values.
    EXPECT_EQ(bareLab.h->rgbToLabTable, nullptr);
    const std::int32_t defaults[6] = {0, 100, 128, 170, 96, 200}, masked[6] = {20, 1, 22, 3, 4, 25};
    EXPECT_TRUE(std::equal(defaults, defaults + 6, bareLab.h->labTable->ranges));
    EXPECT_TRUE(std::equal(masked, masked + 6, madeLab.h->labTable->ranges));
    // ICC options: the values 0, 1 and 3 of a held copy; a handle made
    // without parameters gets a zeroed copy first.
    const std::uint32_t iccMasked[5] = {10, 20, 3, 40, 5}, iccBare[5] = {10, 20, 0, 40, 0};
    EXPECT_TRUE(std::equal(iccMasked, iccMasked + 5, madeLab.h->iccOptions->values));
    EXPECT_TRUE(std::equal(iccBare, iccBare + 5, bareLab.h->iccOptions->values));
}

}  // namespace
}  // namespace kt
