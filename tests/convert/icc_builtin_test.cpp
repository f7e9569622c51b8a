// The built-in profiles (their size protocol, headers and tag layout) and
// METHOD_ICC handles, which must convert exactly as a direct lcms2
// transform between the same profiles does.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstdlib>
#include <iterator>
#include <utility>
#include <map>

#include "convert/icc_format.h"
#include "convert/icc_test_support.h"
#include "support/params.h"

namespace kt {
namespace {

using test::Bytes;
using test::BuiltinProfile;
using test::DeclaredSize;
using test::Direct;
using test::Handle;
using test::Params;
using test::SamplePixels;

std::uint32_t Be32(const Bytes& b, std::size_t at) {
    return (std::uint32_t(b[at]) << 24) | (std::uint32_t(b[at + 1]) << 16) | (std::uint32_t(b[at + 2]) << 8) |
           b[at + 3];
}

constexpr std::uint32_t Sig(const char (&s)[5]) {
    return (std::uint32_t(std::uint8_t(s[0])) << 24) | (std::uint32_t(std::uint8_t(s[1])) << 16) |
           (std::uint32_t(std::uint8_t(s[2])) << 8) | std::uint32_t(std::uint8_t(s[3]));
}

struct TagEntry {
    std::uint32_t offset, size, type;
};

std::map<std::uint32_t, TagEntry> Directory(const Bytes& b, std::vector<std::uint32_t>* order = nullptr) {
    std::map<std::uint32_t, TagEntry> tags;
    const std::uint32_t count = Be32(b, 128);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t at = 132 + 12 * i;
        const std::uint32_t offset = Be32(b, at + 4);
        tags[Be32(b, at)] = {offset, Be32(b, at + 8), Be32(b, offset)};
        if (order) order->push_back(Be32(b, at));
    }
    return tags;
}

TEST(EmbeddedProfile, SizeProtocol) {
    const char* source = std::getenv("KTCLR_SOURCE_DIR");
    const std::pair<std::int32_t, const char*> files[] = {{KTCLR_PROFILE_RGB_DISPLAY, "rgb_display.icc"},
                                                          {KTCLR_PROFILE_LAB, "lab.icc"},
                                                          {KTCLR_PROFILE_CMYK_PRESS, "cmyk_press.icc"},
                                                          {KTCLR_PROFILE_CMY, "cmy.icc"}};
    for (const auto& [selector, file] : files) {
        std::int32_t size = -5;
        ASSERT_EQ(Vx_ClrGetEmbeddedProfile(selector, nullptr, &size), STATUS_OK);
        ASSERT_GT(size, 128);
        // The library hands out its data file whole.
        if (source) {
            std::ifstream in(std::string(source) + "/data/builtin/" + file, std::ios::binary);
            const Bytes expected((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            EXPECT_EQ(BuiltinProfile(selector), expected) << file;
        }
        Bytes buffer(static_cast<std::size_t>(size) + 16, 0xEE);
        std::int32_t small = size - 1;
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), &small), ERR_BUFFER_TOO_SMALL);
        EXPECT_EQ(small, size - 1);
        EXPECT_EQ(buffer[0], 0xEE);  // nothing written
        std::int32_t large = size + 16;
        ASSERT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), &large), STATUS_OK);
        EXPECT_EQ(large, size);
        EXPECT_EQ(buffer[static_cast<std::size_t>(size)], 0xEE);
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), nullptr), ERR_INVALID_PARAMETER);
    }
    std::int32_t size = 77;
    for (std::int32_t selector : {0, 104, 108, 109, 111, -105})
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, nullptr, &size), ERR_INVALID_PARAMETER);
    EXPECT_EQ(size, 77);
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(KTCLR_PROFILE_RGB_DISPLAY, nullptr, nullptr), ERR_INVALID_PARAMETER);
}

