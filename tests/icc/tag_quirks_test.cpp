// The deliberate odd cases of the tag types and what their create refuses,
// each against bytes or values worked out by hand.
#include <gtest/gtest.h>

#include <functional>

#include "tag_samples.h"

namespace {

using namespace icctest;

// A signature is left-justified with spaces; text copies the bytes of its
// UTF-16 units up to the first zero byte; binary data keeps no terminator.
TEST(TagQuirks, OddElements) {
    ICCSignatureType sigs[6] = {{0, 0, 0x41}, {0, 0, 0x4142}, {0, 0, 0x414243}, {0, 0, 0x41424344}, {0, 0, 0x01000000}, {}};
    std::u16string ab = u"AB";
    ICCTextType text{0, 0, ab.data(), 0};
    uint8_t chars[6] = {'a', 'b', 'c', 'd', 'e', 0};
    ICCDataType binary{0, 0, 1, chars, 5};
    const struct {
        void* record;
        const char* type;
        Bytes element;
    } cases[] = {{&sigs[0], "sig ", {0x41, 0x20, 0x20, 0x20}}, {&sigs[1], "sig ", {0x41, 0x42, 0x20, 0x20}},
                 {&sigs[2], "sig ", {0x41, 0x42, 0x43, 0x20}}, {&sigs[3], "sig ", {0x41, 0x42, 0x43, 0x44}},
                 {&sigs[4], "sig ", {1, 0, 0, 0}},             {&sigs[5], "sig ", {0, 0x20, 0x20, 0x20}},
                 {&text, "text", {0x41, 0x00, 0x42}},          {&binary, "data", Cat({Be32s({1}), Of(chars, 5)})}};
    for (const auto& c : cases)
        EXPECT_EQ(ElementOf(c.record, Be32(reinterpret_cast<const uint8_t*>(c.type))), Cat({Head(c.type), c.element}))
            << c.type << " " << testing::PrintToString(c.element);
    // Text reads back as ASCII up to the zero byte: one letter survives.
    ICCTextType back{};
    ASSERT_EQ(RoundTrip(&text, Sig("text"), Sig("cprt"), &back), STATUS_OK);
    EXPECT_EQ(std::u16string(static_cast<const char16_t*>(back.text)), u"A");
    EXPECT_EQ(back.count, 1u);
    Vx_FreeICCTagType(&back, Sig("text"));
    // An ASCII element without a terminator still parses to a string.
    const Bytes bare = Cat({Head("data"), Be32s({0}), {'a', 'b', 'c'}});
    Profile p;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), Cat({Be32s({160}), Bytes(124), Be32s({1, Sig("targ"), 144, 15}), bare, {0}}).data(), 160), STATUS_OK);
    ICCDataType data{};
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &data, Sig("targ")), STATUS_OK);
    EXPECT_EQ(data.size, 3u);
    EXPECT_EQ(Of(data.data, 4), (Bytes{'a', 'b', 'c', 0}));
    Vx_FreeICCTagType(&data, Sig("data"));
}

