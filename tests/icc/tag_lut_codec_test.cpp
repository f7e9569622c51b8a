// 'mft2', 'mft1', 'mAB ' and 'mBA ' through the tag calls: created records
// and elements against hand-computed bytes, round trips through a profile,
// truncated, inflated and damaged elements, allocation failures.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/support.h"
#include "tag_lut_samples.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

// A lut16 or lut8 record over tables kept here.
struct LutSample {
    ICCLut16 lut{};
    std::vector<uint16_t> in16, clut16, out16;
    std::vector<uint8_t> in8, clut8, out8;

    LutSample(bool wide, uint8_t inputs, uint8_t outputs, uint8_t grid, uint16_t inEntries, uint16_t outEntries) {
        lut.inputChannels = inputs;
        lut.outputChannels = outputs;
        lut.gridPoints = grid;
        for (int i = 0; i < 9; ++i) lut.matrix[i] = i % 4 == 0 ? 0x10000 : -i * 3;
        lut.inputEntries = inEntries;
        lut.outputEntries = outEntries;
        size_t clutCount = outputs;
        for (int i = 0; i < inputs; ++i) clutCount *= grid;
        const size_t counts[3] = {size_t{inEntries} * inputs, clutCount, size_t{outEntries} * outputs};
        std::vector<uint16_t>* t16[3] = {&in16, &clut16, &out16};
        std::vector<uint8_t>* t8[3] = {&in8, &clut8, &out8};
        void** slots[3] = {&lut.inputTables, &lut.clut, &lut.outputTables};
        for (int t = 0; t < 3; ++t) {
            t16[t]->resize(counts[t] + 1);
            t8[t]->resize(counts[t] + 1);
            for (size_t i = 0; i < counts[t]; ++i) {
                (*t16[t])[i] = uint16_t(i * 40503u + t * 7);
                (*t8[t])[i] = uint8_t(i * 13 + t);
            }
            *slots[t] = wide ? static_cast<void*>(t16[t]->data()) : static_cast<void*>(t8[t]->data());
        }
    }
};

void ExpectSameLut(const ICCLut16& back, const LutSample& s, bool wide) {
    EXPECT_EQ(back.signature, wide ? Sig("mft2") : Sig("mft1"));
    EXPECT_EQ(back.reserved, 0u);
    EXPECT_EQ(back.inputChannels, s.lut.inputChannels);
    EXPECT_EQ(back.outputChannels, s.lut.outputChannels);
    EXPECT_EQ(back.gridPoints, s.lut.gridPoints);
    EXPECT_EQ(back.padding, 0);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(back.matrix[i], s.lut.matrix[i]) << i;
    EXPECT_EQ(back.inputEntries, s.lut.inputEntries);
    EXPECT_EQ(back.outputEntries, s.lut.outputEntries);
    const void* tables[3] = {back.inputTables, back.clut, back.outputTables};
    if (wide) {
        const std::vector<uint16_t>* want[3] = {&s.in16, &s.clut16, &s.out16};
        for (int t = 0; t < 3; ++t)
            EXPECT_EQ(std::memcmp(tables[t], want[t]->data(), 2 * (want[t]->size() - 1)), 0) << "table " << t;
    } else {
        const std::vector<uint8_t>* want[3] = {&s.in8, &s.clut8, &s.out8};
        for (int t = 0; t < 3; ++t)
            EXPECT_EQ(std::memcmp(tables[t], want[t]->data(), want[t]->size() - 1), 0) << "table " << t;
    }
}

// Every byte of an element set to a few values in turn: each parse answers
// a status and stays inside the element (the sanitizers watch).
void ParseDamagedCopies(const std::vector<uint8_t>& element, uint32_t type) {
    for (size_t at = 8; at < element.size(); ++at) {
        for (uint8_t value : {uint8_t{0}, uint8_t{1}, uint8_t{0x7F}, uint8_t{0xFF}}) {
            std::vector<uint8_t> damaged = element;
            damaged[at] = value;
            const KtStatus st = ParseBare(damaged.data(), static_cast<uint32_t>(damaged.size()), type);
            EXPECT_TRUE(st == STATUS_OK || st == ERR_INVALID_TAG) << at << " " << st;
        }
    }
}

