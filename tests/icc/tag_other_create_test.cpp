// Vx_CreateICCTagData against bytes worked out by hand from the format,
// and the element a profile then holds.
#include <gtest/gtest.h>

#include <vector>

#include "tag_other_samples.h"

namespace {

using namespace othertags;
using Bytes = std::vector<uint8_t>;

Bytes Of(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return Bytes(b, b + n);
}

Bytes Head(const char* type) { return {uint8_t(type[0]), uint8_t(type[1]), uint8_t(type[2]), uint8_t(type[3]), 0, 0, 0, 0}; }

Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

template <class R>
struct Created {
    R r{};
    uint32_t type;
    explicit Created(uint32_t t) : type(t) {}
    ~Created() { Vx_FreeICCTagType(&r, type); }
};

TEST(OtherTagCreate, NumberArraysAndSignatures) {
    Samples s;
    uint64_t value = 0x0102030405060708ull;
    ICCUInt64ArrayType ui64{0, 0, &value, 1};
    Created<ICCUInt64ArrayType> out(Sig("ui64"));
    ASSERT_EQ(Vx_CreateICCTagData(&out.r, &ui64, Sig("ui64")), STATUS_OK);
    EXPECT_EQ(Of(&out.r.signature, 4), (Bytes{'u', 'i', '6', '4'}));
    EXPECT_EQ(out.r.reserved, 0u);
    EXPECT_EQ(out.r.count, 1u);
    EXPECT_EQ(Of(out.r.values, 8), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(ElementOf(&ui64, Sig("ui64")), Cat({Head("ui64"), {1, 2, 3, 4, 5, 6, 7, 8}}));

    EXPECT_EQ(ElementOf(&s.sf32, Sig("sf32")),
              Cat({Head("sf32"), {0, 1, 0, 0, 0xFF, 0xFF, 0x80, 0, 0x7F, 0xFF, 0xFF, 0xFF, 0x80, 0, 0, 0}}));
    EXPECT_EQ(ElementOf(&s.ui08, Sig("ui08")), Cat({Head("ui08"), {0, 1, 0x7F, 0x80, 0xFF}}));
    EXPECT_EQ(ElementOf(&s.ui16, Sig("ui16")), Cat({Head("ui16"), {1, 2, 0xFF, 0xFF, 0, 0}}));

    const struct {
        uint32_t value;
        Bytes stored;
    } sigs[] = {{0x41, {0x41, 0x20, 0x20, 0x20}},
                {0x4142, {0x41, 0x42, 0x20, 0x20}},
                {0x414243, {0x41, 0x42, 0x43, 0x20}},
                {0x41424344, {0x41, 0x42, 0x43, 0x44}},
                {0x01000000, {1, 0, 0, 0}}};
    for (const auto& c : sigs) {
        ICCSignatureType in{0, 0, c.value};
        Created<ICCSignatureType> sig(Sig("sig "));
        ASSERT_EQ(Vx_CreateICCTagData(&sig.r, &in, Sig("sig ")), STATUS_OK);
        EXPECT_EQ(Of(&sig.r.value, 4), c.stored);
        EXPECT_EQ(ElementOf(&in, Sig("sig ")), Cat({Head("sig "), c.stored}));
    }

    ICCUInt8ArrayType none{0, 0, nullptr, 3};
    Created<ICCUInt8ArrayType> refused(Sig("ui08"));
    EXPECT_EQ(Vx_CreateICCTagData(&refused.r, &none, Sig("ui08")), ERR_INVALID_PARAMETER);
}

TEST(OtherTagCreate, TextAndData) {
    std::u16string ab = u"AB";
    ICCTextType text{0, 0, ab.data(), 0};
    Created<ICCTextType> t(Sig("text"));
    ASSERT_EQ(Vx_CreateICCTagData(&t.r, &text, Sig("text")), STATUS_OK);
    ASSERT_EQ(t.r.count, 3u);
    EXPECT_EQ(Of(t.r.text, 3), (Bytes{0x41, 0x00, 0x42}));
    EXPECT_EQ(ElementOf(&text, Sig("text")), Cat({Head("text"), {0x41, 0x00, 0x42}}));
    ICCTextType noText{};
    Created<ICCTextType> refused(Sig("text"));
    EXPECT_EQ(Vx_CreateICCTagData(&refused.r, &noText, Sig("text")), ERR_INVALID_PARAMETER);

    uint8_t chars[6] = {'a', 'b', 'c', 'd', 'e', 0};
    ICCDataType data{0, 0, 0, chars, 5};
    Created<ICCDataType> d(Sig("data"));
    ASSERT_EQ(Vx_CreateICCTagData(&d.r, &data, Sig("data")), STATUS_OK);
    EXPECT_EQ(d.r.size, 6u);
    EXPECT_EQ(Of(&d.r.flag, 4), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Of(d.r.data, 6), Of(chars, 6));
    EXPECT_EQ(ElementOf(&data, Sig("data")), Cat({Head("data"), {0, 0, 0, 0}, Of(chars, 6)}));
    data.flag = 1;
    EXPECT_EQ(ElementOf(&data, Sig("data")), Cat({Head("data"), {0, 0, 0, 1}, Of(chars, 5)}));
    for (uint32_t flag : {2u, 0xFFFFFFFFu}) {
        data.flag = flag;
        Created<ICCDataType> bad(Sig("data"));
        EXPECT_EQ(Vx_CreateICCTagData(&bad.r, &data, Sig("data")), ERR_INVALID_PARAMETER);
    }
    ICCDataType noData{0, 0, 1, nullptr, 0};
    Created<ICCDataType> bad(Sig("data"));
    EXPECT_EQ(Vx_CreateICCTagData(&bad.r, &noData, Sig("data")), ERR_INVALID_PARAMETER);
}

TEST(OtherTagCreate, FixedRecordsAndAcceptedValues) {
    Samples s;
    EXPECT_EQ(ElementOf(&s.dtim, Sig("dtim")), Cat({Head("dtim"), {0x07, 0xE8, 0, 2, 0, 29, 0, 23, 0, 59, 0, 58}}));
    EXPECT_EQ(ElementOf(&s.meas, Sig("meas")),
              Cat({Head("meas"), {0, 0, 0, 1, 0, 0, 0x12, 0x34, 0, 1, 0, 0, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 2, 0, 1, 0, 0,
                                  0, 0, 0, 8}}));
    EXPECT_EQ(ElementOf(&s.view, Sig("view")),
              Cat({Head("view"), {0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D, 0, 0, 0x33, 0x33, 0, 0, 0x33, 0x33, 0,
                                  0, 0x2B, 0x85, 0, 0, 0, 1}}));

    // Each field at its last accepted value and one past it.
    auto measStatus = [&](auto edit) {
        ICCMeasurementType m = s.meas;
        edit(m);
        Created<ICCMeasurementType> out(Sig("meas"));
        return Vx_CreateICCTagData(&out.r, &m, Sig("meas"));
    };
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.observer = 2; }), STATUS_OK);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.observer = 3; }), ERR_INVALID_PARAMETER);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.geometry = 0; }), STATUS_OK);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.geometry = 3; }), ERR_INVALID_PARAMETER);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.flare = 0; }), STATUS_OK);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.flare = 0x8000; }), ERR_INVALID_PARAMETER);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.flare = 0x10001; }), ERR_INVALID_PARAMETER);
    EXPECT_EQ(measStatus([](ICCMeasurementType& m) { m.illuminant = 9; }), ERR_INVALID_PARAMETER);
    for (uint32_t type : {0u, 8u, 9u}) {
        ICCViewingConditionsType v = s.view;
        v.illuminantType = type;
        Created<ICCViewingConditionsType> out(Sig("view"));
        EXPECT_EQ(Vx_CreateICCTagData(&out.r, &v, Sig("view")), type <= 8 ? STATUS_OK : ERR_INVALID_PARAMETER);
    }
}

