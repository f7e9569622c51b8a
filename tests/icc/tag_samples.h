// One host-order sample of every tag type, over arrays the samples own,
// with the element it encodes to worked out by hand from the format.
#pragma once

#include <string>
#include <vector>

#include "icc_test_support.h"

namespace icctest {

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
            const uint32_t length = 2 * static_cast<uint32_t>(text.size());
            records.push_back({uint16_t(locale[0] << 8 | locale[1]), uint16_t(locale[2] << 8 | locale[3]), length, offset});
            pool += text;
            offset += length;
        }
        record = {Sig("mluc"), 0, uint32_t(records.size()), 12, records.data(), pool.data()};
    }
    Mluc(const Mluc&) = delete;
};

// A parsed lutAtoB or lutBtoA holds flat host-order parts that do not
// encode again; they are put back into an element in file order, the CLUT
// with its entries big-endian.
inline Bytes AbElement(const ICCLutAtoB& r, bool aToB) {
    Bytes clut;
    if (const auto* c = static_cast<const uint8_t*>(r.clut)) {
        uint32_t count = r.outputChannels;
        for (int k = 0; k < r.inputChannels; ++k) count *= c[k];
        clut = Cat({Of(c, 17), Bytes(3), Of(c + 20, size_t{count} * c[16])});
        if (c[16] == 2)
            for (size_t i = 20; i < clut.size(); i += 2) std::swap(clut[i], clut[i + 1]);
        clut.resize((clut.size() + 3) & ~size_t{3});
    }
    const uint32_t a = aToB ? r.inputChannels : r.outputChannels, mb = aToB ? r.outputChannels : r.inputChannels;
    Bytes matrix;
    for (int32_t v : r.matrix) matrix = Cat({matrix, Be32s({uint32_t(v)})});
    const Bytes parts[5] = {FlatSetElements(r.curvesB, mb), r.offsetMatrix ? matrix : Bytes{},
                            FlatSetElements(r.curvesM, mb), clut, FlatSetElements(r.curvesA, a)};
    Bytes element = Cat({Be32s({r.signature, 0}), {r.inputChannels, r.outputChannels, 0, 0}});
    uint32_t at = 32;
    for (const Bytes& part : parts) element = Cat({element, Be32s({part.empty() ? 0 : at})}), at += uint32_t(part.size());
    for (const Bytes& part : parts) element = Cat({element, part});
    return element;
}

// A sample: the record, the element it encodes to, the shortest prefix of
// that element that parses (0 when only the whole element does, as for
// every type whose count is not the element's size), where counts sit
// whose growth must be refused before anything is allocated, and, for a
// type whose parsed record does not encode back to the same element, the
// element it does encode back to.
struct Sample {
    const char* name = nullptr;
    uint32_t type = 0;
    void* record = nullptr;
    Bytes element;
    uint32_t shortest = 0;  // 0: only the whole element
    std::vector<uint32_t> countsAt = {};
    Bytes reencoded = {};
};

// `b` with the bytes from `at` replaced by `run`.
inline Bytes With(Bytes b, size_t at, const Bytes& run) {
    std::copy(run.begin(), run.end(), b.begin() + long(at));
    return b;
}

// The lutAtoB / lutBtoA sample: `channels` each way (1, or 3 for a reader
// that wants a 3x3 matrix to fit), every element present: B curves of no
// entries, M gammas, A 'para' curves of type 0, a one-byte CLUT of two grid
// points per input.
struct AbParts {
    uint16_t gamma = 0x0233;
    int32_t g = 0x20000;
    ICCCurveType b[3], m[3];
    ICCParametricCurveType a[3];
    uint8_t entries[24];
    ICCCLUT clut{};
    ICCLutAtoB lut{};

    explicit AbParts(uint32_t type, uint8_t channels = 1) {
        for (int i = 0; i < 3; ++i) {
            b[i] = {Sig("curv"), 0, 0, nullptr};
            m[i] = {Sig("curv"), 0, 1, &gamma};
            a[i] = {Sig("para"), 0, 0, 0, &g};
            clut.gridPoints[i] = i < channels ? 2 : 0;
        }
        for (int i = 0; i < 24; ++i) entries[i] = uint8_t(0x11 * (i + 1));
        clut.precision = 1;
        clut.data = entries;
        lut.signature = type;
        lut.inputChannels = lut.outputChannels = channels;
        lut.curvesB = b;
        lut.curvesM = m;
        lut.curvesA = a;
        lut.clut = &clut;
        const int32_t matrix[12] = {0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x10000, 1, 2, 3};
        std::memcpy(lut.matrix, matrix, sizeof matrix);
    }
    // The element of the one-channel sample.
    Bytes Element(const char* type) const {
        return Cat({Head(type), {1, 1, 0, 0}, Be32s({32, 44, 92, 108, 132}), Head("curv"), Be32s({0}),
                    Be32s({0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x10000, 1, 2, 3}), Head("curv"),
                    {0, 0, 0, 1, 0x02, 0x33, 0, 0}, {2}, Bytes(15), {1, 0, 0, 0, 0x11, 0x22, 0, 0}, Head("para"),
                    {0, 0, 0, 0, 0, 2, 0, 0}});
    }
};