TEST(LutCodec, Lut16CreateRoundTripAndBounds) {
    LutSample s(true, 3, 2, 3, 4, 5);
    // The file-order record, by hand.
    ICCLut16 file{};
    ASSERT_EQ(Vx_CreateICCTagData(&file, &s.lut, Sig("mft2")), STATUS_OK);
    const auto* sig = reinterpret_cast<const uint8_t*>(&file.signature);
    EXPECT_EQ(std::vector<uint8_t>(sig, sig + 4), (std::vector<uint8_t>{'m', 'f', 't', '2'}));
    EXPECT_EQ(file.inputChannels, 3);
    EXPECT_EQ(file.gridPoints, 3);
    EXPECT_EQ(Be32(reinterpret_cast<const uint8_t*>(&file.matrix[0])), 0x10000u);
    EXPECT_EQ(Be32(reinterpret_cast<const uint8_t*>(&file.matrix[1])), uint32_t(-3));
    EXPECT_EQ(Be16(reinterpret_cast<const uint8_t*>(&file.inputEntries)), 4);
    EXPECT_EQ(Be16(reinterpret_cast<const uint8_t*>(&file.outputEntries)), 5);
    EXPECT_EQ(Be16(static_cast<const uint8_t*>(file.clut) + 2), s.clut16[1]);
    EXPECT_EQ(Be16(static_cast<const uint8_t*>(file.outputTables) + 18), s.out16[9]);
    Vx_FreeICCTagType(&file, Sig("mft2"));
    EXPECT_EQ(file.inputTables, nullptr);
    EXPECT_EQ(file.clut, nullptr);

    ICCLut16 back{};
    std::vector<uint8_t> element;
    ASSERT_EQ(RoundTrip(&s.lut, Sig("mft2"), Sig("A2B0"), &back, &element), STATUS_OK);
    ExpectSameLut(back, s, true);
    Vx_FreeICCTagType(&back, Sig("mft2"));
    const size_t entries = 4 * 3 + 27 * 2 + 5 * 2;
    ASSERT_EQ(element.size(), 52 + 2 * entries);
    const uint8_t head[12] = {'m', 'f', 't', '2', 0, 0, 0, 0, 3, 2, 3, 0};
    EXPECT_EQ(std::memcmp(element.data(), head, 12), 0);
    EXPECT_EQ(std::vector<uint8_t>(element.begin() + 48, element.begin() + 52), (std::vector<uint8_t>{0, 4, 0, 5}));
    EXPECT_EQ(Be16(element.data() + 52 + 2 * 12), s.clut16[0]);
    ExpectPrefixesRefused(element, Sig("mft2"));
    ParseDamagedCopies(element, Sig("mft2"));

    // Inflated counts are refused before anything is allocated for them.
    for (auto [at, value] : {std::pair{48, 0xFF}, std::pair{50, 0xFF}, std::pair{10, 0xFF}, std::pair{8, 0x0F}}) {
        std::vector<uint8_t> big = element;
        big[at] = uint8_t(value);
        memt::ResetAllocationCount();
        EXPECT_EQ(ParseBare(big.data(), static_cast<uint32_t>(big.size()), Sig("mft2")), ERR_INVALID_TAG) << at;
        EXPECT_EQ(memt::AllocationCount(), 0);
    }
    // Channels 255 with 255 grid points: far beyond any element.
    LutSample huge(true, 1, 1, 2, 1, 1);
    huge.lut.inputChannels = 255;
    huge.lut.gridPoints = 255;
    EXPECT_EQ(Vx_CreateICCTagData(&file, &huge.lut, Sig("mft2")), ERR_INVALID_PARAMETER);
    Vx_FreeICCTagType(&file, Sig("mft2"));
    s.lut.clut = nullptr;
    EXPECT_EQ(Vx_CreateICCTagData(&file, &s.lut, Sig("mft2")), ERR_INVALID_PARAMETER);
}