TEST(OtherTagCreate, ColorantsAndChromaticity) {
    Samples s;
    Bytes cyan = Of(s.colorants[0].name, 32), magenta = Of(s.colorants[1].name, 32);
    EXPECT_EQ(ElementOf(&s.clrt, Sig("clrt")),
              Cat({Head("clrt"), {0, 0, 0, 2}, cyan, {0x12, 0x34, 0x80, 0, 0xFF, 0xFF}, magenta, {0, 1, 0, 0, 0, 0}}));
    Created<ICCColorantTableType> clrt(Sig("clrt"));
    ASSERT_EQ(Vx_CreateICCTagData(&clrt.r, &s.clrt, Sig("clrt")), STATUS_OK);
    EXPECT_EQ(Of(&clrt.r.count, 4), (Bytes{0, 0, 0, 2}));
    EXPECT_EQ(ElementOf(&s.clro, Sig("clro")), Cat({Head("clro"), {0, 0, 0, 3, 2, 0, 1}}));
    EXPECT_EQ(ElementOf(&s.chrm, Sig("chrm")),
              Cat({Head("chrm"), {0, 3, 0, 1, 0, 0, 0xA3, 0xD7, 0, 0, 0x54, 0x7B, 0, 0, 0x4C, 0xCD, 0, 0, 0x99, 0x99,
                                  0, 0, 0x26, 0x66, 0, 0, 0x0F, 0x5C}}));
    ICCChromaticityType noPairs{0, 0, 3, 0, nullptr};
    Created<ICCChromaticityType> bad(Sig("chrm"));
    EXPECT_EQ(Vx_CreateICCTagData(&bad.r, &noPairs, Sig("chrm")), ERR_INVALID_PARAMETER);
}

