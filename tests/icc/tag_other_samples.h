// Host-order sample records of the tag types other than curves and LUTs,
// over arrays the samples own, and the tag round trip through a profile.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "icc_fixtures.h"

namespace othertags {

using icctest::Sig;

inline void Name(uint8_t (&to)[32], const char* s) {
    std::memset(to, 0, sizeof to);
    std::memcpy(to, s, std::strlen(s));
}

// One mluc description with its records and pool; offsets as the encoding
// places the strings: right after the name records.
struct Mluc {
    std::vector<ICCMlucNameRecord> records;
    std::u16string pool;
    ICCMultiLocalizedUnicodeType record{};

    Mluc(std::initializer_list<std::pair<const char*, std::u16string>> texts) {
        uint32_t offset = 16 + 12 * static_cast<uint32_t>(texts.size());
        for (const auto& [locale, text] : texts) {
            const uint16_t language = static_cast<uint16_t>(locale[0] << 8 | locale[1]);
            const uint16_t country = static_cast<uint16_t>(locale[2] << 8 | locale[3]);
            const uint32_t length = 2 * static_cast<uint32_t>(text.size());
            records.push_back({language, country, length, offset});
            pool += text;
            offset += length;
        }
        record.signature = Sig("mluc");
        record.count = static_cast<uint32_t>(records.size());
        record.recordSize = 12;
        record.records = records.data();
        record.strings = pool.data();
    }
    Mluc(const Mluc&) = delete;
};

// Every sample, its arrays kept alive by this object.
struct Samples {
    int32_t sf32Values[4] = {0x10000, -0x8000, 0x7FFFFFFF, static_cast<int32_t>(0x80000000u)};
    uint32_t uf32Values[3] = {0x10000, 0x8000, 0xFFFFFFFF};
    uint8_t ui08Values[5] = {0, 1, 0x7F, 0x80, 0xFF};
    uint16_t ui16Values[3] = {0x0102, 0xFFFF, 0};
    uint32_t ui32Values[2] = {0x01020304, 0xFFFFFFFE};
    uint64_t ui64Values[2] = {0x0102030405060708ull, 0xFFFFFFFF00000001ull};
    std::u16string text = u"K";
    uint8_t dataBytes[6] = {'h', 'e', 'l', 'l', 'o', 0};
    ICCColorantEntry colorants[2]{};
    uint8_t order[3] = {2, 0, 1};
    ICCChromaticityCoordinate primaries[3] = {{0xA3D7, 0x547B}, {0x4CCD, 0x9999}, {0x2666, 0x0F5C}};
    Mluc description{{"enUS", u"ktclr sample"}, {"deDE", u"Beispiel \u00e4"}};
    uint16_t deviceA[4] = {0x1111, 0x2222, 0x3333, 0xFFFF};
    uint16_t deviceB[4] = {0, 1, 2, 3};
    ICCNamedColor2Entry named[2]{};
    Mluc makerA{{"enUS", u"Maker"}};
    Mluc modelA{{"enUS", u"Model A"}, {"frFR", u"Mod\u00e8le A"}};
    Mluc makerB{};
    Mluc modelB{{"jaJP", u"\u30e2\u30c7\u30eb"}};
    ICCProfileDescription descriptions[2]{};
    uint32_t counts[2][2] = {{2, 1}, {0, 3}};
    ICCXYZNumber maxima[2][2] = {{{1, 2, 3}, {-4, 5, 6}}, {{7, 8, 9}, {10, 11, -12}}};
    ICCResponse16Number responses[2][3] = {{{0, 0, 0}, {0xFFFF, 0, 0x10000}, {0x8000, 0, -0x100}},
                                           {{1, 0, 2}, {3, 0, 4}, {5, 0, 6}}};
    ICCResponseCurve curves[2]{};

    ICCS15Fixed16ArrayType sf32{Sig("sf32"), 0, sf32Values, 4};
    ICCU16Fixed16ArrayType uf32{Sig("uf32"), 0, uf32Values, 3};
    ICCUInt8ArrayType ui08{Sig("ui08"), 0, ui08Values, 5};
    ICCUInt16ArrayType ui16{Sig("ui16"), 0, ui16Values, 3};
    ICCUInt32ArrayType ui32{Sig("ui32"), 0, ui32Values, 2};
    ICCUInt64ArrayType ui64{Sig("ui64"), 0, ui64Values, 2};
    ICCSignatureType sig{Sig("sig "), 0, Sig("fscn")};
    ICCTextType textRecord{Sig("text"), 0, text.data(), 0};
    ICCDataType data{Sig("data"), 0, 0, dataBytes, 5};
    ICCDateTimeType dtim{Sig("dtim"), 0, 2024, 2, 29, 23, 59, 58};
    ICCColorantTableType clrt{Sig("clrt"), 0, 2, colorants};
    ICCColorantOrderType clro{Sig("clro"), 0, 3, order};
    ICCChromaticityType chrm{Sig("chrm"), 0, 3, 1, primaries};
    ICCMeasurementType meas{Sig("meas"), 0, 1, {0x1234, 0x10000, -5}, 2, 0x10000, 8};
    ICCViewingConditionsType view{Sig("view"), 0, {0xF6D6, 0x10000, 0xD32D}, {0x3333, 0x3333, 0x2B85}, 1};
    ICCNamedColor2Type ncl2{};
    ICCProfileSequenceDescType pseq{};
    ICCResponseCurveSet16Type rcs2{};

