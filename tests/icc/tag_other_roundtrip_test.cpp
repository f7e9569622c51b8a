// Every type of the family through a profile and back: set, write, parse,
// get, compare field by field; the kept quirks show as they are.
#include <gtest/gtest.h>

#include <vector>

#include "tag_other_samples.h"

namespace {

using namespace othertags;

template <class R>
struct Got {
    R r{};
    uint32_t type;
    explicit Got(uint32_t t) : type(t) {}
    ~Got() { Vx_FreeICCTagType(&r, type); }
};

template <class R>
void ExpectSameArray(R& in, uint32_t type) {
    SCOPED_TRACE(type);
    Got<R> out(type);
    ASSERT_EQ(RoundTrip(&in, type, &out.r), STATUS_OK);
    EXPECT_EQ(out.r.signature, type);
    EXPECT_EQ(out.r.reserved, 0u);
    ASSERT_EQ(out.r.count, in.count);
    EXPECT_EQ(Items(out.r.values, out.r.count), Items(in.values, in.count));
}

TEST(OtherTagRoundTrip, NumberArrays) {
    Samples s;
    ExpectSameArray(s.sf32, Sig("sf32"));
    ExpectSameArray(s.uf32, Sig("uf32"));
    ExpectSameArray(s.ui08, Sig("ui08"));
    ExpectSameArray(s.ui16, Sig("ui16"));
    ExpectSameArray(s.ui32, Sig("ui32"));
    ExpectSameArray(s.ui64, Sig("ui64"));
    // An empty array is an element of the head alone.
    s.ui16.count = 0;
    ExpectSameArray(s.ui16, Sig("ui16"));
}

TEST(OtherTagRoundTrip, FixedRecords) {
    Samples s;
    for (uint32_t value : {Sig("fscn"), 0x41u, 0x4142u, 0x414243u, 0u}) {
        s.sig.value = value;
        Got<ICCSignatureType> sig(Sig("sig "));
        ASSERT_EQ(RoundTrip(&s.sig, Sig("sig "), &sig.r), STATUS_OK);
        const uint32_t padded = value < 0x100       ? value << 24 | 0x202020
                                : value < 0x10000   ? value << 16 | 0x2020
                                : value < 0x1000000 ? value << 8 | 0x20
                                                    : value;
        EXPECT_EQ(sig.r.value, padded);
    }

    Got<ICCDateTimeType> dtim(Sig("dtim"));
    ASSERT_EQ(RoundTrip(&s.dtim, Sig("dtim"), &dtim.r), STATUS_OK);
    EXPECT_EQ(std::memcmp(&dtim.r, &s.dtim, sizeof s.dtim), 0);

    Got<ICCMeasurementType> meas(Sig("meas"));
    ASSERT_EQ(RoundTrip(&s.meas, Sig("meas"), &meas.r), STATUS_OK);
    EXPECT_EQ(std::memcmp(&meas.r, &s.meas, sizeof s.meas), 0);

    Got<ICCViewingConditionsType> view(Sig("view"));
    ASSERT_EQ(RoundTrip(&s.view, Sig("view"), &view.r), STATUS_OK);
    EXPECT_EQ(std::memcmp(&view.r, &s.view, sizeof s.view), 0);
}

TEST(OtherTagRoundTrip, TextAndData) {
    Samples s;
    // One character survives; longer strings keep their first character
    // only, since the bytes stored after it begin with the zero high byte.
    Got<ICCTextType> one(Sig("text"));
    ASSERT_EQ(RoundTrip(&s.textRecord, Sig("text"), &one.r), STATUS_OK);
    EXPECT_EQ(std::u16string(static_cast<const char16_t*>(one.r.text)), u"K");
    EXPECT_EQ(one.r.count, 1u);
    std::u16string two = u"AB";
    ICCTextType ab{Sig("text"), 0, two.data(), 0};
    Got<ICCTextType> first(Sig("text"));
    ASSERT_EQ(RoundTrip(&ab, Sig("text"), &first.r), STATUS_OK);
    EXPECT_EQ(std::u16string(static_cast<const char16_t*>(first.r.text)), u"A");

    Got<ICCDataType> ascii(Sig("data"));
    ASSERT_EQ(RoundTrip(&s.data, Sig("data"), &ascii.r), STATUS_OK);
    EXPECT_EQ(ascii.r.flag, 0u);
    ASSERT_EQ(ascii.r.size, 5u);
    EXPECT_EQ(Items(ascii.r.data, 6), Items(s.dataBytes, 6));

    uint8_t bin[3] = {0, 0xFF, 0};
    ICCDataType binary{Sig("data"), 0, 1, bin, 3};
    Got<ICCDataType> back(Sig("data"));
    ASSERT_EQ(RoundTrip(&binary, Sig("data"), &back.r), STATUS_OK);
    EXPECT_EQ(back.r.flag, 1u);
    ASSERT_EQ(back.r.size, 3u);
    EXPECT_EQ(Items(back.r.data, 3), Items(bin, 3));
}

TEST(OtherTagRoundTrip, Colorants) {
    Samples s;
    Got<ICCColorantTableType> clrt(Sig("clrt"));
    ASSERT_EQ(RoundTrip(&s.clrt, Sig("clrt"), &clrt.r), STATUS_OK);
    ASSERT_EQ(clrt.r.count, 2u);
    EXPECT_EQ(std::memcmp(clrt.r.entries, s.colorants, sizeof s.colorants), 0);

    Got<ICCColorantOrderType> clro(Sig("clro"));
    ASSERT_EQ(RoundTrip(&s.clro, Sig("clro"), &clro.r), STATUS_OK);
    ASSERT_EQ(clro.r.count, 3u);
    EXPECT_EQ(Items(clro.r.indices, 3), Items(s.order, 3));

    Got<ICCChromaticityType> chrm(Sig("chrm"));
    ASSERT_EQ(RoundTrip(&s.chrm, Sig("chrm"), &chrm.r), STATUS_OK);
    ASSERT_EQ(chrm.r.channels, 3);
    EXPECT_EQ(chrm.r.colorantType, 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(chrm.r.coordinates[i].x, s.primaries[i].x);
        EXPECT_EQ(chrm.r.coordinates[i].y, s.primaries[i].y);
    }
}

TEST(OtherTagRoundTrip, MultiLocalizedUnicode) {
    Samples s;
    Got<ICCMultiLocalizedUnicodeType> out(Sig("mluc"));
    ASSERT_EQ(RoundTrip(&s.description.record, Sig("mluc"), &out.r), STATUS_OK);
    ExpectSameMluc(out.r, s.description.record);
    EXPECT_EQ(MlucString(out.r, 1), u"Beispiel \u00e4");

    // No records: no arrays either way.
    Mluc none{};
    Got<ICCMultiLocalizedUnicodeType> empty(Sig("mluc"));
    ASSERT_EQ(RoundTrip(&none.record, Sig("mluc"), &empty.r), STATUS_OK);
    EXPECT_EQ(empty.r.count, 0u);
    EXPECT_EQ(empty.r.records, nullptr);
    EXPECT_EQ(empty.r.strings, nullptr);
}

TEST(OtherTagRoundTrip, NamedColors) {
    Samples s;
    Got<ICCNamedColor2Type> out(Sig("ncl2"));
    ASSERT_EQ(RoundTrip(&s.ncl2, Sig("ncl2"), &out.r), STATUS_OK);
    EXPECT_EQ(out.r.vendorFlags, 0xABCD0000u);
    ASSERT_EQ(out.r.count, 2u);
    ASSERT_EQ(out.r.deviceCoordinates, 4u);
    EXPECT_EQ(std::memcmp(out.r.prefix, s.ncl2.prefix, 32), 0);
    EXPECT_EQ(std::memcmp(out.r.suffix, s.ncl2.suffix, 32), 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(std::memcmp(out.r.entries[i].rootName, s.named[i].rootName, 32), 0);
        // Written as given, read big-endian: the PCS values come back swapped.
        for (int k = 0; k < 3; ++k) EXPECT_EQ(out.r.entries[i].pcs[k], __builtin_bswap16(s.named[i].pcs[k]));
        EXPECT_EQ(Items(out.r.entries[i].device, 4), Items(s.named[i].device, 4));
    }
    // Only the upper half of the vendor flags is written.
    s.ncl2.vendorFlags = 0x1234FFFF;
    Got<ICCNamedColor2Type> flags(Sig("ncl2"));
    ASSERT_EQ(RoundTrip(&s.ncl2, Sig("ncl2"), &flags.r), STATUS_OK);
    EXPECT_EQ(flags.r.vendorFlags, 0x12340000u);
}

TEST(OtherTagRoundTrip, ProfileSequence) {
    Samples s;
    Got<ICCProfileSequenceDescType> out(Sig("pseq"));
    ASSERT_EQ(RoundTrip(&s.pseq, Sig("pseq"), &out.r), STATUS_OK);
    ASSERT_EQ(out.r.count, 2u);
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const ICCProfileDescription& a = out.r.descriptions[i];
        const ICCProfileDescription& b = s.descriptions[i];
        EXPECT_EQ(a.deviceManufacturer, b.deviceManufacturer);
        EXPECT_EQ(a.deviceModel, b.deviceModel);
        // Copied as it stands, read big-endian.
        EXPECT_EQ(a.deviceAttributes, __builtin_bswap64(b.deviceAttributes));
        EXPECT_EQ(a.technology, b.technology);
        ExpectSameMluc(a.manufacturer, b.manufacturer);
        ExpectSameMluc(a.model, b.model);
    }
}