TEST(LutCodec, Lut8KeepsNativeEntryCounts) {
    LutSample s(false, 3, 3, 2, 3, 2);
    ICCLut8 back{};
    std::vector<uint8_t> element;
    ASSERT_EQ(RoundTrip(&s.lut, Sig("mft1"), Sig("B2A0"), &back, &element), STATUS_OK);
    ExpectSameLut(back, s, false);
    Vx_FreeICCTagType(&back, Sig("mft1"));
    ASSERT_EQ(element.size(), 52u + 9 + 24 + 6);
    EXPECT_EQ(std::vector<uint8_t>(element.begin() + 48, element.begin() + 52), (std::vector<uint8_t>{3, 0, 2, 0}));
    EXPECT_EQ(element[52], s.in8[0]);
    EXPECT_EQ(element[52 + 9 + 1], s.clut8[1]);
    ExpectPrefixesRefused(element, Sig("mft1"));
    ParseDamagedCopies(element, Sig("mft1"));

    // Bytes 48..51 of 00 01 00 01 are 256 input and 256 output entries.
    std::vector<uint8_t> wide(52 + 256 + 2 + 256, 0);
    const uint8_t head[12] = {'m', 'f', 't', '1', 0, 0, 0, 0, 1, 1, 2, 0};
    std::memcpy(wide.data(), head, 12);
    wide[49] = 1;
    wide[51] = 1;
    wide[52 + 255] = 0xAB;
    ICCLut8 lut{};
    ASSERT_EQ(kt::icc::FindTagTypeCodec(Sig("mft1"))->parse(wide.data(), uint32_t(wide.size()), &lut), STATUS_OK);
    EXPECT_EQ(lut.inputEntries, 256);
    EXPECT_EQ(lut.outputEntries, 256);
    EXPECT_EQ(static_cast<const uint8_t*>(lut.inputTables)[255], 0xAB);
    Vx_FreeICCTagType(&lut, Sig("mft1"));
    EXPECT_EQ(ParseBare(wide.data(), uint32_t(wide.size() - 1), Sig("mft1")), ERR_INVALID_TAG);
}

// Sizes of the encoded elements of a sample: B, M, CLUT, A.
struct AbLayout {
    uint32_t b, m, clut, a;
};
AbLayout LayoutOf(AbSample& s) {
    return {Vx_ClrIntGetLutCurveSize(s.b.data(), s.CountMB(), 0, 1), Vx_ClrIntGetLutCurveSize(s.m.data(), s.CountMB(), 0, 1),
            Vx_ClrIntGetCLUTSize(&s.clut.clut, s.in, s.out), Vx_ClrIntGetLutCurveSize(s.a.data(), s.CountA(), 0, 1)};
}