    Samples() {
        Name(colorants[0].name, "Cyan");
        colorants[0].pcs[0] = 0x1234;
        colorants[0].pcs[1] = 0x8000;
        colorants[0].pcs[2] = 0xFFFF;
        Name(colorants[1].name, "Magenta with a name of 31 chars");
        colorants[1].pcs[0] = 1;

        ncl2.signature = Sig("ncl2");
        ncl2.vendorFlags = 0xABCD0000;
        ncl2.count = 2;
        ncl2.deviceCoordinates = 4;
        Name(ncl2.prefix, "Pre ");
        Name(ncl2.suffix, " Suf");
        ncl2.entries = named;
        Name(named[0].rootName, "Red");
        named[0].pcs[0] = 0x0102;
        named[0].pcs[1] = 0x0304;
        named[0].pcs[2] = 0x0506;
        named[0].device = deviceA;
        Name(named[1].rootName, "Blue");
        named[1].pcs[0] = 0x8000;
        named[1].pcs[1] = 0x0080;
        named[1].pcs[2] = 0xFF00;
        named[1].device = deviceB;

        descriptions[0] = {Sig("KTCL"), Sig("mod1"), 0x0000000100000002ull, Sig("fscn"), makerA.record,
                           modelA.record};
        descriptions[1] = {Sig("ACME"), 0, 0x8000000000000001ull, Sig("CRT "), makerB.record, modelB.record};
        pseq = {Sig("pseq"), 0, 2, descriptions};

        curves[0] = {Sig("StaA"), counts[0], maxima[0], responses[0]};
        curves[1] = {Sig("DN P"), counts[1], maxima[1], responses[1]};
        rcs2 = {Sig("rcs2"), 0, 2, 2, curves};
    }
    Samples(const Samples&) = delete;

    // Every type of this family with its sample, for the loops that treat
    // them alike.
    struct Entry {
        uint32_t type;
        void* record;
    };
    std::vector<Entry> All() {
        return {{Sig("sf32"), &sf32}, {Sig("uf32"), &uf32}, {Sig("ui08"), &ui08}, {Sig("ui16"), &ui16},
                {Sig("ui32"), &ui32}, {Sig("ui64"), &ui64}, {Sig("sig "), &sig},  {Sig("text"), &textRecord},
                {Sig("data"), &data}, {Sig("dtim"), &dtim}, {Sig("clrt"), &clrt}, {Sig("clro"), &clro},
                {Sig("chrm"), &chrm}, {Sig("meas"), &meas}, {Sig("view"), &view}, {Sig("mluc"), &description.record},
                {Sig("ncl2"), &ncl2}, {Sig("pseq"), &pseq}, {Sig("rcs2"), &rcs2}};
    }
};

// Room for any tag record, zeroed.
struct AnyRecord {
    alignas(8) unsigned char bytes[256] = {};
    void* get() { return bytes; }
};

// The element a sample encodes to, through a profile: the bytes after the
// row's offset, the row's size of them.
inline std::vector<uint8_t> ElementOf(void* record, uint32_t type) {
    icctest::Profile p;
    EXPECT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), record, Sig("targ"), type), STATUS_OK);
    if (p->tagCount != 1) return {};
    const ICCTagEntry row = p->tagList[0];
    const uint8_t* element = p->tagData + (row.offset - 144);
    return std::vector<uint8_t>(element, element + row.size);
}

// Sets `record` as tag 'targ', writes the profile, parses the bytes into a
// fresh record and gets the tag into `out`.
inline KtStatus RoundTrip(void* record, uint32_t type, void* out) {
    icctest::Profile p;
    EXPECT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    KtStatus st = Vx_SetICCTagData(p.get(), record, Sig("targ"), type);
    if (st != STATUS_OK) return st;
    st = Vx_GenerateICCPointer(p.get());
    if (st != STATUS_OK) return st;
    icctest::Profile q;
    st = Vx_FillICCProfileStructure(q.get(), p->profileData, p->profileSize);
    if (st != STATUS_OK) return st;
    return Vx_GetICCTagData(q.get(), out, Sig("targ"));
}

template <class T>
std::vector<T> Items(const T* p, size_t n) {
    return p ? std::vector<T>(p, p + n) : std::vector<T>{};
}

inline std::u16string MlucString(const ICCMultiLocalizedUnicodeType& m, uint32_t i) {
    const uint32_t first = 16 + 12 * m.count;
    return std::u16string(m.strings + (m.records[i].offset - first) / 2, m.records[i].length / 2);
}

inline void ExpectSameMluc(const ICCMultiLocalizedUnicodeType& a, const ICCMultiLocalizedUnicodeType& b) {
    EXPECT_EQ(a.signature, b.signature);
    EXPECT_EQ(a.reserved, b.reserved);
    EXPECT_EQ(a.recordSize, b.recordSize);
    ASSERT_EQ(a.count, b.count);
    for (uint32_t i = 0; i < a.count; ++i) {
        EXPECT_EQ(a.records[i].language, b.records[i].language);
        EXPECT_EQ(a.records[i].country, b.records[i].country);
        EXPECT_EQ(a.records[i].length, b.records[i].length);
        EXPECT_EQ(a.records[i].offset, b.records[i].offset);
        EXPECT_EQ(MlucString(a, i), MlucString(b, i));
    }
}

}  // namespace othertags
