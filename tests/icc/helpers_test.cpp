// The exported curve and CLUT helpers: sizes, flat buffers both ways and
// the release calls, against values worked out by hand.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "icc_test_support.h"
#include "platform/alloc_control.h"

namespace {

using namespace icctest;

TEST(Helpers, Sizes) {
    ICCCurveType c{Sig("curv"), 0, 9, nullptr};  // the record's count is never looked at
    ICCParametricCurveType p[6] = {};
    for (uint16_t t = 0; t < 6; ++t) p[t].functionType = t;
    ICCCLUT one{}, big{};
    one.gridPoints[0] = 3, one.precision = 1;
    std::memset(big.gridPoints, 255, 16), big.precision = 2;
    const uint8_t encoded[20] = {17, 17, 17, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2};  // 17 bytes read
    // A set in file order reads its counts big-endian but a 'para' type
    // natively, so type 3 there is 768, which has no parameters.
    const Bytes fileSet = Cat({Head("curv"), Be32s({1}), {1, 0xCD, 0, 0}, Head("para"), Be32s({0})});
    const Bytes type3 = Cat({Head("para"), {0, 3, 0, 0}});
    const std::vector<std::pair<uint32_t, uint32_t>> sizes = {
        {Vx_ClrIntGetCurveTypeSize(&c, 0), 4}, {Vx_ClrIntGetCurveTypeSize(&c, 1), 5},
        {Vx_ClrIntGetCurveTypeSize(&c, 2), 8}, {Vx_ClrIntGetCurveTypeSize(&c, 256), 516},
        {Vx_ClrIntGetCurveTypeSize(nullptr, 3), 0},
        {Vx_ClrIntGetParametricCurveTypeSize(&p[0]), 8}, {Vx_ClrIntGetParametricCurveTypeSize(&p[1]), 16},
        {Vx_ClrIntGetParametricCurveTypeSize(&p[2]), 20}, {Vx_ClrIntGetParametricCurveTypeSize(&p[3]), 24},
        {Vx_ClrIntGetParametricCurveTypeSize(&p[4]), 32}, {Vx_ClrIntGetParametricCurveTypeSize(&p[5]), 4},
        {Vx_ClrIntGetParametricCurveTypeSize(nullptr), 0},
        {Vx_GetParametricCurveNumberOfParameters(4), 7}, {Vx_GetParametricCurveNumberOfParameters(256), 0},
        // CLUT: 20 head bytes, entries rounded up to 4, no inputs a product of 1.
        {Vx_ClrIntGetCLUTSize(&one, 1, 1), 24}, {Vx_ClrIntGetCLUTSize(&one, 0, 1), 24},
        {Vx_ClrIntGetCLUTSize(&one, -4, 5), 28}, {Vx_ClrIntGetCLUTSize(&one, 1, 0), 20},
        {Vx_ClrIntGetCLUTSize(encoded, 3, 3), 17 * 17 * 17 * 2 * 3 + 22}, {Vx_ClrIntGetCLUTSize(&big, 16, 15), 0},
        {Vx_ClrIntGetCLUTSize(nullptr, 1, 1), 0},
        {Vx_ClrIntGetLutCurveSize(fileSet.data(), 2, 1, 0), 32}, {Vx_ClrIntGetLutCurveSize(type3.data(), 1, 1, 0), 12},
    };
    for (size_t i = 0; i < sizes.size(); ++i) EXPECT_EQ(sizes[i].first, sizes[i].second) << "row " << i;

    // Records walk by the record size, flat host-order sets by their bytes.
    uint16_t e[3] = {1, 2, 3};
    int32_t g[7] = {1, 2, 3, 4, 5, 6, 7};
    struct {
        ICCCurveType three;
        ICCParametricCurveType para;
        ICCCurveType one;
    } mixed{{Sig("curv"), 0, 3, e}, {Sig("para"), 0, 3, 0, g}, {Sig("curv"), 0, 1, e}};
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&mixed, 3, 0, 1), 20u + 32u + 16u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&mixed.one, 0, 0, 1), 0u);
    Bytes flat(68);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &mixed.three), STATUS_OK);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data() + 20, &mixed.para), STATUS_OK);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data() + 52, &mixed.one), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(flat.data(), 3, 0, 0), 68u);
    EXPECT_EQ(FlatSetElements(flat.data(), 3), Cat({ElementOf(&mixed.three, Sig("curv")), {0, 0},
                                                     ElementOf(&mixed.para, Sig("para")), ElementOf(&mixed.one, Sig("curv")), {0, 0}}));
}

TEST(Helpers, ParametricTestReadsTheAskedOrder) {
    ICCParametricCurveType host{};
    host.signature = Sig("para");
    const Bytes file = Head("para");
    for (int32_t flag : {0, 2, -1}) EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, flag), 1) << flag;
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, 1), 0);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file.data(), 1), 1);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file.data(), 0), 0);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(nullptr, 0), 0);
}

