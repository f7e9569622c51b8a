// The exported curve helpers: sizes, parameter counts, the parametric test,
// flat buffers both ways and the release calls.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "icc_test_support.h"
#include "platform/alloc_control.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

TEST(CurveHelpers, SizesAndParameterCounts) {
    ICCCurveType c{};
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(nullptr, 3), 0u);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, 1), 5u);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, 0), 4u);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, 2), 8u);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, 256), 516u);
    c.count = 9;  // never looked at
    EXPECT_EQ(Vx_ClrIntGetCurveTypeSize(&c, 2), 8u);

    const int32_t counts[] = {1, 3, 4, 5, 7};
    for (uint32_t t = 0; t < 5; ++t) EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(t), counts[t]);
    EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(5), 0);
    EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(65535), 0);
    EXPECT_EQ(Vx_GetParametricCurveNumberOfParameters(256), 0);

    ICCParametricCurveType p{};
    const uint32_t sizes[] = {8, 16, 20, 24, 32};
    for (uint16_t t = 0; t < 5; ++t) {
        p.functionType = t;
        EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeSize(&p), sizes[t]);
    }
    p.functionType = 5;
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeSize(&p), 4u);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeSize(nullptr), 0u);
}

TEST(CurveHelpers, ParametricTestReadsTheAskedOrder) {
    ICCParametricCurveType host{};
    host.signature = Sig("para");
    for (int32_t flag : {0, 2, -1, 7}) EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, flag), 1) << flag;
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&host, 1), 0);
    const uint8_t file[12] = {'p', 'a', 'r', 'a'};
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file, 1), 1);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(file, 0), 0);
    ICCCurveType curve{};
    curve.signature = Sig("curv");
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(&curve, 0), 0);
    EXPECT_EQ(Vx_ClrIntIsParametricCurveType(nullptr, 0), 0);
}

TEST(CurveHelpers, FlatBuffersBothWays) {
    uint16_t entries[3] = {0x0102, 0x0304, 0x0506};
    ICCCurveType host{Sig("curv"), 0, 3, entries};
    std::vector<uint8_t> flat(12 + 6, 0xEE);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &host), STATUS_OK);
    uint32_t head[3];
    std::memcpy(head, flat.data(), 12);
    EXPECT_EQ(head[0], Sig("curv"));
    EXPECT_EQ(head[2], 3u);
    EXPECT_EQ(std::memcmp(flat.data() + 12, entries, 6), 0);

    ICCCurveType back{};
    ASSERT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(flat.data(), &back), STATUS_OK);
    EXPECT_EQ(back.signature, Sig("curv"));
    ASSERT_EQ(back.count, 3u);
    EXPECT_EQ(back.entries[2], 0x0506);
    Vx_ClrIntIccFreeCurveType(&back);
    EXPECT_EQ(back.entries, nullptr);
    Vx_ClrIntIccFreeCurveType(&back);  // twice: nothing happens
    Vx_ClrIntIccFreeCurveType(nullptr);

    // The file-order record of the same curve flattens to as many bytes: its
    // count is read big-endian because its signature is not the native one.
    ICCCurveType file{};
    ASSERT_EQ(Vx_CreateICCTagData(&file, &host, Sig("curv")), STATUS_OK);
    std::vector<uint8_t> fileFlat(12 + 6 + 4, 0xEE);
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(fileFlat.data(), &file), STATUS_OK);
    const uint8_t expected[18] = {'c', 'u', 'r', 'v', 0, 0, 0, 0, 0, 0, 0, 3, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(std::vector<uint8_t>(fileFlat.begin(), fileFlat.begin() + 18), std::vector<uint8_t>(expected, expected + 18));
    EXPECT_EQ(fileFlat[18], 0xEE);
    Vx_FreeICCTagType(&file, Sig("curv"));

    // A count of 0 allocates and copies nothing.
    ICCCurveType identity{Sig("curv"), 0, 0, nullptr};
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &identity), STATUS_OK);
    ASSERT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(flat.data(), &back), STATUS_OK);
    EXPECT_EQ(back.count, 0u);
    Vx_ClrIntIccFreeCurveType(&back);

    EXPECT_EQ(Vx_ConvertCurveTypeToBuffer(nullptr, &host), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(nullptr, &back), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(flat.data(), nullptr), ERR_INVALID_PARAMETER);
}

