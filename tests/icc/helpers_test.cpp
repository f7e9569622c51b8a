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
    for (const auto& [count, size] : {std::pair{0u, 4u}, {1u, 5u}, {2u, 8u}, {256u, 516u}})
        EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, count), size) << count;
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(nullptr, 3), 0u);

    // Parameter counts and 'para' sizes by function type; 5 and up unknown.
    const int32_t counts[] = {1, 3, 4, 5, 7, 0};
    const uint32_t sizes[] = {8, 16, 20, 24, 32, 4};
    ICCParametricCurveType p{};
    for (uint16_t t = 0; t < 6; ++t) {
        p.functionType = t;
        EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(t), counts[t]) << t;
        EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeSize(&p), sizes[t]) << t;
    }
    EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(256), 0);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeSize(nullptr), 0u);

    // CLUT sizes: 20 head bytes, entries rounded up to 4; no inputs is a
    // product of 1; only the first 17 bytes of the record are read.
    ICCCLUT one{};
    one.gridPoints[0] = 3;
    one.precision = 1;
    const struct {
        int32_t in, out;
        uint32_t size;
    } clut[] = {{1, 1, 24}, {0, 1, 24}, {-4, 5, 28}, {1, 0, 20}};
    for (const auto& r : clut) EXPECT_EQ(Vx_ClrIntGetCLUTSize(&one, r.in, r.out), r.size) << r.in << " " << r.out;
    const uint8_t encoded[20] = {17, 17, 17, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2};
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(encoded, 3, 3), 17u * 17 * 17 * 2 * 3 + 20 + 2);
    ICCCLUT big{};
    std::memset(big.gridPoints, 255, 16);
    big.precision = 2;
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(&big, 16, 15), 0u);  // beyond 32 bits
    EXPECT_EQ(Vx_ClrIntGetCLUTSize(nullptr, 1, 1), 0u);

    // Curve sets: an array of records walks by the record size; a set in
    // file order reads its counts big-endian, a 'para' type natively, so
    // type 3 there is 768, which has no parameters.
    uint16_t e[3] = {1, 2, 3};
    int32_t g[7] = {};
    struct {
        ICCCurveType three;
        ICCParametricCurveType para;
        ICCCurveType one;
    } mixed{{Sig("curv"), 0, 3, e}, {Sig("para"), 0, 3, 0, g}, {Sig("curv"), 0, 1, e}};
    static_assert(sizeof mixed == 3 * sizeof(ICCCurveType));
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&mixed, 3, 0, 1), 20u + 32u + 16u);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(&mixed.one, 0, 0, 1), 0u);
    std::vector<uint8_t> flat(68, 0);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &mixed.three), STATUS_OK);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data() + 20, &mixed.para), STATUS_OK);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data() + 52, &mixed.one), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(flat.data(), 3, 0, 0), 68u);
    const Bytes fileSet = Cat({Head("curv"), Be32s({1}), {1, 0xCD, 0, 0}, Head("para"), Be32s({0})});
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(fileSet.data(), 2, 1, 0), 32u);
    const Bytes type3 = Cat({Head("para"), {0, 3, 0, 0}});
    EXPECT_EQ(Vx_ClrIntGetLutCurveSize(type3.data(), 1, 1, 0), 12u);
}

TEST(Helpers, ParametricTestReadsTheAskedOrder) {
    ICCParametricCurveType host{};
    host.signature = Sig("para");
    for (int32_t flag : {0, 2, -1}) EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, flag), 1) << flag;
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, 1), 0);
    const Bytes file = Head("para");
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file.data(), 1), 1);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file.data(), 0), 0);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(nullptr, 0), 0);
}