TEST(EmbeddedProfile, HeadersAndTags) {
    struct Expect {
        std::int32_t selector;
        std::uint32_t version, deviceClass, space, pcs;
        std::vector<std::uint32_t> tags;
    };
    const Expect all[] = {
        {KTCLR_PROFILE_RGB_DISPLAY, 0x02100000, Sig("mntr"), Sig("RGB "), Sig("XYZ "),
         {Sig("cprt"), Sig("desc"), Sig("wtpt"), Sig("bkpt"), Sig("rXYZ"), Sig("gXYZ"), Sig("bXYZ"), Sig("dmnd"),
          Sig("dmdd"), Sig("vued"), Sig("view"), Sig("lumi"), Sig("meas"), Sig("tech"), Sig("rTRC"), Sig("gTRC"),
          Sig("bTRC")}},
        {KTCLR_PROFILE_LAB, 0x02100000, Sig("spac"), Sig("Lab "), Sig("Lab "),
         {Sig("desc"), Sig("A2B0"), Sig("B2A0"), Sig("wtpt"), Sig("cprt")}},
        {KTCLR_PROFILE_CMYK_PRESS, 0x02100000, Sig("prtr"), Sig("CMYK"), Sig("Lab "),
         {Sig("cprt"), Sig("desc"), Sig("wtpt"), Sig("bkpt"), Sig("A2B0"), Sig("A2B1"), Sig("A2B2"), Sig("B2A0"),
          Sig("B2A1"), Sig("B2A2"), Sig("gamt")}},
        {KTCLR_PROFILE_CMY, 0x02000000, Sig("spac"), Sig("CMY "), Sig("Lab "),
         {Sig("cprt"), Sig("A2B0"), Sig("B2A0"), Sig("ktc1"), Sig("ktc2"), Sig("desc"), Sig("wtpt")}},
    };
    for (const Expect& e : all) {
        SCOPED_TRACE(e.selector);
        const Bytes b = BuiltinProfile(e.selector);
        EXPECT_EQ(Be32(b, 8), e.version);
        EXPECT_EQ(Be32(b, 12), e.deviceClass);
        EXPECT_EQ(Be32(b, 16), e.space);
        EXPECT_EQ(Be32(b, 20), e.pcs);
        EXPECT_EQ(Be32(b, 36), Sig("acsp"));
        EXPECT_EQ(Be32(b, 44), 0u);  // flags
        EXPECT_EQ(Be32(b, 56), 0u);  // attributes
        EXPECT_EQ(Be32(b, 60), 0u);
        EXPECT_EQ(Be32(b, 64), 0u);  // perceptual
        EXPECT_EQ(Be32(b, 68), 0x0000F6D6u);  // D50
        EXPECT_EQ(Be32(b, 72), 0x00010000u);
        EXPECT_EQ(Be32(b, 76), 0x0000D32Du);
        std::vector<std::uint32_t> order;
        const auto tags = Directory(b, &order);
        EXPECT_EQ(order, e.tags);
        for (const auto& [sig, t] : tags) EXPECT_LE(t.offset + t.size, b.size());
    }

    const auto rgb = Directory(BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY));
    EXPECT_EQ(rgb.at(Sig("rTRC")).offset, rgb.at(Sig("gTRC")).offset);
    EXPECT_EQ(rgb.at(Sig("rTRC")).offset, rgb.at(Sig("bTRC")).offset);
    EXPECT_EQ(rgb.at(Sig("rTRC")).type, Sig("curv"));
    EXPECT_EQ(rgb.at(Sig("rTRC")).size, 2060u);  // 1024 entries
    EXPECT_EQ(rgb.at(Sig("view")).type, Sig("view"));
    EXPECT_EQ(rgb.at(Sig("meas")).type, Sig("meas"));
    EXPECT_EQ(rgb.at(Sig("tech")).type, Sig("sig "));
    EXPECT_EQ(rgb.at(Sig("dmdd")).type, Sig("desc"));

    const auto lab = Directory(BuiltinProfile(KTCLR_PROFILE_LAB));
    EXPECT_EQ(lab.at(Sig("A2B0")).type, Sig("mft1"));
    EXPECT_EQ(lab.at(Sig("B2A0")).type, Sig("mft1"));
    EXPECT_NE(lab.at(Sig("A2B0")).offset, lab.at(Sig("B2A0")).offset);

    const auto press = Directory(BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS));
    EXPECT_EQ(press.at(Sig("A2B0")).offset, press.at(Sig("A2B1")).offset);
    EXPECT_EQ(press.at(Sig("A2B0")).offset, press.at(Sig("A2B2")).offset);
    EXPECT_EQ(press.at(Sig("B2A0")).offset, press.at(Sig("B2A1")).offset);
    EXPECT_EQ(press.at(Sig("B2A0")).offset, press.at(Sig("B2A2")).offset);
    EXPECT_NE(press.at(Sig("A2B0")).offset, press.at(Sig("B2A0")).offset);
    EXPECT_EQ(press.at(Sig("A2B0")).type, Sig("mft2"));
    EXPECT_EQ(press.at(Sig("B2A0")).type, Sig("mft2"));
    EXPECT_EQ(press.at(Sig("gamt")).type, Sig("mft1"));

    // The CMY profile's copyright lies just past the declared end; the block
    // handed out covers it and eight bytes more.
    const Bytes cmy = BuiltinProfile(KTCLR_PROFILE_CMY);
    const auto cmyTags = Directory(cmy);
    const std::uint32_t declared = DeclaredSize(cmy);
    EXPECT_EQ(cmyTags.at(Sig("cprt")).offset, declared);
    EXPECT_EQ(cmyTags.at(Sig("cprt")).size, 56u);
    EXPECT_EQ(cmyTags.at(Sig("cprt")).type, Sig("text"));
    EXPECT_EQ(cmy.size(), declared + 64u);
    EXPECT_EQ(cmyTags.at(Sig("ktc1")).type, Sig("ui08"));
    EXPECT_EQ(cmyTags.at(Sig("ktc1")).size, 10u);
    std::int32_t justDeclared = static_cast<std::int32_t>(declared);
    Bytes buffer(declared);
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(KTCLR_PROFILE_CMY, buffer.data(), &justDeclared), ERR_BUFFER_TOO_SMALL);
}