struct Samples {
    ICCXYZNumber xyzValues[2] = {{1, -2, 3}, {0x10000, 0x7FFFFFFF, INT32_MIN}};
    uint16_t curve[3] = {0x0102, 0x0304, 0x0506};
    int32_t parameters[7] = {0x00026666, -0x10000, 0x7FFFFFFF, 1, 2, 3, 4};
    uint16_t lutIn[2] = {0x0001, 0xFFFE}, lutClut[2] = {0x1234, 0x5678}, lutOut[2] = {0, 0xFFFF};
    uint8_t lut8In[2] = {1, 2}, lut8Clut[2] = {3, 4}, lut8Out[3] = {5, 6, 7};
    AbParts aToB{Sig("mAB ")}, bToA{Sig("mBA ")};
    int32_t sf32Values[4] = {0x10000, -0x8000, 0x7FFFFFFF, INT32_MIN};
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
    uint16_t deviceA[4] = {0x1111, 0x2222, 0x3333, 0xFFFF}, deviceB[4] = {0, 1, 2, 3};
    ICCNamedColor2Entry named[2]{};
    Mluc makerA{{"enUS", u"Maker"}}, modelA{{"enUS", u"Model A"}, {"frFR", u"Mod\u00e8le A"}}, makerB{},
        modelB{{"jaJP", u"\u30e2\u30c7\u30eb"}};
    ICCProfileDescription descriptions[2]{};
    uint32_t counts[2][2] = {{2, 1}, {0, 3}};
    ICCXYZNumber maxima[2][2] = {{{1, 2, 3}, {-4, 5, 6}}, {{7, 8, 9}, {10, 11, -12}}};
    ICCResponse16Number responses[2][3] = {{{0, 0, 0}, {0xFFFF, 0, 0x10000}, {0x8000, 0, -0x100}},
                                           {{1, 0, 2}, {3, 0, 4}, {5, 0, 6}}};
    ICCResponseCurve curves[2]{};
    uint8_t rawBytes[5] = {1, 2, 3, 4, 5};

    ICCXYZType xyz{Sig("XYZ "), 0, xyzValues, 2};
    ICCCurveType curv{Sig("curv"), 0, 3, curve};
    ICCParametricCurveType para{Sig("para"), 0, 4, 0, parameters};
    ICCLut16 mft2{Sig("mft2"), 0, 1, 1, 2, 0, {0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x10000}, 2, 2, lutIn, lutClut, lutOut};
    ICCLut8 mft1{Sig("mft1"), 0, 1, 1, 2, 0, {0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x10000}, 2, 3, lut8In, lut8Clut, lut8Out};
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
    ICCRawTagType raw{Sig("abcd"), 0, rawBytes, 5};

    Samples() {
        Name(colorants[0].name, "Cyan");
        colorants[0].pcs[0] = 0x1234, colorants[0].pcs[1] = 0x8000, colorants[0].pcs[2] = 0xFFFF;
        Name(colorants[1].name, "Magenta with a name of 31 chars");
        colorants[1].pcs[0] = 1;
        ncl2 = {Sig("ncl2"), 0, 0xABCD0000, 2, 4, {}, {}, named};
        Name(ncl2.prefix, "Pre ");
        Name(ncl2.suffix, " Suf");
        Name(named[0].rootName, "Red");
        named[0].pcs[0] = 0x0102, named[0].pcs[1] = 0x0304, named[0].pcs[2] = 0x0506;
        named[0].device = deviceA;
        Name(named[1].rootName, "Blue");
        named[1].pcs[0] = 0x8000, named[1].pcs[1] = 0x0080, named[1].pcs[2] = 0xFF00;
        named[1].device = deviceB;
        descriptions[0] = {Sig("KTCL"), Sig("mod1"), 0x0000000100000002ull, Sig("fscn"), makerA.record, modelA.record};
        descriptions[1] = {Sig("ACME"), 0, 0x8000000000000001ull, Sig("CRT "), makerB.record, modelB.record};
        pseq = {Sig("pseq"), 0, 2, descriptions};
        curves[0] = {Sig("StaA"), counts[0], maxima[0], responses[0]};
        curves[1] = {Sig("DN P"), counts[1], maxima[1], responses[1]};
        rcs2 = {Sig("rcs2"), 0, 2, 2, curves};
    }
    Samples(const Samples&) = delete;