void ExpectSameAb(const ICCLutAtoB& back, AbSample& s) {
    const AbLayout l = LayoutOf(s);
    EXPECT_EQ(back.signature, s.Type());
    EXPECT_EQ(back.reserved, 0u);
    EXPECT_EQ(back.inputChannels, s.in);
    EXPECT_EQ(back.outputChannels, s.out);
    EXPECT_EQ(back.reserved2, 0);
    EXPECT_EQ(back.offsetB, 32u);
    EXPECT_EQ(back.offsetMatrix, 32u + l.b);
    EXPECT_EQ(back.offsetM, 32u + l.b + 48);
    EXPECT_EQ(back.offsetCLUT, 32u + l.b + 48 + l.m);
    EXPECT_EQ(back.offsetA, 32u + l.b + 48 + l.m + l.clut);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(back.matrix[i], s.lut.matrix[i]) << i;
    EXPECT_EQ(ValuesOfFlatSet(back.curvesB, s.CountMB()), ValuesOfRecords(s.b.data(), s.CountMB()));
    EXPECT_EQ(ValuesOfFlatSet(back.curvesM, s.CountMB()), ValuesOfRecords(s.m.data(), s.CountMB()));
    EXPECT_EQ(ValuesOfFlatSet(back.curvesA, s.CountA()), ValuesOfRecords(s.a.data(), s.CountA()));
    // The CLUT copy: head, then the entries native again.
    const auto* c = static_cast<const uint8_t*>(back.clut);
    EXPECT_EQ(std::memcmp(c, s.clut.clut.gridPoints, 16), 0);
    EXPECT_EQ(c[16], s.clut.clut.precision);
    s.clut.Reset();
    EXPECT_EQ(std::memcmp(c + 20, s.clut.bytes.data(), s.clut.bytes.size()), 0);
    // The pool holds every element in reading order.
    const uint8_t* pool = back.pool;
    std::vector<std::pair<const void*, uint32_t>> order =
        s.aToB ? std::vector<std::pair<const void*, uint32_t>>{{back.clut, l.clut}, {back.curvesA, l.a},
                                                                {back.matrix, 48}, {back.curvesM, l.m},
                                                                {back.curvesB, l.b}}
               : std::vector<std::pair<const void*, uint32_t>>{{back.curvesB, l.b}, {back.matrix, 48},
                                                                {back.curvesM, l.m}, {back.clut, l.clut},
                                                                {back.curvesA, l.a}};
    for (size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ(std::memcmp(pool, order[i].first, order[i].second), 0) << "pool part " << i;
        pool += order[i].second;
    }
}

TEST(LutCodec, AtoBAndBtoACreateAndRoundTrip) {
    for (bool aToB : {true, false}) {
        for (uint8_t precision : {uint8_t{2}, uint8_t{1}}) {
            SCOPED_TRACE(testing::Message() << (aToB ? "mAB " : "mBA ") << int(precision));
            AbSample s(aToB, aToB ? 4 : 3, aToB ? 3 : 4, precision);
            const AbLayout l = LayoutOf(s);

            // The created record: offsets and encoded copies, by hand, and
            // the caller's CLUT turned big-endian in place.
            ICCLutAtoB file{};
            ASSERT_EQ(Vx_CreateICCTagData(&file, &s.lut, s.Type()), STATUS_OK);
            EXPECT_EQ(Be32(reinterpret_cast<const uint8_t*>(&file.offsetB)), 32u);
            EXPECT_EQ(Be32(reinterpret_cast<const uint8_t*>(&file.offsetMatrix)), 32u + l.b);
            EXPECT_EQ(Be32(reinterpret_cast<const uint8_t*>(&file.offsetA)), 32u + l.b + 48 + l.m + l.clut);
            const auto* b0 = static_cast<const uint8_t*>(file.curvesB);
            const CurveValues first = ValuesOfRecord(s.b.data());
            EXPECT_EQ(Be32(b0), first.parametric ? Sig("para") : Sig("curv"));
            EXPECT_EQ(std::memcmp(file.pool, file.curvesB, l.b), 0);
            EXPECT_EQ(Be32(file.pool + l.b), uint32_t(s.lut.matrix[0]));
            EXPECT_EQ(Be32(file.pool + l.b + 44), uint32_t(s.lut.matrix[11]));
            EXPECT_EQ(std::memcmp(file.pool + l.b + 48 + l.m, file.clut, l.clut), 0);
            EXPECT_EQ(file.matrix[5], s.lut.matrix[5]);
            if (precision == 2) {
                EXPECT_EQ(Be16(s.clut.bytes.data() + 2), s.clut.entries[1]);
                EXPECT_EQ(Be16(static_cast<const uint8_t*>(file.clut) + 22), s.clut.entries[1]);
            }
            Vx_FreeICCTagType(&file, s.Type());
            EXPECT_EQ(file.pool, nullptr);
            EXPECT_EQ(file.curvesA, nullptr);
            s.clut.Reset();

            ICCLutAtoB back{};
            std::vector<uint8_t> element;
            ASSERT_EQ(RoundTrip(&s.lut, s.Type(), aToB ? Sig("A2B0") : Sig("B2A0"), &back, &element), STATUS_OK);
            ExpectSameAb(back, s);
            Vx_FreeICCTagType(&back, s.Type());
            ASSERT_EQ(element.size(), 32u + l.b + 48 + l.m + l.clut + l.a);
            const uint8_t head[12] = {uint8_t(aToB ? 'm' : 'm'), uint8_t(aToB ? 'A' : 'B'), uint8_t(aToB ? 'B' : 'A'), ' ',
                                      0, 0, 0, 0, s.in, s.out, 0, 0};
            EXPECT_EQ(std::memcmp(element.data(), head, 12), 0);
            // The last A curve is parametric, so nothing at the end is padding.
            ExpectPrefixesRefused(element, s.Type());
            ParseDamagedCopies(element, s.Type());
        }
    }
}

