// Profiles built through this interface, read back by Little CMS.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstring>
#include <string>
#include <vector>

#include "icc_fixtures.h"

namespace {

using namespace icctest;

double S15(int32_t v) { return v / 65536.0; }

TEST(LittleCmsReader, ReadsAProfileBuiltFromScratch) {
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("mntr"))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCColorSpace(p.get(), static_cast<int32_t>(Sig("RGB "))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("XYZ "))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCRenderingIntent(p.get(), 1), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDevManufacturer(p.get(), Sig("KTCL")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDevModel(p.get(), Sig("TEST")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCCreator(p.get(), Sig("ktcl")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDeviceAttributes(p.get(), 5, 0), STATUS_OK);
    ASSERT_EQ(Vx_SetICCFlags(p.get(), 1), STATUS_OK);
    const uint16_t when[6] = {2023, 7, 14, 12, 30, 15};
    ASSERT_EQ(Vx_SetICCDateTime(p.get(), when), STATUS_OK);

    const struct {
        uint32_t tag;
        double x, y, z;
    } tags[] = {
        {Sig("wtpt"), 0.9642, 1.0, 0.8249},
        {Sig("rXYZ"), 0.4361, 0.2225, 0.0139},
        {Sig("gXYZ"), 0.3851, 0.7169, 0.0971},
        {Sig("bXYZ"), 0.1431, 0.0606, 0.7141},
        {Sig("bkpt"), 0.0, 0.0, 0.0},
    };
    std::vector<ICCXYZNumber> stored;
    for (const auto& t : tags) {
        ICCXYZNumber v{static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(t.x)),
                       static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(t.y)),
                       static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(t.z))};
        stored.push_back(v);
        ICCXYZType rec = XyzOf(&v, 1);
        ASSERT_EQ(Vx_SetICCTagData(p.get(), &rec, t.tag, Sig("XYZ ")), STATUS_OK);
    }
    // A v2 description through the raw path: ASCII count and text, then an
    // empty Unicode and ScriptCode part.
    const char text[] = "ktclr built";
    constexpr std::size_t kUnicodeAndScriptBytes = 4 + 4 + 2 + 1 + 67;
    std::vector<uint8_t> desc(4 + sizeof text + kUnicodeAndScriptBytes, 0);
    PutBe32(desc.data(), sizeof text);
    std::memcpy(desc.data() + 4, text, sizeof text);
    ICCRawTagType raw = RawOf(desc.data(), static_cast<uint32_t>(desc.size()), 0);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &raw, Sig("desc"), Sig("desc")), WARN_UNKNOWN_TAG_TYPE);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);

    cmsHPROFILE h = cmsOpenProfileFromMem(p->profileData, p->profileSize);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(cmsGetDeviceClass(h), cmsSigDisplayClass);
    EXPECT_EQ(cmsGetColorSpace(h), cmsSigRgbData);
    EXPECT_EQ(cmsGetPCS(h), cmsSigXYZData);
    EXPECT_EQ(cmsGetHeaderRenderingIntent(h), 1u);
    EXPECT_EQ(cmsGetHeaderManufacturer(h), Sig("KTCL"));
    EXPECT_EQ(cmsGetHeaderModel(h), Sig("TEST"));
    EXPECT_EQ(cmsGetHeaderCreator(h), Sig("ktcl"));
    EXPECT_EQ(cmsGetHeaderFlags(h), 1u);
    cmsUInt64Number attributes = 0;
    cmsGetHeaderAttributes(h, &attributes);
    EXPECT_EQ(attributes, 5u);
    EXPECT_EQ(cmsGetEncodedICCversion(h), 0x04200000u);
    struct tm dt {};
    ASSERT_TRUE(cmsGetHeaderCreationDateTime(h, &dt));
    EXPECT_EQ(dt.tm_year + 1900, 2023);
    EXPECT_EQ(dt.tm_mon + 1, 7);
    EXPECT_EQ(dt.tm_mday, 14);
    EXPECT_EQ(dt.tm_min, 30);
    EXPECT_EQ(cmsGetTagCount(h), 6);

    for (std::size_t i = 0; i < std::size(tags); ++i) {
        const auto* xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(h, static_cast<cmsTagSignature>(tags[i].tag)));
        ASSERT_NE(xyz, nullptr) << i;
        EXPECT_DOUBLE_EQ(xyz->X, S15(stored[i].X));
        EXPECT_DOUBLE_EQ(xyz->Y, S15(stored[i].Y));
        EXPECT_DOUBLE_EQ(xyz->Z, S15(stored[i].Z));
        EXPECT_NEAR(xyz->X, tags[i].x, 1.0 / 65536);
        EXPECT_NEAR(xyz->Z, tags[i].z, 1.0 / 65536);
    }
    char name[64] = {};
    ASSERT_GT(cmsGetProfileInfoASCII(h, cmsInfoDescription, "en", "US", name, sizeof name), 0u);
    EXPECT_STREQ(name, text);
    cmsCloseProfile(h);
}

}  // namespace