    std::vector<Sample> All() {
        const Bytes matrix = Be32s({0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x10000});
        const Bytes maker = Cat({Head("mluc"), Be32s({1, 12}), {'e', 'n', 'U', 'S'}, Be32s({10, 28}), Utf16Be(u"Maker")});
        const Bytes model = Cat({Head("mluc"), Be32s({2, 12}), {'e', 'n', 'U', 'S'}, Be32s({14, 40}), {'f', 'r', 'F', 'R'},
                                 Be32s({16, 54}), Utf16Be(u"Model A"), Utf16Be(u"Mod\u00e8le A")});
        const Bytes modelB = Cat({Head("mluc"), Be32s({1, 12}), {'j', 'a', 'J', 'P'}, Be32s({6, 28}),
                                  Utf16Be(u"\u30e2\u30c7\u30eb")});
        // Each structure is 4 + 2 * 16 + 3 * 8 = 60 bytes, at 20 and 80.
        const Bytes response0 = Cat({{'S', 't', 'a', 'A'}, Be32s({2, 1, 1, 2, 3, 0xFFFFFFFC, 5, 6}),
                                     {0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0, 1, 0, 0, 0x80, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0}});
        const Bytes response1 = Cat({{'D', 'N', ' ', 'P'}, Be32s({0, 3, 7, 8, 9, 10, 11, 0xFFFFFFF4}),
                                     Be32s({0x10000, 2, 0x30000, 4, 0x50000, 6})});
        const Bytes ncl2Element =
            Cat({Head("ncl2"), Be32s({0xABCD0000, 2, 4}), Of(ncl2.prefix, 32), Of(ncl2.suffix, 32), Of(named[0].rootName, 32),
                 {0x02, 0x01, 0x04, 0x03, 0x06, 0x05}, {0x11, 0x11, 0x22, 0x22, 0x33, 0x33, 0xFF, 0xFF},
                 Of(named[1].rootName, 32), {0x00, 0x80, 0x80, 0x00, 0x00, 0xFF}, {0, 0, 0, 1, 0, 2, 0, 3}});
        const Bytes pseqElement =
            Cat({Head("pseq"), Be32s({2}), {'K', 'T', 'C', 'L', 'm', 'o', 'd', '1', 2, 0, 0, 0, 1, 0, 0, 0, 'f', 's', 'c', 'n'},
                 maker, model, {'A', 'C', 'M', 'E', 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0x80, 'C', 'R', 'T', ' '},
                 Cat({Head("mluc"), Be32s({0, 12})}), modelB});
        return {
            {"XYZ", Sig("XYZ "), &xyz, Cat({Head("XYZ "), Be32s({1, 0xFFFFFFFE, 3, 0x10000, 0x7FFFFFFF, 0x80000000})}), 8},
            {"curv", Sig("curv"), &curv, Cat({Head("curv"), Be32s({3}), {1, 2, 3, 4, 5, 6}}), 0, {8}},
            {"para", Sig("para"), &para,
             Cat({Head("para"), {0, 4, 0, 0}, Be32s({0x00026666, 0xFFFF0000, 0x7FFFFFFF, 1, 2, 3, 4})}), 0},
            {"mft2", Sig("mft2"), &mft2,
             Cat({Head("mft2"), {1, 1, 2, 0}, matrix, {0, 2, 0, 2}, {0, 1, 0xFF, 0xFE, 0x12, 0x34, 0x56, 0x78, 0, 0, 0xFF, 0xFF}}),
             0, {8, 10, 48, 50}},
            // The entry counts at 48 and 50 stand in native order.
            {"mft1", Sig("mft1"), &mft1, Cat({Head("mft1"), {1, 1, 2, 0}, matrix, {2, 0, 3, 0}, {1, 2, 3, 4, 5, 6, 7}}), 0,
             {8, 10, 49, 51}},
            {"mAB", Sig("mAB "), &aToB.lut, aToB.Element("mAB "), 0, {108}},
            {"mBA", Sig("mBA "), &bToA.lut, bToA.Element("mBA "), 0, {40}},
            {"sf32", Sig("sf32"), &sf32, Cat({Head("sf32"), Be32s({0x10000, 0xFFFF8000, 0x7FFFFFFF, 0x80000000})}), 8},
            {"uf32", Sig("uf32"), &uf32, Cat({Head("uf32"), Be32s({0x10000, 0x8000, 0xFFFFFFFF})}), 8},
            {"ui08", Sig("ui08"), &ui08, Cat({Head("ui08"), {0, 1, 0x7F, 0x80, 0xFF}}), 8},
            {"ui16", Sig("ui16"), &ui16, Cat({Head("ui16"), {1, 2, 0xFF, 0xFF, 0, 0}}), 8},
            {"ui32", Sig("ui32"), &ui32, Cat({Head("ui32"), Be32s({0x01020304, 0xFFFFFFFE})}), 8},
            {"ui64", Sig("ui64"), &ui64, Cat({Head("ui64"), {1, 2, 3, 4, 5, 6, 7, 8}, Be32s({0xFFFFFFFF, 1})}), 8},
            {"sig", Sig("sig "), &sig, Cat({Head("sig "), {'f', 's', 'c', 'n'}}), 0},
            // The UTF-16 unit count copied as bytes: 'K' and its zero high byte.
            {"text", Sig("text"), &textRecord, Cat({Head("text"), {'K', 0}}), 8},
            {"data", Sig("data"), &data, Cat({Head("data"), Be32s({0}), Of(dataBytes, 6)}), 12},
            {"dtim", Sig("dtim"), &dtim, Cat({Head("dtim"), {0x07, 0xE8, 0, 2, 0, 29, 0, 23, 0, 59, 0, 58}}), 0},
            {"clrt", Sig("clrt"), &clrt,
             Cat({Head("clrt"), Be32s({2}), Of(colorants[0].name, 32), {0x12, 0x34, 0x80, 0, 0xFF, 0xFF},
                  Of(colorants[1].name, 32), {0, 1, 0, 0, 0, 0}}),
             0, {8}},
            {"clro", Sig("clro"), &clro, Cat({Head("clro"), Be32s({3}), {2, 0, 1}}), 0, {8}},
            {"chrm", Sig("chrm"), &chrm,
             Cat({Head("chrm"), {0, 3, 0, 1}, Be32s({0xA3D7, 0x547B, 0x4CCD, 0x9999, 0x2666, 0x0F5C})}), 0, {8}},
            {"meas", Sig("meas"), &meas, Cat({Head("meas"), Be32s({1, 0x1234, 0x10000, 0xFFFFFFFB, 2, 0x10000, 8})}), 0},
            {"view", Sig("view"), &view,
             Cat({Head("view"), Be32s({0xF6D6, 0x10000, 0xD32D, 0x3333, 0x3333, 0x2B85, 1})}), 0},
            // Two records from byte 16, strings from byte 40.
            {"mluc", Sig("mluc"), &description.record,
             Cat({Head("mluc"), Be32s({2, 12}), {'e', 'n', 'U', 'S'}, Be32s({24, 40}), {'d', 'e', 'D', 'E'},
                  Be32s({20, 64}), Utf16Be(u"ktclr sample"), Utf16Be(u"Beispiel \u00e4")}),
             0, {8}},
            // PCS values as they stand in memory, device values big-endian;
            // parsing reads both big-endian, so the parsed PCS values encode
            // back byte-swapped.
            {"ncl2", Sig("ncl2"), &ncl2, ncl2Element, 0, {12, 16},
             With(With(ncl2Element, 116, {1, 2, 3, 4, 5, 6}), 162, {0x80, 0, 0, 0x80, 0xFF, 0})},
            // Attributes as they stand in memory, likewise; each description
            // an mluc.
            {"pseq", Sig("pseq"), &pseq, pseqElement, 0, {8},
             With(With(pseqElement, 20, {0, 0, 0, 1, 0, 0, 0, 2}), 148, {0x80, 0, 0, 0, 0, 0, 0, 1})},
            {"rcs2", Sig("rcs2"), &rcs2, Cat({Head("rcs2"), {0, 2, 0, 2}, Be32s({20, 80}), response0, response1}), 0,
             {10}},
            {"raw", Sig("abcd"), &raw, Cat({Head("abcd"), {1, 2, 3, 4, 5}}), 8},
        };
    }
};

}  // namespace icctest