// Hand-made elements: B curves only, missing elements, bad offsets.
std::vector<uint8_t> BOnly(uint32_t type, uint8_t in, uint8_t out, uint32_t curves) {
    std::vector<uint8_t> e(32 + 12 * curves, 0);
    PutBe32(e.data(), type);
    e[8] = in;
    e[9] = out;
    PutBe32(e.data() + 12, 32);
    for (uint32_t i = 0; i < curves; ++i) PutBe32(e.data() + 32 + 12 * i, Sig("curv"));
    return e;
}

TEST(LutCodec, AtoBAndBtoAElementRules) {
    EXPECT_EQ(ParseBare(BOnly(Sig("mAB "), 3, 3, 3).data(), 68, Sig("mAB ")), STATUS_OK);
    EXPECT_EQ(ParseBare(BOnly(Sig("mAB "), 3, 4, 4).data(), 80, Sig("mAB ")), ERR_INVALID_TAG);
    EXPECT_EQ(ParseBare(BOnly(Sig("mBA "), 3, 4, 3).data(), 68, Sig("mBA ")), STATUS_OK);
    for (uint32_t type : {Sig("mAB "), Sig("mBA ")}) {
        std::vector<uint8_t> e = BOnly(type, 3, 3, 3);
        PutBe32(e.data() + 12, 0);
        EXPECT_EQ(ParseBare(e.data(), 68, type), ERR_INVALID_TAG);
        for (uint32_t offset : {68u, 60u, 0xFFFFFFF0u, 0x80000000u}) {
            for (uint32_t field : {12u, 16u, 20u, 24u, 28u}) {
                e = BOnly(type, 3, 3, 3);
                PutBe32(e.data() + field, offset);
                if (field == 20) PutBe32(e.data() + 16, 32);  // M curves follow a matrix
                // A curves are read only behind a CLUT: alone, their offset is not used.
                EXPECT_EQ(ParseBare(e.data(), 68, type), field == 28 ? STATUS_OK : ERR_INVALID_TAG)
                    << field << " " << offset;
            }
        }
        // A curve count far beyond the element.
        e = BOnly(type, 3, 3, 3);
        PutBe32(e.data() + 32 + 8, 0xFFFFFFFF);
        memt::ResetAllocationCount();
        EXPECT_EQ(ParseBare(e.data(), 68, type), ERR_INVALID_TAG);
        EXPECT_LE(memt::AllocationCount(), 1);
        // A CLUT of 255 grid points in each of 15 inputs.
        std::vector<uint8_t> c(32 + 20 + 36, 0);
        PutBe32(c.data(), type);
        c[8] = 15;
        c[9] = 3;
        PutBe32(c.data() + 12, 52);
        PutBe32(c.data() + 24, 32);
        std::memset(c.data() + 32, 255, 15);
        c[48] = 2;
        for (int i = 0; i < 3; ++i) PutBe32(c.data() + 52 + 12 * i, Sig("curv"));
        EXPECT_EQ(ParseBare(c.data(), uint32_t(c.size()), type), ERR_INVALID_TAG);
        c[8] = 17;  // more inputs than a CLUT has grid points
        EXPECT_EQ(ParseBare(c.data(), uint32_t(c.size()), type), ERR_INVALID_TAG);
    }

    // What a create refuses.
    AbSample s(true, 3, 3, 2);
    ICCLutAtoB file{};
    for (void** slot : {&s.lut.curvesA, &s.lut.curvesM, &s.lut.curvesB, &s.lut.clut}) {
        void* kept = *slot;
        *slot = nullptr;
        EXPECT_EQ(Vx_CreateICCTagData(&file, &s.lut, Sig("mAB ")), ERR_INVALID_PARAMETER);
        Vx_FreeICCTagType(&file, Sig("mAB "));
        *slot = kept;
    }
    s.clut.clut.precision = 3;
    EXPECT_EQ(Vx_CreateICCTagData(&file, &s.lut, Sig("mAB ")), ERR_INVALID_PARAMETER);
    s.clut.clut.precision = 2;
    s.b.records[1].entries = nullptr;
    s.b.records[1].count = 3;
    s.b.records[1].signature = Sig("curv");
    EXPECT_EQ(Vx_CreateICCTagData(&file, &s.lut, Sig("mAB ")), ERR_INVALID_PARAMETER);
}

