// 'curv' and 'para' with Little CMS on the other side: profiles written
// here are read by cmsReadTag, profiles Little CMS writes are read here, and
// the tone curves of the distribution's profiles decode to what Little CMS
// reads.
#include <gtest/gtest.h>

#include <vector>

#include "tag_lut_lcms.h"

namespace {

using namespace icctest;

TEST(CurveLittleCms, ReadsCurvesWrittenHere) {
    std::vector<uint16_t> table(256);
    for (uint32_t i = 0; i < 256; ++i) table[i] = uint16_t(i * i + i);
    uint16_t gamma = 0x0233;  // 2.2
    uint16_t none = 0;
    int32_t p3[5] = {0x26666, 0xF2A7, 0x0D59, 0x13D0, 0x0A3D};
    int32_t p4[7] = {0x20000, 0x10000, -0x100, 0x8000, 0x1000, 0x200, -0x300};
    int32_t p0[1] = {0x1CCCD};
    ICCParametricCurveType para3{Sig("para"), 0, 3, 0, p3}, para4{Sig("para"), 0, 4, 0, p4},
        para0{Sig("para"), 0, 0, 0, p0};
    // Little CMS takes curves in the four TRC tags only: two profiles.
    ICCCurveType records[8] = {{Sig("curv"), 0, 256, table.data()}, {Sig("curv"), 0, 1, &gamma},
                               {Sig("curv"), 0, 0, &none}};
    std::memcpy(&records[3], &para3, sizeof records[3]);
    std::memcpy(&records[4], &para4, sizeof records[4]);
    std::memcpy(&records[5], &para0, sizeof records[5]);
    records[6] = records[1];
    records[7] = records[0];
    const uint32_t tags[4] = {Sig("rTRC"), Sig("gTRC"), Sig("bTRC"), Sig("kTRC")};
    for (int batch = 0; batch < 2; ++batch) {
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), int32_t(Sig("mntr"))), STATUS_OK);
        ASSERT_EQ(Vx_SetICCColorSpace(p.get(), int32_t(Sig("RGB "))), STATUS_OK);
        ASSERT_EQ(Vx_SetICCConnectionSpace(p.get(), int32_t(Sig("XYZ "))), STATUS_OK);
        for (int i = 0; i < 4; ++i) {
            ICCCurveType& r = records[4 * batch + i];
            const uint32_t type = Vx_ClrIntIsParametricCurveType(&r, 0) ? Sig("para") : Sig("curv");
            ASSERT_EQ(Vx_SetICCTagData(p.get(), &r, tags[i], type), STATUS_OK);
        }
        ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
        cmsHPROFILE h = cmsOpenProfileFromMem(p->profileData, p->profileSize);
        ASSERT_NE(h, nullptr);
        for (int i = 0; i < 4; ++i) {
            SCOPED_TRACE(testing::Message() << "curve " << 4 * batch + i);
            const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(h, static_cast<cmsTagSignature>(tags[i])));
            ExpectSameCurve(ValuesOfRecord(&records[4 * batch + i]), curve);
        }
        cmsCloseProfile(h);
    }
}

TEST(CurveLittleCms, ReadsCurvesLittleCmsWrote) {
    cmsHPROFILE h = cmsCreateProfilePlaceholder(nullptr);
    ASSERT_NE(h, nullptr);
    cmsSetProfileVersion(h, 4.3);
    cmsSetDeviceClass(h, cmsSigDisplayClass);
    cmsSetColorSpace(h, cmsSigRgbData);
    cmsSetPCS(h, cmsSigXYZData);
    std::vector<cmsUInt16Number> table(1024);
    for (uint32_t i = 0; i < table.size(); ++i) table[i] = cmsUInt16Number(i * 64 + (i & 7));
    const cmsFloat64Number srgb[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    const cmsFloat64Number six[7] = {2.2, 0.9, 0.1, 0.05, 0.02, 0.01, 0.003};
    cmsToneCurve* curves[3] = {cmsBuildTabulatedToneCurve16(nullptr, cmsUInt32Number(table.size()), table.data()),
                               cmsBuildParametricToneCurve(nullptr, 4, srgb),
                               cmsBuildParametricToneCurve(nullptr, 5, six)};
    const uint32_t tags[3] = {Sig("rTRC"), Sig("gTRC"), Sig("bTRC")};
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(curves[i], nullptr);
        ASSERT_TRUE(cmsWriteTag(h, static_cast<cmsTagSignature>(tags[i]), curves[i]));
    }
    cmsUInt32Number bytes = 0;
    ASSERT_TRUE(cmsSaveProfileToMem(h, nullptr, &bytes));
    std::vector<uint8_t> image(bytes);
    ASSERT_TRUE(cmsSaveProfileToMem(h, image.data(), &bytes));
    for (cmsToneCurve* c : curves) cmsFreeToneCurve(c);
    cmsCloseProfile(h);

    Profile p;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), uint32_t(image.size())), STATUS_OK);
    cmsHPROFILE witness = cmsOpenProfileFromMem(image.data(), cmsUInt32Number(image.size()));
    ASSERT_NE(witness, nullptr);
    const uint32_t types[3] = {Sig("curv"), Sig("para"), Sig("para")};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(Vx_GetICCTagTypeSig(p.get(), tags[i]), types[i]);
        AnyRecord ours{};
        ASSERT_EQ(Vx_GetICCTagData(p.get(), &ours, tags[i]), STATUS_OK);
        const CurveValues values = ValuesOfRecord(&ours);
        ExpectSameCurve(values, static_cast<const cmsToneCurve*>(cmsReadTag(witness, static_cast<cmsTagSignature>(tags[i]))));
        if (i == 0) {
            EXPECT_EQ(values.values[5], table[5]);
        }
        if (i == 1) {
            EXPECT_EQ(values.values[0], 0x26666);  // 2.4
        }
        Vx_FreeICCTagType(&ours, types[i]);
    }
    cmsCloseProfile(witness);
}

}  // namespace