TEST(EmbeddedProfile, LcmsReadsEveryProfile) {
    for (std::int32_t selector : {KTCLR_PROFILE_RGB_DISPLAY, KTCLR_PROFILE_LAB, KTCLR_PROFILE_CMYK_PRESS,
                                  KTCLR_PROFILE_CMY}) {
        SCOPED_TRACE(selector);
        const Bytes b = BuiltinProfile(selector);
        cmsHPROFILE p = cmsOpenProfileFromMem(b.data(), DeclaredSize(b));
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(cmsGetHeaderRenderingIntent(p), 0u);
        EXPECT_NE(cmsReadTag(p, cmsSigProfileDescriptionTag), nullptr);
        if (selector == KTCLR_PROFILE_RGB_DISPLAY) {
            EXPECT_NE(cmsReadTag(p, cmsSigRedTRCTag), nullptr);
            EXPECT_NE(cmsReadTag(p, cmsSigViewingConditionsTag), nullptr);
        } else {
            EXPECT_NE(cmsReadTag(p, cmsSigAToB0Tag), nullptr);
            EXPECT_NE(cmsReadTag(p, cmsSigBToA0Tag), nullptr);
        }
        if (selector == KTCLR_PROFILE_CMYK_PRESS) {
            EXPECT_NE(cmsReadTag(p, cmsSigGamutTag), nullptr);
        }
        cmsCloseProfile(p);
    }
}

TEST(EmbeddedProfile, PressAndLabBehaveSensibly) {
    const Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS), rgb = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    const Bytes lab = BuiltinProfile(KTCLR_PROFILE_LAB);
    Direct toRgb({&press, &rgb}, TYPE_CMYK_8, TYPE_RGB_8);
    ASSERT_TRUE(toRgb.ok());
    const Bytes out = toRgb.Run({0, 0, 0, 0, 255, 255, 255, 255, 255, 0, 0, 0}, 3, 3);
    EXPECT_GE(out[0], 250);  // paper is white
    EXPECT_LE(out[3] + out[4] + out[5], 100);  // full ink is near black
    EXPECT_LT(out[6], out[7]);                 // cyan takes red away
    // Through the Lab profile and back is the identity, give or take
    // lcms2's rounding, between the two encodings: the device side reads a
    // and b as signed bytes and writes the ICC encoding (a + 128). Only the
    // extremes next to the signed wrap at +-128 are left out.
    Direct identity({&lab, &lab}, TYPE_Lab_8, TYPE_Lab_8);
    ASSERT_TRUE(identity.ok());
    const Bytes in = SamplePixels(3, 4096);
    const Bytes same = identity.Run(in, 4096, 3);
    auto nearWrap = [](std::uint8_t v) { return v >= 120 && v <= 136; };
    for (std::size_t i = 0; i < in.size(); i += 3) {
        if (nearWrap(in[i + 1]) || nearWrap(in[i + 2])) continue;
        ASSERT_NEAR(same[i], in[i], 1) << i;
        for (std::size_t c = 1; c < 3; ++c) ASSERT_NEAR(same[i + c], (in[i + c] + 128) & 255, 1) << i;
    }
    // Device Lab is the library's pixel: a neutral source reads as grey.
    Direct toDisplay({&lab, &rgb}, TYPE_Lab_8, TYPE_RGB_8);
    const Bytes grey = toDisplay.Run({128, 0, 0, 128, 20, 0, 128, 236, 0}, 3, 3);
    EXPECT_NEAR(grey[0], grey[1], 2);
    EXPECT_NEAR(grey[1], grey[2], 2);
    EXPECT_GT(grey[3], grey[4]);  // a = +20 is reddish
    EXPECT_LT(grey[6], grey[7]);  // a = -20 is greenish
}