// One edit of a sample each, and the status its create answers.
TEST(TagQuirks, CreateChecksWhatItIsGiven) {
    const struct {
        const char* what;
        uint32_t type;
        std::function<void*(Samples&)> edit;
        KtStatus expected;
    } cases[] = {
        {"XYZ without values", Sig("XYZ "), [](Samples& s) { s.xyz.values = nullptr; return &s.xyz; }, ERR_INVALID_PARAMETER},
        {"curv without entries", Sig("curv"), [](Samples& s) { s.curv.entries = nullptr; return &s.curv; }, ERR_INVALID_PARAMETER},
        {"curv beyond 32 bits", Sig("curv"), [](Samples& s) { s.curv.count = 0xFFFFFFF0u; return &s.curv; }, ERR_INVALID_PARAMETER},
        {"para type 5", Sig("para"), [](Samples& s) { s.para.functionType = 5; return &s.para; }, ERR_INVALID_PARAMETER},
        {"para without parameters", Sig("para"), [](Samples& s) { s.para.parameters = nullptr; return &s.para; }, ERR_INVALID_PARAMETER},
        {"mft2 without CLUT", Sig("mft2"), [](Samples& s) { s.mft2.clut = nullptr; return &s.mft2; }, ERR_INVALID_PARAMETER},
        {"mft2 of 255 channels", Sig("mft2"), [](Samples& s) { s.mft2.inputChannels = s.mft2.gridPoints = 255; return &s.mft2; }, ERR_INVALID_PARAMETER},
        {"mAB without A", Sig("mAB "), [](Samples& s) { s.aToB.lut.curvesA = nullptr; return &s.aToB.lut; }, ERR_INVALID_PARAMETER},
        {"mAB without CLUT", Sig("mAB "), [](Samples& s) { s.aToB.lut.clut = nullptr; return &s.aToB.lut; }, ERR_INVALID_PARAMETER},
        {"mAB precision 3", Sig("mAB "), [](Samples& s) { s.aToB.clut.precision = 3; return &s.aToB.lut; }, ERR_INVALID_PARAMETER},
        {"mBA curve without entries", Sig("mBA "), [](Samples& s) { s.bToA.m[0].entries = nullptr; return &s.bToA.lut; }, ERR_INVALID_PARAMETER},
        {"ui08 without values", Sig("ui08"), [](Samples& s) { s.ui08.values = nullptr; return &s.ui08; }, ERR_INVALID_PARAMETER},
        {"text without text", Sig("text"), [](Samples& s) { s.textRecord.text = nullptr; return &s.textRecord; }, ERR_INVALID_PARAMETER},
        {"data flag 2", Sig("data"), [](Samples& s) { s.data.flag = 2; return &s.data; }, ERR_INVALID_PARAMETER},
        {"data flag ~0", Sig("data"), [](Samples& s) { s.data.flag = 0xFFFFFFFF; return &s.data; }, ERR_INVALID_PARAMETER},
        {"data without bytes", Sig("data"), [](Samples& s) { s.data.data = nullptr; return &s.data; }, ERR_INVALID_PARAMETER},
        {"clrt without entries", Sig("clrt"), [](Samples& s) { s.clrt.entries = nullptr; return &s.clrt; }, ERR_INVALID_PARAMETER},
        {"chrm without pairs", Sig("chrm"), [](Samples& s) { s.chrm.coordinates = nullptr; return &s.chrm; }, ERR_INVALID_PARAMETER},
        {"meas observer 2", Sig("meas"), [](Samples& s) { s.meas.observer = 2; return &s.meas; }, STATUS_OK},
        {"meas observer 3", Sig("meas"), [](Samples& s) { s.meas.observer = 3; return &s.meas; }, ERR_INVALID_PARAMETER},
        {"meas geometry 3", Sig("meas"), [](Samples& s) { s.meas.geometry = 3; return &s.meas; }, ERR_INVALID_PARAMETER},
        {"meas flare 0", Sig("meas"), [](Samples& s) { s.meas.flare = 0; return &s.meas; }, STATUS_OK},
        {"meas flare 50 %", Sig("meas"), [](Samples& s) { s.meas.flare = 0x8000; return &s.meas; }, ERR_INVALID_PARAMETER},
        {"meas flare 0x10001", Sig("meas"), [](Samples& s) { s.meas.flare = 0x10001; return &s.meas; }, ERR_INVALID_PARAMETER},
        {"meas illuminant 9", Sig("meas"), [](Samples& s) { s.meas.illuminant = 9; return &s.meas; }, ERR_INVALID_PARAMETER},
        {"view illuminant 8", Sig("view"), [](Samples& s) { s.view.illuminantType = 8; return &s.view; }, STATUS_OK},
        {"view illuminant 9", Sig("view"), [](Samples& s) { s.view.illuminantType = 9; return &s.view; }, ERR_INVALID_PARAMETER},
        {"mluc without strings", Sig("mluc"), [](Samples& s) { s.description.record.strings = nullptr; return &s.description.record; }, ERR_INVALID_PARAMETER},
        {"mluc of no records", Sig("mluc"), [](Samples& s) { s.description.record = {0, 0, 0, 12, nullptr, nullptr}; return &s.description.record; }, STATUS_OK},
        {"ncl2 without entries", Sig("ncl2"), [](Samples& s) { s.ncl2.entries = nullptr; return &s.ncl2; }, ERR_INVALID_PARAMETER},
        {"pseq without descriptions", Sig("pseq"), [](Samples& s) { s.pseq.descriptions = nullptr; return &s.pseq; }, ERR_INVALID_PARAMETER},
        {"pseq, a description without strings", Sig("pseq"), [](Samples& s) { s.descriptions[1].model.strings = nullptr; return &s.pseq; }, ERR_INVALID_PARAMETER},
        {"rcs2 without curves", Sig("rcs2"), [](Samples& s) { s.rcs2.curves = nullptr; return &s.rcs2; }, ERR_INVALID_PARAMETER},
        {"raw without bytes", Sig("abcd"), [](Samples& s) { s.raw.bytes = nullptr; return &s.raw; }, ERR_INVALID_PARAMETER},
    };
    for (const auto& c : cases) {
        Samples s;
        AnyRecord out;
        EXPECT_EQ(Vx_CreateICCTagData(out.get(), c.edit(s), c.type), c.expected) << c.what;
        Vx_FreeICCTagType(out.get(), c.type);
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        EXPECT_EQ(Vx_SetICCTagData(p.get(), c.edit(s), Sig("targ"), c.type), c.expected) << c.what;
        EXPECT_EQ(p->tagCount, c.expected == STATUS_OK ? 1 : 0) << c.what;
    }
}

// What a failed create allocated stays in the record until
// Vx_FreeICCTagType releases it (the sanitizer run's leak checks see the
// failed parses of the tag-type harness).
TEST(TagQuirks, FailuresLeaveTheirArraysForTheRelease) {
    Samples s;
    s.descriptions[1].model.strings = nullptr;
    ICCProfileSequenceDescType half{};
    EXPECT_EQ(Vx_CreateICCTagData(&half, &s.pseq, Sig("pseq")), ERR_INVALID_PARAMETER);
    EXPECT_NE(half.descriptions, nullptr);
    Vx_FreeICCTagType(&half, Sig("pseq"));
    EXPECT_EQ(half.descriptions, nullptr);
}