TEST(CurveHelpers, ParametricFlatBuffersAndTheKeptAsymmetry) {
    int32_t params[5] = {0x26666, 0xF2A7, 0x0D59, 0x13D0, 0x0A3D};
    ICCParametricCurveType host{Sig("para"), 0, 3, 0, params};
    std::vector<uint8_t> flat(12 + 20 + 4, 0xEE);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &host), STATUS_OK);
    EXPECT_EQ(std::memcmp(flat.data() + 12, params, 20), 0);
    EXPECT_EQ(flat[32], 0xEE);
    ICCParametricCurveType back{};
    ASSERT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &back), STATUS_OK);
    EXPECT_EQ(back.signature, Sig("para"));
    EXPECT_EQ(back.functionType, 3);
    EXPECT_EQ(std::vector<int32_t>(back.parameters, back.parameters + 5), std::vector<int32_t>(params, params + 5));
    Vx_ClrIntIccFreeParametricCurveType(&back);
    EXPECT_EQ(back.parameters, nullptr);
    Vx_ClrIntIccFreeParametricCurveType(&back);
    Vx_ClrIntIccFreeParametricCurveType(nullptr);

    // A file-order record of type 3 reads as type 768: 12 bytes only.
    ICCParametricCurveType file{};
    ASSERT_EQ(Vx_CreateICCTagData(&file, &host, Sig("para")), STATUS_OK);
    std::vector<uint8_t> fileFlat(40, 0xEE);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(fileFlat.data(), &file), STATUS_OK);
    const uint8_t head[12] = {'p', 'a', 'r', 'a', 0, 0, 0, 0, 0, 3, 0, 0};
    EXPECT_EQ(std::memcmp(fileFlat.data(), head, 12), 0);
    EXPECT_EQ(fileFlat[12], 0xEE);
    Vx_FreeICCTagType(&file, Sig("para"));

    // An unknown function type: nothing to copy, or an invalid tag to read.
    host.functionType = 9;
    EXPECT_EQ(Vx_ConvertParametricCurveTypeToBuffer(fileFlat.data(), &host), STATUS_OK);
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &host), STATUS_OK);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &back), ERR_INVALID_TAG);
    EXPECT_EQ(back.functionType, 9);
    EXPECT_EQ(back.parameters, nullptr);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(nullptr, &back), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ConvertParametricCurveTypeToBuffer(nullptr, &host), ERR_INVALID_PARAMETER);

    // Allocation failure: the fixed fields are there, the array is not.
    host.functionType = 3;
    ASSERT_EQ(Vx_ConvertParametricCurveTypeToBuffer(flat.data(), &host), STATUS_OK);
    memt::FailNthAllocation(1);
    EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(flat.data(), &back), ERR_NO_MEMORY);
    memt::FailNthAllocation(0);
    EXPECT_EQ(back.functionType, 3);
    EXPECT_EQ(back.parameters, nullptr);
    uint16_t e[2] = {1, 2};
    ICCCurveType two{Sig("curv"), 0, 2, e};
    ASSERT_EQ(Vx_ConvertCurveTypeToBuffer(flat.data(), &two), STATUS_OK);
    ICCCurveType curveBack{};
    memt::FailNthAllocation(1);
    EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(flat.data(), &curveBack), ERR_NO_MEMORY);
    memt::FailNthAllocation(0);
    EXPECT_EQ(curveBack.count, 2u);
    EXPECT_EQ(curveBack.entries, nullptr);
}

}  // namespace