struct Side {
    int space;
    std::int32_t selector;
    cmsUInt32Number format;
    int bytes;
};
const Side kSides[] = {
    {CS_RGB, KTCLR_PROFILE_RGB_DISPLAY, TYPE_RGB_8, 3}, {CS_BGR, KTCLR_PROFILE_RGB_DISPLAY, TYPE_BGR_8, 3},
    {CS_CMYK, KTCLR_PROFILE_CMYK_PRESS, TYPE_CMYK_8, 4}, {CS_CMY, KTCLR_PROFILE_CMY, TYPE_CMY_8, 3},
    {CS_LAB, KTCLR_PROFILE_LAB, TYPE_Lab_8, 3},
};

void OffsetLab(Bytes& b) {
    for (std::size_t i = 0; i < b.size(); i += 3) {
        b[i + 1] = static_cast<std::uint8_t>(b[i + 1] + 128);
        b[i + 2] = static_cast<std::uint8_t>(b[i + 2] + 128);
    }
}

TEST(IccMethod, EveryPairMatchesDirectLcms) {
    constexpr std::size_t kPixels = 3000;
    for (std::uint32_t flags : {0u, 1u}) {
        for (const Side& s : kSides)
            for (const Side& d : kSides) {
                if (s.space == d.space) continue;
                SCOPED_TRACE(testing::Message() << s.space << " -> " << d.space << " flags " << flags);
                ConversionParams p = Params(METHOD_ICC);
                p.iccFlags = flags;
                Handle h;
                ASSERT_EQ(Vx_ClrInit(&h.h, s.space, d.space, &p), STATUS_OK);
                if (h.h->PathKind == KTCLR_PATH_TWO_STEP) {
                    // CMYK and CMY meet through RGB; no transform is made.
                    EXPECT_EQ(h.h->iccTransform, nullptr);
                    continue;
                }
                ASSERT_NE(h.h->iccTransform, nullptr);
                EXPECT_EQ(h.h->customIccTransform, nullptr);
                EXPECT_EQ(h.h->srcFormat, s.format);
                EXPECT_EQ(h.h->dstFormat, d.format);

                const Bytes sp = BuiltinProfile(s.selector), dp = BuiltinProfile(d.selector);
                Direct direct({&sp, &dp}, s.format, d.format, flags ? cmsFLAGS_NOWHITEONWHITEFIXUP : 0);
                ASSERT_TRUE(direct.ok());
                const Bytes in = SamplePixels(s.bytes, kPixels);
                Bytes expect = direct.Run(in, kPixels, static_cast<std::size_t>(d.bytes));
                if (d.space == CS_LAB) OffsetLab(expect);

                Bytes got(expect.size());
                ASSERT_EQ(Vx_ClrConvert(h.h, const_cast<std::uint8_t*>(in.data()), got.data(),
                                        static_cast<int>(kPixels), 1, 0, 0),
                          STATUS_OK);
                ASSERT_EQ(got, expect);
            }
    }
}