TEST(TagQuirks, LutRules) {
    // mft1: bytes 48..51 of 00 01 00 01 are 256 input and 256 output entries.
    Bytes lut8 = Cat({Head("mft1"), {1, 1, 2, 0}, Bytes(36), {0, 1, 0, 1}, Bytes(256 + 2 + 256)});
    lut8[52 + 255] = 0xAB;
    ICCLut8 wide{};
    ASSERT_EQ(kt::icc::FindTagTypeCodec(Sig("mft1"))->parse(lut8.data(), uint32_t(lut8.size()), &wide), STATUS_OK);
    EXPECT_EQ(wide.inputEntries, 256);
    EXPECT_EQ(wide.outputEntries, 256);
    EXPECT_EQ(static_cast<const uint8_t*>(wide.inputTables)[255], 0xAB);
    Vx_FreeICCTagType(&wide, Sig("mft1"));

    // lutAtoB and lutBtoA of B curves only: the channel test, a missing B,
    // offsets outside the element.
    auto bOnly = [](uint32_t type, uint8_t in, uint8_t out) {
        Bytes e = Cat({Be32s({type, 0}), {in, out, 0, 0}, Be32s({32, 0, 0, 0, 0})});
        for (uint32_t i = 0; i < std::max(in, out); ++i) e = Cat({e, Head("curv"), Be32s({0})});
        return e;
    };
    auto parse = [](const Bytes& e, uint32_t type) { return ParseBare(e.data(), uint32_t(e.size()), type); };
    EXPECT_EQ(parse(bOnly(Sig("mAB "), 3, 3), Sig("mAB ")), STATUS_OK);
    EXPECT_EQ(parse(bOnly(Sig("mAB "), 3, 4), Sig("mAB ")), ERR_INVALID_TAG);
    EXPECT_EQ(parse(bOnly(Sig("mBA "), 3, 4), Sig("mBA ")), STATUS_OK);
    for (uint32_t type : {Sig("mAB "), Sig("mBA ")}) {
        Bytes e = bOnly(type, 3, 3);
        PutBe32(e.data() + 12, 0);
        EXPECT_EQ(parse(e, type), ERR_INVALID_TAG);
        for (uint32_t offset : {68u, 60u, 0xFFFFFFF0u, 0x80000000u}) {
            for (uint32_t field : {12u, 16u, 20u, 24u, 28u}) {
                e = bOnly(type, 3, 3);
                PutBe32(e.data() + field, offset);
                if (field == 20) PutBe32(e.data() + 16, 32);  // M curves follow a matrix
                // A curves are read only behind a CLUT: alone, their offset is unused.
                EXPECT_EQ(parse(e, type), field == 28 ? STATUS_OK : ERR_INVALID_TAG) << field << " " << offset;
            }
        }
        // A CLUT of 255 grid points in each of 15 inputs; 17 inputs.
        Bytes c = Cat({Be32s({type, 0}), {15, 3, 0, 0}, Be32s({52, 0, 0, 32, 0}), Bytes(15, 255), {0, 2, 0, 0, 0}});
        for (int i = 0; i < 3; ++i) c = Cat({c, Head("curv"), Be32s({0})});
        EXPECT_EQ(parse(c, type), ERR_INVALID_TAG);
        c[8] = 17;
        EXPECT_EQ(parse(c, type), ERR_INVALID_TAG);
    }
}

TEST(TagQuirks, AtoBCreateTurnsTheCallersClutBigEndian) {
    uint16_t entries[2] = {0x1234, 0xABCD};
    AbParts ab(Sig("mAB "));
    ab.clut.precision = 2;
    ab.clut.data = reinterpret_cast<uint8_t*>(entries);
    const Bytes element = ElementOf(&ab.lut, Sig("mAB "));
    EXPECT_EQ(Of(entries, 4), (Bytes{0x12, 0x34, 0xAB, 0xCD}));
    EXPECT_EQ(Of(element.data() + 128, 4), (Bytes{0x12, 0x34, 0xAB, 0xCD}));
}

TEST(TagQuirks, ReservedWordsAreReadBigEndian) {
    const Bytes curv = Cat({{'c', 'u', 'r', 'v', 1, 2, 3, 4}, Be32s({1}), {0x02, 0x33}});
    ICCCurveType c{};
    ASSERT_EQ(kt::icc::FindTagTypeCodec(Sig("curv"))->parse(curv.data(), 14, &c), STATUS_OK);
    EXPECT_EQ(c.reserved, 0x01020304u);
    Vx_FreeICCTagType(&c, Sig("curv"));
    const Bytes para = Cat({Head("para"), {0, 0, 0xAB, 0xCD}, Be32s({0x10000})});
    ICCParametricCurveType p{};
    ASSERT_EQ(kt::icc::FindTagTypeCodec(Sig("para"))->parse(para.data(), 16, &p), STATUS_OK);
    EXPECT_EQ(p.reserved2, 0xABCD);
    Vx_FreeICCTagType(&p, Sig("para"));
}

}  // namespace