TEST(OtherTagRoundTrip, ResponseCurves) {
    Samples s;
    Got<ICCResponseCurveSet16Type> out(Sig("rcs2"));
    ASSERT_EQ(RoundTrip(&s.rcs2, Sig("rcs2"), &out.r), STATUS_OK);
    ASSERT_EQ(out.r.channels, 2);
    ASSERT_EQ(out.r.count, 2);
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        const ICCResponseCurve& a = out.r.curves[i];
        const ICCResponseCurve& b = s.curves[i];
        EXPECT_EQ(a.measurementUnit, b.measurementUnit);
        EXPECT_EQ(Items(a.measurementCounts, 2), Items(b.measurementCounts, 2));
        EXPECT_EQ(std::memcmp(a.maximumColorant, b.maximumColorant, 2 * sizeof(ICCXYZNumber)), 0);
        EXPECT_EQ(std::memcmp(a.responses, b.responses, 3 * sizeof(ICCResponse16Number)), 0);
    }
}

// A tag set twice through Vx_GetICCTagData's own output comes out the same.
TEST(OtherTagRoundTrip, ParsedRecordsSetAgain) {
    Samples s;
    for (const Samples::Entry& e : s.All()) {
        SCOPED_TRACE(e.type);
        const std::vector<uint8_t> element = ElementOf(e.record, e.type);
        AnyRecord got;
        ASSERT_EQ(RoundTrip(e.record, e.type, got.get()), STATUS_OK);
        std::vector<uint8_t> again = ElementOf(got.get(), e.type);
        Vx_FreeICCTagType(got.get(), e.type);
        if (e.type == Sig("ncl2") || e.type == Sig("pseq")) continue;  // the unswapped fields swap on each pass
        EXPECT_EQ(again, element);
    }
}

}  // namespace