TEST(IccMethod, RowsWithPaddingAndNeutralLab) {
    ConversionParams p = Params(METHOD_ICC);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_LAB, &p), STATUS_OK);
    // The transform writes the ICC encoding (a + 128) and the frame's +128
    // turns it into the Lab pixel's signed bytes: a neutral grey is 0, 0,
    // as the built-in formulas write it, and colors near grey stay near 0
    // (no wrap inside the transform for lcms2 to interpolate across).
    for (int v = 0; v < 256; v += 3) {
        std::uint8_t grey[3] = {std::uint8_t(v), std::uint8_t(v), std::uint8_t(v)}, lab[3] = {};
        ASSERT_EQ(Vx_ClrConvert(h.h, grey, lab, 1, 1, 0, 0), STATUS_OK);
        EXPECT_LE(std::abs(static_cast<std::int8_t>(lab[1])), 1) << v;
        EXPECT_LE(std::abs(static_cast<std::int8_t>(lab[2])), 1) << v;
        std::uint8_t tinted[3] = {std::uint8_t(v), std::uint8_t(v), std::uint8_t(v > 2 ? v - 2 : v + 2)};
        ASSERT_EQ(Vx_ClrConvert(h.h, tinted, lab, 1, 1, 0, 0), STATUS_OK);
        EXPECT_LE(std::abs(static_cast<std::int8_t>(lab[1])), 4) << v;
        EXPECT_LE(std::abs(static_cast<std::int8_t>(lab[2])), 4) << v;
    }

    // Padded rows convert row by row and leave the padding alone.
    const Bytes rgbp = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY), labp = BuiltinProfile(KTCLR_PROFILE_LAB);
    Direct direct({&rgbp, &labp}, TYPE_RGB_8, TYPE_Lab_8);
    constexpr int kWidth = 5, kHeight = 4, kStride = 16;
    Bytes in = SamplePixels(3, kWidth * kHeight);
    Bytes padded(kStride * kHeight, 0), out(kStride * kHeight, 0xAB);
    for (int y = 0; y < kHeight; ++y) std::memcpy(&padded[y * kStride], &in[y * kWidth * 3], kWidth * 3);
    ASSERT_EQ(Vx_ClrConvert(h.h, padded.data(), out.data(), kWidth, kHeight, 8, 8), STATUS_OK);
    Bytes expect = direct.Run(in, kWidth * kHeight, 3);
    OffsetLab(expect);
    for (int y = 0; y < kHeight; ++y) {
        EXPECT_EQ(Bytes(out.begin() + y * kStride, out.begin() + y * kStride + kWidth * 3),
                  Bytes(expect.begin() + y * kWidth * 3, expect.begin() + (y + 1) * kWidth * 3));
        EXPECT_EQ(out[y * kStride + kWidth * 3], 0xAB);
    }
}

TEST(IccMethod, RebuildAndFailures) {
    // Bit 4 under METHOD_ICC rebuilds the transform from the built-in
    // profiles, now with the caller's flags.
    ConversionParams p = Params(METHOD_ICC);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    IccOptions options{{1, 2, 3, 4, 5}};
    ConversionParams change = Params(0, KTCLR_CHANGE_ICC_OPTIONS);
    change.iccOptions = &options;
    change.iccFlags = 1;
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    ASSERT_NE(h.h->iccTransform, nullptr);
    const Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS), rgb = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    Direct direct({&press, &rgb}, TYPE_CMYK_8, TYPE_RGB_8, cmsFLAGS_NOWHITEONWHITEFIXUP);
    const Bytes in = SamplePixels(4, 2000);
    Bytes got(2000 * 3);
    ASSERT_EQ(Vx_ClrConvert(h.h, const_cast<std::uint8_t*>(in.data()), got.data(), 2000, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(got, direct.Run(in, 2000, 3));

    // A pair through RGB in two steps builds no transform; a later rebuild
    // finds no built-in profile for its ids.
    Handle two;
    p = Params(METHOD_ICC, METHOD_ICC | METHOD_BUILTIN);
    ASSERT_EQ(Vx_ClrInit(&two.h, CS_HSV, CS_YIQ, &p), STATUS_OK);
    EXPECT_EQ(two.h->iccTransform, nullptr);
    EXPECT_EQ(Vx_ClrSetConversionParams(two.h, &change), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(two.h->iccTransform, nullptr);

    // YCCK goes to the transform as CMYK.
    Handle ycck;
    p = Params(METHOD_ICC);
    ASSERT_EQ(Vx_ClrInit(&ycck.h, CS_YCCK, CS_RGB, &p), STATUS_OK);
    EXPECT_EQ(ycck.h->srcFormat, TYPE_CMYK_8);
    EXPECT_NE(ycck.h->iccTransform, nullptr);
}

}  // namespace
}  // namespace kt
