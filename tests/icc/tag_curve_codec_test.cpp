// 'curv' and 'para' through the tag calls: created records against
// hand-computed bytes, round trips through a profile, truncated and
// inflated elements, allocation failures.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/support.h"
#include "tag_lut_fixtures.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

std::vector<uint8_t> BytesOf(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return std::vector<uint8_t>(b, b + n);
}

TEST(CurveCodec, CreateWritesFileOrder) {
    uint16_t entries[3] = {0x0102, 0x0304, 0x0506};
    ICCCurveType host{0, 0xFFFFFFFF, 3, entries};  // signature and reserved ignored
    ICCCurveType file{};
    ASSERT_EQ(Vx_CreateICCTagData(&file, &host, Sig("curv")), STATUS_OK);
    EXPECT_EQ(BytesOf(&file.signature, 4), (std::vector<uint8_t>{'c', 'u', 'r', 'v'}));
    EXPECT_EQ(file.reserved, 0u);
    EXPECT_EQ(BytesOf(&file.count, 4), (std::vector<uint8_t>{0, 0, 0, 3}));
    EXPECT_EQ(BytesOf(file.entries, 6), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
    Vx_FreeICCTagType(&file, Sig("curv"));
    EXPECT_EQ(file.entries, nullptr);

    int32_t params[7] = {0x00026666, -0x10000, 0x7FFFFFFF, 1, 2, 3, 4};
    ICCParametricCurveType ph{0, 0, 4, 0xBEEF, params};
    ICCParametricCurveType pf{};
    ASSERT_EQ(Vx_CreateICCTagData(&pf, &ph, Sig("para")), STATUS_OK);
    EXPECT_EQ(BytesOf(&pf, 12), (std::vector<uint8_t>{'p', 'a', 'r', 'a', 0, 0, 0, 0, 0, 4, 0, 0}));
    EXPECT_EQ(BytesOf(pf.parameters, 12),
              (std::vector<uint8_t>{0, 2, 0x66, 0x66, 0xFF, 0xFF, 0, 0, 0x7F, 0xFF, 0xFF, 0xFF}));
    Vx_FreeICCTagType(&pf, Sig("para"));

    // What a create refuses.
    ICCCurveType noEntries{Sig("curv"), 0, 0, nullptr};
    EXPECT_EQ(Vx_CreateICCTagData(&file, &noEntries, Sig("curv")), ERR_INVALID_PARAMETER);
    ph.functionType = 5;
    EXPECT_EQ(Vx_CreateICCTagData(&pf, &ph, Sig("para")), ERR_INVALID_PARAMETER);
    ph.functionType = 0;
    ph.parameters = nullptr;
    EXPECT_EQ(Vx_CreateICCTagData(&pf, &ph, Sig("para")), ERR_INVALID_PARAMETER);
    // A count whose element could not be addressed in 32 bits.
    ICCCurveType huge{Sig("curv"), 0, 0xFFFFFFF0u, entries};
    EXPECT_EQ(Vx_CreateICCTagData(&file, &huge, Sig("curv")), ERR_INVALID_PARAMETER);
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &huge, Sig("rTRC"), Sig("curv")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(p->tagCount, 0);
}

TEST(CurveCodec, RoundTripsThroughAProfile) {
    for (uint32_t count : {0u, 1u, 2u, 3u, 256u, 4096u}) {
        SCOPED_TRACE(count);
        std::vector<uint16_t> entries(count);
        for (uint32_t i = 0; i < count; ++i) entries[i] = static_cast<uint16_t>(i * 65535u / (count > 1 ? count - 1 : 1) ^ (i & 1));
        if (count == 1) entries[0] = 0x01CD;  // gamma 1.8
        uint16_t none = 0;  // an identity still names an array
        ICCCurveType host{Sig("curv"), 0, count, count ? entries.data() : &none};
        ICCCurveType back{};
        std::vector<uint8_t> element;
        ASSERT_EQ(RoundTrip(&host, Sig("curv"), Sig("rTRC"), &back, &element), STATUS_OK);
        EXPECT_EQ(back.signature, Sig("curv"));
        EXPECT_EQ(back.reserved, 0u);
        ASSERT_EQ(back.count, count);
        EXPECT_EQ(std::vector<uint16_t>(back.entries, back.entries + count), entries);
        ASSERT_EQ(element.size(), 12u + 2 * count);
        EXPECT_EQ(Be32(element.data() + 8), count);
        Vx_FreeICCTagType(&back, Sig("curv"));
        EXPECT_EQ(back.entries, nullptr);
        ExpectPrefixesRefused(element, Sig("curv"));
    }
    for (uint16_t type = 0; type < 5; ++type) {
        SCOPED_TRACE(type);
        int32_t params[7] = {0x00026666, 0x0000F2A7, 0x00000D59, 0x000013D0, 0x00000A3D, -7, 0x7FFFFFFF};
        ICCParametricCurveType host{Sig("para"), 0, type, 0, params};
        ICCParametricCurveType back{};
        std::vector<uint8_t> element;
        ASSERT_EQ(RoundTrip(&host, Sig("para"), Sig("gTRC"), &back, &element), STATUS_OK);
        EXPECT_EQ(back.signature, Sig("para"));
        EXPECT_EQ(back.reserved, 0u);
        EXPECT_EQ(back.functionType, type);
        EXPECT_EQ(back.reserved2, 0);
        const int32_t n = Vx_GetParametricCurveNumberOfParameters(type);
        EXPECT_EQ(std::vector<int32_t>(back.parameters, back.parameters + n), std::vector<int32_t>(params, params + n));
        ASSERT_EQ(element.size(), 12u + 4 * n);
        Vx_FreeICCTagType(&back, Sig("para"));
        ExpectPrefixesRefused(element, Sig("para"));
    }
    // An unknown tag with a curve: work done, warning, and the same warning
    // when it is read.
    uint16_t e = 0x0100;
    ICCCurveType gamma{Sig("curv"), 0, 1, &e};
    ICCCurveType back{};
    EXPECT_EQ(RoundTrip(&gamma, Sig("curv"), Sig("zzzz"), &back), WARN_UNKNOWN_TAG);
}

TEST(CurveCodec, ReservedWordsAndInflatedCounts) {
    // Reserved bytes are read big-endian; counts beyond the element are
    // refused before anything is allocated for them.
    uint8_t curv[14] = {'c', 'u', 'r', 'v', 1, 2, 3, 4, 0, 0, 0, 1, 0x02, 0x33};
    ICCCurveType c{};
    const kt::icc::TagTypeCodec* codec = kt::icc::FindTagTypeCodec(Sig("curv"));
    ASSERT_NE(codec, nullptr);
    ASSERT_EQ(codec->parse(curv, 14, &c), STATUS_OK);
    EXPECT_EQ(c.reserved, 0x01020304u);
    EXPECT_EQ(c.entries[0], 0x0233);
    Vx_FreeICCTagType(&c, Sig("curv"));
    for (uint32_t count : {2u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        PutBe32(curv + 8, count);
        memt::ResetAllocationCount();
        EXPECT_EQ(ParseBare(curv, 14, Sig("curv")), ERR_INVALID_TAG) << count;
        EXPECT_EQ(memt::AllocationCount(), 0);
    }
    uint8_t para[16] = {'p', 'a', 'r', 'a', 0, 0, 0, 0, 0, 0, 0xAB, 0xCD, 0, 1, 0, 0};
    ICCParametricCurveType pc{};
    ASSERT_EQ(kt::icc::FindTagTypeCodec(Sig("para"))->parse(para, 16, &pc), STATUS_OK);
    EXPECT_EQ(pc.reserved2, 0xABCD);
    EXPECT_EQ(pc.parameters[0], 0x10000);
    Vx_FreeICCTagType(&pc, Sig("para"));
    for (uint16_t type : {uint16_t{1}, uint16_t{4}, uint16_t{5}, uint16_t{0xFFFF}}) {
        PutBe16(para + 8, type);
        EXPECT_EQ(ParseBare(para, 16, Sig("para")), ERR_INVALID_TAG) << type;
    }
}

TEST(CurveCodec, AllocationFailuresLeakNothing) {
    uint16_t entries[4] = {0, 100, 1000, 65535};
    int32_t params[3] = {0x20000, 0x10000, 0};
    ICCCurveType curve{Sig("curv"), 0, 4, entries};
    ICCParametricCurveType para{Sig("para"), 0, 1, 0, params};
    std::vector<uint8_t> image;
    {
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        ASSERT_EQ(Vx_SetICCTagData(p.get(), &curve, Sig("rTRC"), Sig("curv")), STATUS_OK);
        ASSERT_EQ(Vx_SetICCTagData(p.get(), &para, Sig("gTRC"), Sig("para")), STATUS_OK);
        image = p.Image();
    }
    struct Case {
        uint32_t type, tag;
        void* host;
    } cases[] = {{Sig("curv"), Sig("rTRC"), &curve}, {Sig("para"), Sig("gTRC"), &para}};
    for (const Case& c : cases) {
        auto check = [](int n, int status) { EXPECT_EQ(status, ERR_NO_MEMORY) << "allocation " << n; };
        kt::test::ForEachAllocationFailure(
            [&] {
                AnyRecord out{};
                const KtStatus st = Vx_CreateICCTagData(&out, c.host, c.type);
                Vx_FreeICCTagType(&out, c.type);
                return static_cast<int>(st);
            },
            check);
        Profile q;
        ASSERT_EQ(Vx_FillICCProfileStructure(q.get(), image.data(), static_cast<uint32_t>(image.size())), STATUS_OK);
        kt::test::ForEachAllocationFailure(
            [&] {
                AnyRecord out{};
                const KtStatus st = Vx_GetICCTagData(q.get(), &out, c.tag);
                Vx_FreeICCTagType(&out, c.type);
                return static_cast<int>(st);
            },
            check);
        int call = 0;
        kt::test::ForEachAllocationFailure(
            [&] {
                memt::FailNthAllocation(0);
                Profile p;
                EXPECT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
                memt::FailNthAllocation(++call);
                return static_cast<int>(Vx_SetICCTagData(p.get(), c.host, c.tag, c.type));
            },
            check);
    }
}

}  // namespace