TEST(LutCodec, AllocationFailuresLeakNothing) {
    LutSample l16(true, 3, 3, 2, 4, 4), l8(false, 3, 3, 2, 4, 4);
    AbSample ab(true, 3, 3, 2), ba(false, 3, 4, 2);
    struct Case {
        uint32_t type, tag;
        void* host;
        ClutSample* clut;
    } cases[] = {{Sig("mft2"), Sig("A2B0"), &l16.lut, nullptr},
                 {Sig("mft1"), Sig("A2B1"), &l8.lut, nullptr},
                 {Sig("mAB "), Sig("A2B2"), &ab.lut, &ab.clut},
                 {Sig("mBA "), Sig("B2A0"), &ba.lut, &ba.clut}};
    std::vector<uint8_t> image;
    {
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        for (Case& c : cases) {
            if (c.clut) c.clut->Reset();
            ASSERT_EQ(Vx_SetICCTagData(p.get(), c.host, c.tag, c.type), STATUS_OK);
        }
        image = p.Image();
    }
    Profile q;
    ASSERT_EQ(Vx_FillICCProfileStructure(q.get(), image.data(), static_cast<uint32_t>(image.size())), STATUS_OK);
    for (Case& c : cases) {
        SCOPED_TRACE(c.type);
        auto check = [](int n, int status) { EXPECT_EQ(status, ERR_NO_MEMORY) << "allocation " << n; };
        const int creates = kt::test::ForEachAllocationFailure(
            [&] {
                if (c.clut) c.clut->Reset();
                AnyRecord out{};
                const KtStatus st = Vx_CreateICCTagData(&out, c.host, c.type);
                Vx_FreeICCTagType(&out, c.type);
                return static_cast<int>(st);
            },
            check);
        EXPECT_GE(creates, 3);
        const int parses = kt::test::ForEachAllocationFailure(
            [&] {
                AnyRecord out{};
                const KtStatus st = Vx_GetICCTagData(q.get(), &out, c.tag);
                Vx_FreeICCTagType(&out, c.type);
                return static_cast<int>(st);
            },
            check);
        EXPECT_GE(parses, 3);
        int call = 0;
        kt::test::ForEachAllocationFailure(
            [&] {
                memt::FailNthAllocation(0);
                if (c.clut) c.clut->Reset();
                Profile p;
                EXPECT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
                memt::FailNthAllocation(++call);
                return static_cast<int>(Vx_SetICCTagData(p.get(), c.host, c.tag, c.type));
            },
            check);
    }
}

}  // namespace
