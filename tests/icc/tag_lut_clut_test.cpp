// The exported CLUT helpers and the curve-set size rule.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/alloc_control.h"
#include "icc_test_support.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

TEST(ClutHelpers, Sizes) {
    ICCCLUT c{};
    c.gridPoints[0] = c.gridPoints[1] = c.gridPoints[2] = 2;
    c.precision = 2;
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&c, 3, 3), 68u);
    ICCCLUT one{};
    one.gridPoints[0] = 3;
    one.precision = 1;
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&one, 1, 1), 24u);  // 23 rounded up
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&one, 0, 1), 24u);   // no inputs: a product of 1
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&one, -4, 5), 28u);
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&one, 1, 0), 20u);
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(nullptr, 1, 1), 0u);
    // Encoded and flat CLUTs serve as well: only the first 17 bytes count.
    uint8_t encoded[20] = {17, 17, 17, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2};
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(encoded, 3, 3), 17u * 17 * 17 * 2 * 3 + 20 + 2);
    // Beyond 32 bits: no size.
    ICCCLUT big{};
    std::memset(big.gridPoints, 255, 16);
    big.precision = 2;
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&big, 16, 15), 0u);
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&big, 40, 15), 0u);
}

TEST(ClutHelpers, ToBufferAndBack) {
    // A 2x2 grid, 2 outputs, 2-byte entries: 8 entries, 16 data bytes, 36.
    uint8_t element[36] = {2, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 7, 8, 9};
    for (int i = 0; i < 8; ++i) PutBe16(element + 20 + 2 * i, static_cast<uint16_t>(0x1000 * i + 0x0102));
    uint8_t flat[36];
    std::memset(flat, 0xEE, sizeof flat);
    ICCCLUT rec{};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element, 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(rec.gridPoints[0], 2);
    EXPECT_EQ(rec.gridPoints[1], 2);
    EXPECT_EQ(rec.precision, 2);
    EXPECT_EQ(rec.reserved[0], 9);  // reversed
    EXPECT_EQ(rec.reserved[2], 7);
    uint16_t v;
    std::memcpy(&v, rec.data + 2, 2);
    EXPECT_EQ(v, 0x1102);  // native now
    EXPECT_EQ(std::memcmp(flat, element, 17), 0);
    EXPECT_EQ(flat[17], 9);
    EXPECT_EQ(std::memcmp(flat + 20, rec.data, 16), 0);
    Vx_ClrIntFreeCLUT(&rec);
    EXPECT_NE(rec.data, nullptr);  // the pointer is not reset

    // Without a buffer the entries stay as they stand.
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(nullptr, element, 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(std::memcmp(rec.data, element + 20, 16), 0);
    Vx_ClrIntFreeCLUT(&rec);
    // Without a record the temporary one goes again.
    const int64_t live = memt::LiveBlocks(kt::mem::Module::iccprofile);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(nullptr, element, 2, 2, nullptr), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element, 2, 2, nullptr), STATUS_OK);
    EXPECT_EQ(memt::LiveBlocks(kt::mem::Module::iccprofile), live);
    memt::FailNthAllocation(1);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element, 2, 2, &rec), ERR_NO_MEMORY);
    memt::FailNthAllocation(0);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, nullptr, 2, 2, &rec), ERR_INVALID_PARAMETER);

    // One-byte entries are never swapped; a precision byte other than 1 is
    // taken as 2.
    uint8_t bytes1[24] = {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 10, 20, 30, 0};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, bytes1, 1, 1, &rec), STATUS_OK);
    EXPECT_EQ(std::vector<uint8_t>(rec.data, rec.data + 4), (std::vector<uint8_t>{10, 20, 30, 0}));
    Vx_ClrIntFreeCLUT(&rec);

    // Flattening a record.
    uint8_t data[4] = {1, 2, 3, 4};
    ICCCLUT src{};
    src.gridPoints[0] = 2;
    src.precision = 1;
    src.reserved[1] = 5;
    src.data = data;
    uint8_t out[24] = {};
    ASSERT_EQ(Vx_ConvertCLUTToBuffer(out, &src, 1, 4), STATUS_OK);
    EXPECT_EQ(out[0], 2);
    EXPECT_EQ(out[16], 1);
    EXPECT_EQ(out[18], 5);
    EXPECT_EQ(std::memcmp(out + 20, data, 4), 0);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(out, &src, 3, 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(out, &src, 0, 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(nullptr, &src, 1, 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(out, nullptr, 1, 4), ERR_INVALID_PARAMETER);
}

TEST(ClutHelpers, CurveSetSizes) {
    uint16_t e[3] = {1, 2, 3};
    int32_t g[7] = {};
    ICCCurveType one{Sig("curv"), 0, 1, e};
    ICCCurveType none{Sig("curv"), 0, 0, e};
    ICCParametricCurveType p0{Sig("para"), 0, 0, 0, g};
    ICCParametricCurveType p4{Sig("para"), 0, 4, 0, g};
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&one, 1, 0, 1), 16u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&none, 1, 0, 1), 12u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&p0, 1, 0, 1), 16u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&p4, 1, 0, 1), 40u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(nullptr, 1, 0, 1), 0u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&one, 0, 0, 1), 0u);

    // An array of records mixing both kinds walks by the record size.
    struct Mixed {
        ICCCurveType three;
        ICCParametricCurveType para;
        ICCCurveType one;
    } mixed{{Sig("curv"), 0, 3, e}, {Sig("para"), 0, 3, 0, g}, {Sig("curv"), 0, 1, e}};
    static_assert(sizeof(Mixed) == 3 * sizeof(ICCCurveType));
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&mixed, 3, 0, 1), 20u + 32u + 16u);

    // A flat set walks by the padded curves; in file order the counts are
    // big-endian, while a 'para' function type is read natively.
    std::vector<uint8_t> flat(20 + 32 + 16, 0);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &mixed.three), STATUS_OK);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data() + 20, &mixed.para), STATUS_OK);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data() + 52, &mixed.one), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(flat.data(), 3, 0, 0), 68u);
    const uint8_t fileSet[16 + 12] = {'c', 'u', 'r', 'v', 0, 0, 0, 0, 0, 0, 0, 1, 1, 0xCD, 0, 0,
                                      'p', 'a', 'r', 'a', 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(fileSet, 2, 1, 0), 16u + 16u);
    uint8_t fileType3[12] = {'p', 'a', 'r', 'a', 0, 0, 0, 0, 0, 3, 0, 0};
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(fileType3, 1, 1, 0), 12u);  // type 768: no parameters
}

}  // namespace
