// Vx_ClrSetConversionParams: argument checks in order and each bit of the
// change mask (the ICC bits: icc_test.cpp).
#include <gtest/gtest.h>

#include <cstring>

#include "colormodels/lab_tables.h"
#include "support/support.h"

namespace kt {
namespace {

using test::MappedPages;
using test::Params;

class SetParams : public ::testing::Test {
protected:
    ClrHandle* Make(int src, int dst, ConversionParams* p = nullptr) {
        ClrHandle* h = nullptr;
        EXPECT_EQ(Vx_ClrInit(&h, src, dst, p), STATUS_OK);
        made_.push_back(h);
        return h;
    }
    void TearDown() override {
        for (ClrHandle* h : made_) Vx_ClrFree(h);
    }
    std::vector<ClrHandle*> made_;
};

TEST_F(SetParams, ArgumentChecksInOrder) {
    ClrHandle* h = Make(CS_RGB, CS_HSV);
    ConversionParams p = Params(0, 0);
    EXPECT_EQ(Vx_ClrSetConversionParams(h, nullptr), ERR_INVALID_PARAMETER);
    p.structSize = 1625;
    EXPECT_EQ(Vx_ClrSetConversionParams(nullptr, &p), ERR_BAD_STRUCT_SIZE);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    EXPECT_EQ(Vx_ClrSetConversionParams(nullptr, &p), ERR_INVALID_PARAMETER);

    MappedPages pages(2, MappedPages::Access::readWrite);
    pages.Protect(1, MappedPages::Access::none);
    auto* edge = reinterpret_cast<ConversionParams*>(pages.data() + pages.page() - offsetof(ConversionParams, iccFlags));
    std::memcpy(edge, &p, offsetof(ConversionParams, iccFlags));
    EXPECT_EQ(Vx_ClrSetConversionParams(h, edge), STATUS_OK);
    edge->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, edge), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_ClrSetConversionParams(reinterpret_cast<ClrHandle*>(pages.data() + pages.page()), &p),
              ERR_BAD_POINTER);
    ClrHandle copy = *h;
    EXPECT_EQ(Vx_ClrSetConversionParams(&copy, &p), ERR_INVALID_COLOR_HANDLE);

    // An empty mask changes nothing.
    const ClrHandle before = *h;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    EXPECT_EQ(std::memcmp(&before, h, sizeof before), 0);
}

TEST_F(SetParams, Method) {
    ConversionParams init = Params(METHOD_BUILTIN);
    ClrHandle* h = Make(CS_RGB, CS_HSV, &init);
    ConversionParams p = Params(METHOD_CUSTOM_ICC, KTCLR_CHANGE_METHOD);
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_BAD_METHOD);
    p.method = METHOD_ICC;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_BAD_METHOD);
    EXPECT_EQ(h->method, static_cast<std::uint32_t>(METHOD_BUILTIN));
    // Values outside the four checked ones are taken as they come.
    for (std::uint32_t m : {16u, 64u, 0u, 3u}) {
        p.method = m;
        EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
        EXPECT_EQ(h->method, m);
    }
    p.method = METHOD_BUILTIN;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
}

TEST_F(SetParams, CmykOptions) {
    ClrHandle* lab = Make(CS_RGB, CS_LAB);
    ConversionParams p = Params(0, KTCLR_CHANGE_CMYK);
    CmykOptions cmyk = test::Cmyk(90, 0);
    p.cmykOptions = &cmyk;
    EXPECT_EQ(Vx_ClrSetConversionParams(lab, &p), ERR_BAD_METHOD);

    ClrHandle* h = Make(CS_CMYK, CS_RGB);
    p.cmykOptions = nullptr;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_INVALID_PARAMETER);
    p.cmykOptions = &cmyk;
    // Without a copy the record is copied whole, mask or not.
    ASSERT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    ASSERT_NE(h->cmykOptions, nullptr);
    EXPECT_EQ(h->cmykOptions->value, 90u);
    cmyk.value = 10;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    EXPECT_EQ(h->cmykOptions->value, 90u);  // bit 1 of the mask not set
    cmyk.validMask = 1;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    EXPECT_EQ(h->cmykOptions->value, 10u);
}