Bytes Utf16Be(const std::u16string& s) {
    Bytes out;
    for (char16_t c : s) out.insert(out.end(), {uint8_t(c >> 8), uint8_t(c)});
    return out;
}

TEST(OtherTagCreate, MlucNamedColorsSequenceAndResponses) {
    Samples s;
    // Two records from byte 16, strings from byte 40.
    EXPECT_EQ(ElementOf(&s.description.record, Sig("mluc")),
              Cat({Head("mluc"), {0, 0, 0, 2, 0, 0, 0, 12}, {'e', 'n', 'U', 'S', 0, 0, 0, 24, 0, 0, 0, 40},
                   {'d', 'e', 'D', 'E', 0, 0, 0, 20, 0, 0, 0, 64}, Utf16Be(u"ktclr sample"), Utf16Be(u"Beispiel \u00e4")}));
    ICCMultiLocalizedUnicodeType noStrings = s.description.record;
    noStrings.strings = nullptr;
    Created<ICCMultiLocalizedUnicodeType> bad(Sig("mluc"));
    EXPECT_EQ(Vx_CreateICCTagData(&bad.r, &noStrings, Sig("mluc")), ERR_INVALID_PARAMETER);

    // PCS values as they stand in memory, device values big-endian.
    EXPECT_EQ(ElementOf(&s.ncl2, Sig("ncl2")),
              Cat({Head("ncl2"), {0xAB, 0xCD, 0, 0, 0, 0, 0, 2, 0, 0, 0, 4}, Of(s.ncl2.prefix, 32), Of(s.ncl2.suffix, 32),
                   Of(s.named[0].rootName, 32), {0x02, 0x01, 0x04, 0x03, 0x06, 0x05},
                   {0x11, 0x11, 0x22, 0x22, 0x33, 0x33, 0xFF, 0xFF}, Of(s.named[1].rootName, 32),
                   {0x00, 0x80, 0x80, 0x00, 0x00, 0xFF}, {0, 0, 0, 1, 0, 2, 0, 3}}));

    // Attributes as they stand in memory; each description an mluc.
    const Bytes maker = Cat({Head("mluc"), {0, 0, 0, 1, 0, 0, 0, 12, 'e', 'n', 'U', 'S', 0, 0, 0, 10, 0, 0, 0, 28},
                             Utf16Be(u"Maker")});
    const Bytes modelA =
        Cat({Head("mluc"), {0, 0, 0, 2, 0, 0, 0, 12}, {'e', 'n', 'U', 'S', 0, 0, 0, 14, 0, 0, 0, 40},
             {'f', 'r', 'F', 'R', 0, 0, 0, 16, 0, 0, 0, 54}, Utf16Be(u"Model A"), Utf16Be(u"Mod\u00e8le A")});
    const Bytes empty = Cat({Head("mluc"), {0, 0, 0, 0, 0, 0, 0, 12}});
    const Bytes modelB = Cat({Head("mluc"), {0, 0, 0, 1, 0, 0, 0, 12, 'j', 'a', 'J', 'P', 0, 0, 0, 6, 0, 0, 0, 28},
                              Utf16Be(u"\u30e2\u30c7\u30eb")});
    EXPECT_EQ(ElementOf(&s.pseq, Sig("pseq")),
              Cat({Head("pseq"), {0, 0, 0, 2}, {'K', 'T', 'C', 'L', 'm', 'o', 'd', '1'}, {2, 0, 0, 0, 1, 0, 0, 0},
                   {'f', 's', 'c', 'n'}, maker, modelA, {'A', 'C', 'M', 'E', 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0, 0, 0x80},
                   {'C', 'R', 'T', ' '}, empty, modelB}));
    ICCProfileSequenceDescType noDescriptions{0, 0, 1, nullptr};
    Created<ICCProfileSequenceDescType> badSeq(Sig("pseq"));
    EXPECT_EQ(Vx_CreateICCTagData(&badSeq.r, &noDescriptions, Sig("pseq")), ERR_INVALID_PARAMETER);
    // A description without its strings fails inside the loop; what was
    // made stays for the release.
    s.descriptions[1].model.strings = nullptr;
    Created<ICCProfileSequenceDescType> half(Sig("pseq"));
    EXPECT_EQ(Vx_CreateICCTagData(&half.r, &s.pseq, Sig("pseq")), ERR_INVALID_PARAMETER);
    EXPECT_NE(half.r.descriptions, nullptr);

    // Offsets 20 and 80: each structure is 4 + 2 * 16 + 3 * 8 = 60 bytes.
    const Bytes curve0 = {'S', 't', 'a', 'A', 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 3,
                          0xFF, 0xFF, 0xFF, 0xFC, 0, 0, 0, 5, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0, 0,
                          0, 1, 0, 0, 0x80, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0};
    const Bytes curve1 = {'D', 'N', ' ', 'P', 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0, 7, 0, 0, 0, 8, 0, 0, 0, 9,
                          0, 0, 0, 10, 0, 0, 0, 11, 0xFF, 0xFF, 0xFF, 0xF4, 0, 1, 0, 0, 0, 0, 0, 2,
                          0, 3, 0, 0, 0, 0, 0, 4, 0, 5, 0, 0, 0, 0, 0, 6};
    EXPECT_EQ(ElementOf(&s.rcs2, Sig("rcs2")),
              Cat({Head("rcs2"), {0, 2, 0, 2, 0, 0, 0, 20, 0, 0, 0, 80}, curve0, curve1}));
}

TEST(OtherTagCreate, UnknownTypeIsAnOpaqueBlock) {
    uint8_t bytes[3] = {7, 8, 9};
    ICCRawTagType raw{0, 0, bytes, 3};
    ICCRawTagType out{};
    EXPECT_EQ(Vx_CreateICCTagData(&out, &raw, Sig("abcd")), WARN_UNKNOWN_TAG_TYPE);
    EXPECT_EQ(Of(&out.typeSignature, 4), (Bytes{'a', 'b', 'c', 'd'}));
    EXPECT_EQ(Of(out.bytes, 3), Of(bytes, 3));
    Vx_FreeICCTagType(&out, Sig("abcd"));
}

}  // namespace