// Host-order records flatten natively; a file-order record (from create)
// flattens with its big-endian fields as they stand, so its curve count
// still reads as 3, while a 'para' type 3 reads as 768: 12 bytes only.
TEST(Helpers, CurveFlatBuffersBothWays) {
    uint16_t entries[3] = {0x0102, 0x0304, 0x0506};
    ICCCurveType curve{Sig("curv"), 0, 3, entries}, curveBack{}, curveFile{};
    std::vector<uint8_t> flat(40, 0xEE);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &curve), STATUS_OK);
    const uint32_t head[3] = {Sig("curv"), 0, 3};
    EXPECT_EQ(Of(flat.data(), 18), Cat({Of(head, 12), Of(entries, 6)}));
    ASSERT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(flat.data(), &curveBack), STATUS_OK);
    EXPECT_EQ(ValuesOfRecord(&curveBack), ValuesOfRecord(&curve));
    Vx_ClrIntIccFreeCurveType(&curveBack);
    EXPECT_EQ(curveBack.entries, nullptr);
    Vx_ClrIntIccFreeCurveType(&curveBack);
    ASSERT_EQ(Vx_CreateICCTagData(&curveFile, &curve, Sig("curv")), STATUS_OK);
    std::fill(flat.begin(), flat.end(), 0xEE);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &curveFile), STATUS_OK);
    EXPECT_EQ(Of(flat.data(), 19), Cat({Head("curv"), Be32s({3}), {1, 2, 3, 4, 5, 6, 0xEE}}));
    Vx_FreeICCTagType(&curveFile, Sig("curv"));

    int32_t params[5] = {0x26666, 0xF2A7, 0x0D59, 0x13D0, 0x0A3D};
    ICCParametricCurveType para{Sig("para"), 0, 3, 0, params}, paraBack{}, paraFile{};
    std::fill(flat.begin(), flat.end(), 0xEE);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &para), STATUS_OK);
    EXPECT_EQ(Of(flat.data() + 12, 21), Cat({Of(params, 20), {0xEE}}));
    ASSERT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &paraBack), STATUS_OK);
    EXPECT_EQ(ValuesOfRecord(&paraBack), ValuesOfRecord(&para));
    Vx_ClrIntIccFreeParametricCurveType(&paraBack);
    EXPECT_EQ(paraBack.parameters, nullptr);
    Vx_ClrIntIccFreeParametricCurveType(&paraBack);
    ASSERT_EQ(Vx_CreateICCTagData(&paraFile, &para, Sig("para")), STATUS_OK);
    std::fill(flat.begin(), flat.end(), 0xEE);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &paraFile), STATUS_OK);
    EXPECT_EQ(Of(flat.data(), 13), Cat({Head("para"), {0, 3, 0, 0, 0xEE}}));
    Vx_FreeICCTagType(&paraFile, Sig("para"));

    // An unknown function type flattens its head and reads back refused.
    para.functionType = 9;
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &para), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &paraBack), ERR_INVALID_TAG);
    EXPECT_EQ(paraBack.parameters, nullptr);

    EXPECT_EQ(Vx_ConvertCurveTypeToBuffer(nullptr, &curve), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(nullptr, &curveBack), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), nullptr), ERR_INVALID_PARAMETER);
}

TEST(Helpers, ClutBuffersBothWays) {
    // A 2x2 grid, 2 outputs, 2-byte entries: 8 big-endian entries after the
    // 20-byte head, whose reserved bytes 17..19 come back reversed.
    const Bytes element = Cat({{2, 2}, Bytes(14), {2, 7, 8, 9},
                               {0x01, 2, 0x11, 2, 0x21, 2, 0x31, 2, 0x41, 2, 0x51, 2, 0x61, 2, 0x71, 2}});
    uint8_t flat[36];
    std::memset(flat, 0xEE, sizeof flat);
    ICCCLUT rec{};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element.data(), 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(Of(&rec, 20), Cat({{2, 2}, Bytes(14), {2, 9, 8, 7}}));
    const uint16_t native[8] = {0x0102, 0x1102, 0x2102, 0x3102, 0x4102, 0x5102, 0x6102, 0x7102};
    EXPECT_EQ(Of(rec.data, 16), Of(native, 16));
    EXPECT_EQ(Of(flat, 18), Cat({Of(element.data(), 17), {9}}));
    EXPECT_EQ(Of(flat + 20, 16), Of(native, 16));
    Vx_ClrIntFreeCLUT(&rec);
    // Without a buffer the entries stay as they stand; without a record
    // the temporary one goes again.
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(nullptr, element.data(), 2, 2, &rec), STATUS_OK);
    EXPECT_EQ(Of(rec.data, 16), Of(element.data() + 20, 16));
    Vx_ClrIntFreeCLUT(&rec);
    const int64_t live = kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, element.data(), 2, 2, nullptr), STATUS_OK);
    EXPECT_EQ(kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile), live);
    EXPECT_EQ(Vx_ClrIntGetCLUTBuffer(flat, nullptr, 2, 2, &rec), ERR_INVALID_PARAMETER);
    // One-byte entries are never swapped.
    const uint8_t bytes1[24] = {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 10, 20, 30, 0};
    ASSERT_EQ(Vx_ClrIntGetCLUTBuffer(flat, bytes1, 1, 1, &rec), STATUS_OK);
    EXPECT_EQ(Of(rec.data, 4), Of(bytes1 + 20, 4));
    Vx_ClrIntFreeCLUT(&rec);

    uint8_t data[4] = {1, 2, 3, 4};
    ICCCLUT src{};
    src.gridPoints[0] = 2;
    src.precision = 1;
    src.reserved[1] = 5;
    src.data = data;
    uint8_t out[24] = {};
    ASSERT_EQ(Vx_ConvertCLUTToBuffer(out, &src, 1, 4), STATUS_OK);
    EXPECT_EQ(Of(out, 24), Cat({{2}, Bytes(15), {1, 0, 5, 0, 1, 2, 3, 4}}));
    for (int32_t inputs : {0, 3}) EXPECT_EQ(Vx_ConvertCLUTToBuffer(out, &src, inputs, 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCLUTToBuffer(nullptr, &src, 1, 4), ERR_INVALID_PARAMETER);
}

}  // namespace