// A file-order record (from create) flattens with its big-endian fields as
// they stand, so its curve count still reads as 3, while a 'para' type 3
// reads as 768: 12 bytes only. An unknown type flattens its head and reads
// back refused.
TEST(Helpers, FileOrderRecordsFlattenAsTheyStand) {
    uint16_t entries[3] = {0x0102, 0x0304, 0x0506};
    int32_t params[5] = {0x26666, 0xF2A7, 0x0D59, 0x13D0, 0x0A3D};
    ICCCurveType curve{Sig("curv"), 0, 3, entries}, curveFile{};
    ICCParametricCurveType para{Sig("para"), 0, 3, 0, params}, paraFile{}, paraBack{};
    Bytes flat(40, 0xEE);
    ASSERT_EQ(Vx_CreateICCTagData(&curveFile, &curve, Sig("curv")), STATUS_OK);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &curveFile), STATUS_OK);
    EXPECT_EQ(Of(flat.data(), 19), Cat({Head("curv"), Be32s({3}), {1, 2, 3, 4, 5, 6, 0xEE}}));
    Vx_FreeICCTagType(&curveFile, Sig("curv"));
    std::fill(flat.begin(), flat.end(), 0xEE);
    ASSERT_EQ(Vx_CreateICCTagData(&paraFile, &para, Sig("para")), STATUS_OK);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &paraFile), STATUS_OK);
    EXPECT_EQ(Of(flat.data(), 13), Cat({Head("para"), {0, 3, 0, 0, 0xEE}}));
    Vx_FreeICCTagType(&paraFile, Sig("para"));

    para.functionType = 9;
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &para), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &paraBack), ERR_INVALID_TAG);
    EXPECT_EQ(paraBack.parameters, nullptr);
    Vx_ClrIntIccFreeParametricCurveType(&paraBack);
    Vx_ClrIntIccFreeCurveType(nullptr);

    EXPECT_EQ(Vx_ConvertCurveTypeToBuffer(nullptr, &curve), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(nullptr, &curveFile), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), nullptr), ERR_INVALID_PARAMETER);
}

TEST(Helpers, ClutBuffersBothWays) {
    // A 2x2 grid, 2 outputs, 2-byte entries: 8 big-endian entries after the
    // 20-byte head, whose reserved bytes 17..19 come back reversed.
    const Bytes element = Cat({{2, 2}, Bytes(14), {2, 7, 8, 9},
                               {0x01, 2, 0x11, 2, 0x21, 2, 0x31, 2, 0x41, 2, 0x51, 2, 0x61, 2, 0x71, 2}});
    const uint16_t native[8] = {0x0102, 0x1102, 0x2102, 0x3102, 0x4102, 0x5102, 0x6102, 0x7102};
    uint8_t flat[36];
    ICCCLUT rec{};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element.data(), 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(Of(&rec, 20), Cat({{2, 2}, Bytes(14), {2, 9, 8, 7}}));
    EXPECT_EQ(Of(rec.data, 16), Of(native, 16));
    EXPECT_EQ(Of(flat, 36), Cat({Of(element.data(), 17), {9, 8, 7}, Of(native, 16)}));
    Vx_ClrIntFreeCLUT(&rec);
    // Without a buffer the entries stay as they stand; without a record
    // the temporary one goes again; one-byte entries are never swapped.
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(nullptr, element.data(), 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(Of(rec.data, 16), Of(element.data() + 20, 16));
    Vx_ClrIntFreeCLUT(&rec);
    const int64_t live = kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element.data(), 2, 2, nullptr), STATUS_OK);
    EXPECT_EQ(kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile), live);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, nullptr, 2, 2, &rec), ERR_INVALID_PARAMETER);
    const uint8_t bytes1[24] = {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 10, 20, 30, 0};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, bytes1, 1, 1, &rec), STATUS_OK);
    EXPECT_EQ(Of(rec.data, 4), Of(bytes1 + 20, 4));
    Vx_ClrIntFreeCLUT(&rec);

    uint8_t data[4] = {1, 2, 3, 4}, out[24] = {};
    ICCCLUT src{};
    src.gridPoints[0] = 2, src.precision = 1, src.reserved[1] = 5, src.data = data;
    ASSERT_EQ(Vx_ConvertCLUTToBuffer(out, &src, 1, 4), STATUS_OK);
    EXPECT_EQ(Of(out, 24), Cat({{2}, Bytes(15), {1, 0, 5, 0, 1, 2, 3, 4}}));
    for (int32_t precision : {0, 3}) EXPECT_EQ(Vx_ConvertCLUTToBuffer(out, &src, precision, 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(nullptr, &src, 1, 4), ERR_INVALID_PARAMETER);
}

}  // namespace