TEST_F(SetParams, YuvOptionsTestTheCmykPointer) {
    unsigned char first[4] = {1, 2, 3, 4};
    unsigned char second[4] = {9, 8, 7, 6};
    ConversionParams init = Params(METHOD_BUILTIN);
    YuvOptions yuv = test::Yuv(first, 4);
    init.yuvOptions = &yuv;
    ClrHandle* h = Make(CS_YUV, CS_RGB, &init);
    ASSERT_NE(h->yuvOptions, nullptr);

    ConversionParams p = Params(0, KTCLR_CHANGE_YUV);
    YuvOptions change = test::Yuv(second, 4, KTCLR_YUV_VALUE1 | KTCLR_YUV_VALUE4 | KTCLR_YUV_BUFFER | KTCLR_YUV_VALUE5);
    change.values[0] = 11;
    change.values[1] = 22;
    change.values[3] = 44;
    change.value5 = 55;
    p.yuvOptions = &change;
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_INVALID_PARAMETER);  // no CMYK record
    CmykOptions unused = test::Cmyk(0);
    p.cmykOptions = &unused;
    ASSERT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    EXPECT_EQ(h->yuvOptions->values[0], 11);
    EXPECT_EQ(h->yuvOptions->values[1], 0);
    EXPECT_EQ(h->yuvOptions->values[3], 44);
    EXPECT_EQ(h->yuvOptions->value5, 55);
    EXPECT_EQ(h->yuvOptions->buffer, first);  // still the first buffer...
    EXPECT_EQ(first[0], 9);                   // ...now holding the new bytes
    EXPECT_EQ(first[3], 6);

    ClrHandle* rgb = Make(CS_RGB, CS_HSV);
    EXPECT_EQ(Vx_ClrSetConversionParams(rgb, &p), ERR_BAD_METHOD);
    // A handle without a copy gets the record whole.
    ClrHandle* bare = Make(CS_RGB, CS_YUV);
    ASSERT_EQ(Vx_ClrSetConversionParams(bare, &p), STATUS_OK);
    ASSERT_NE(bare->yuvOptions, nullptr);
    EXPECT_EQ(bare->yuvOptions->buffer, second);
}

TEST_F(SetParams, LabTable) {
    ConversionParams p = Params(0, KTCLR_CHANGE_LAB);
    LabOptions lab = test::Lab(20, 1u | 4u | 32u);
    p.labOptions = &lab;
    EXPECT_EQ(Vx_ClrSetConversionParams(Make(CS_RGB, CS_HSV), &p), ERR_BAD_METHOD);

    // A handle made without Lab options gets a table of its own with the
    // default ranges (its white point and matrix: ConvertDispatch.LabTables).
    ClrHandle* bare = Make(CS_LAB, CS_RGB);
    p.labOptions = nullptr;
    EXPECT_EQ(Vx_ClrSetConversionParams(bare, &p), ERR_INVALID_PARAMETER);
    p.labOptions = &lab;
    ASSERT_EQ(Vx_ClrSetConversionParams(bare, &p), STATUS_OK);
    ASSERT_NE(bare->labTable, nullptr);
    EXPECT_EQ(bare->rgbToLabTable, nullptr);
    const std::int32_t defaults[6] = {0, 100, 128, 170, 96, 200};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(bare->labTable->ranges[i], defaults[i]);

    // One made with them only takes the masked values.
    ConversionParams init = Params(METHOD_BUILTIN);
    LabOptions first = test::Lab(0);
    init.labOptions = &first;
    ClrHandle* h = Make(CS_RGB, CS_LAB, &init);
    ASSERT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    const std::int32_t expected[6] = {20, 1, 22, 3, 4, 25};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(h->labTable->ranges[i], expected[i]);
}

TEST_F(SetParams, IccOptionsUnderTheBuiltinMethod) {
    ConversionParams init = Params(METHOD_BUILTIN);
    IccOptions first{{1, 2, 3, 4, 5}};
    init.iccOptions = &first;
    ClrHandle* h = Make(CS_RGB, CS_HSV, &init);
    ConversionParams p = Params(0, KTCLR_CHANGE_ICC_OPTIONS);
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_INVALID_PARAMETER);
    IccOptions next{{10, 20, 30, 40, 50}};
    p.iccOptions = &next;
    ASSERT_EQ(Vx_ClrSetConversionParams(h, &p), STATUS_OK);
    const std::uint32_t expected[5] = {10, 20, 3, 40, 5};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(h->iccOptions->values[i], expected[i]);

    // A handle made without parameters gets a copy to hold them.
    ClrHandle* bare = Make(CS_RGB, CS_HSV);
    ASSERT_EQ(Vx_ClrSetConversionParams(bare, &p), STATUS_OK);
    ASSERT_NE(bare->iccOptions, nullptr);
    EXPECT_EQ(bare->iccOptions->values[3], 40u);
    EXPECT_EQ(bare->iccOptions->values[2], 0u);
}

TEST_F(SetParams, EarlierChangesStayWhenALaterStepFails) {
    ConversionParams p = Params(16, KTCLR_CHANGE_METHOD | KTCLR_CHANGE_LAB);
    ClrHandle* h = Make(CS_RGB, CS_HSV);
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &p), ERR_BAD_METHOD);  // no Lab side
    EXPECT_EQ(h->method, 16u);
}

}  // namespace
}  // namespace kt
