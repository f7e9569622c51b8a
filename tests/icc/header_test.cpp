#include <gtest/gtest.h>

#include <vector>

#include "icc_test_support.h"

namespace {

using namespace icctest;

TEST(Header, InitThenOneSetterGivesTheBareImage) {
    Profile p;
    EXPECT_EQ(Vx_InitICCHeader(nullptr), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(p->profileData, nullptr);  // init does not rebuild
    EXPECT_EQ(p->header->size, 132u);
    EXPECT_EQ(p->header->illuminant.X, 0xF6D6);
    EXPECT_EQ(p->header->illuminant.Y, 0x10000);
    EXPECT_EQ(p->header->illuminant.Z, 0xD32D);

    ASSERT_EQ(Vx_SetICCCreator(p.get(), Sig("ktcl")), STATUS_OK);
    std::vector<uint8_t> expected(132, 0);
    const uint8_t fields[][2] = {{3, 132}, {8, 0x04}, {9, 0x20},  {36, 'a'}, {37, 'c'}, {38, 's'},
                                 {39, 'p'}, {70, 0xF6}, {71, 0xD6}, {73, 0x01}, {78, 0xD3}, {79, 0x2D},
                                 {80, 'k'}, {81, 't'},  {82, 'c'},  {83, 'l'}};
    for (const auto& f : fields) expected[f[0]] = f[1];
    EXPECT_EQ(p.Image(), expected);

    // A second init reuses the header and resets it.
    ICCHeader* header = p->header;
    p->header->creator = 7;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(p->header, header);
    EXPECT_EQ(p->header->creator, 0u);
}

TEST(Header, SettersAcceptTheirSetsOnly) {
    Profile p;
    EXPECT_EQ(Vx_SetICCCreator(p.get(), 1), ERR_INVALID_PARAMETER);  // no header yet
    EXPECT_EQ(Vx_SetICCProfileId(p.get()), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCCreator(nullptr, 1), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ICCHeader& h = *p->header;

    EXPECT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("TGNT"))), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCDeviceClass(p.get(), 0), ERR_INVALID_PARAMETER);
    for (uint32_t c : {Sig("scnr"), Sig("mntr"), Sig("prtr"), Sig("link"), Sig("spac"), Sig("abst"), Sig("nmcl")}) {
        EXPECT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(c)), STATUS_OK);
        EXPECT_EQ(h.deviceClass, c);
    }

    const char* spaces[] = {"XYZ ", "Lab ", "Luv ", "YCbr", "Yxy ", "RGB ", "GRAY", "HSV ", "HLS ",
                            "CMYK", "CMY ", "2CLR", "3CLR", "4CLR", "5CLR", "6CLR", "7CLR", "8CLR",
                            "9CLR", "ACLR", "BCLR", "CCLR", "DCLR", "ECLR", "FCLR"};
    for (const char* s : spaces) {
        const uint32_t v = Be32(reinterpret_cast<const uint8_t*>(s));
        EXPECT_EQ(Vx_SetICCColorSpace(p.get(), static_cast<int32_t>(v)), STATUS_OK) << s;
        EXPECT_EQ(h.colorSpace, v);
        EXPECT_EQ(Be32(p->profileData + 16), v);
    }
    EXPECT_EQ(Vx_SetICCColorSpace(p.get(), static_cast<int32_t>(Sig("1CLR"))), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCColorSpace(p.get(), static_cast<int32_t>(Sig("GCLR"))), ERR_INVALID_PARAMETER);
    EXPECT_EQ(h.colorSpace, Sig("FCLR"));

    EXPECT_EQ(Vx_SetICCPrimaryPlatform(p.get(), 0), STATUS_OK);
    EXPECT_EQ(Vx_SetICCPrimaryPlatform(p.get(), static_cast<int32_t>(Sig("SUNW"))), STATUS_OK);
    EXPECT_EQ(Vx_SetICCPrimaryPlatform(p.get(), static_cast<int32_t>(Sig("TGNT"))), ERR_INVALID_PARAMETER);
    EXPECT_EQ(h.platform, Sig("SUNW"));

    EXPECT_EQ(Vx_SetICCRenderingIntent(p.get(), 4), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCRenderingIntent(p.get(), 3), STATUS_OK);
    EXPECT_EQ(Be32(p->profileData + 64), 3u);

    EXPECT_EQ(Vx_SetICCFlags(p.get(), -1), STATUS_OK);
    EXPECT_EQ(h.flags, 3u);

    EXPECT_EQ(Vx_SetICCDeviceAttributes(p.get(), 0x12345678, 0xFFFFFFFF), STATUS_OK);
    EXPECT_EQ(h.attributes, 8u);

    EXPECT_EQ(Vx_SetICCCMMType(p.get(), Sig("lcms")), STATUS_OK);
    EXPECT_EQ(Vx_SetICCDevManufacturer(p.get(), 0x11223344), STATUS_OK);
    EXPECT_EQ(Vx_SetICCDevModel(p.get(), 0x55667788), STATUS_OK);
    const uint16_t when[6] = {2024, 2, 29, 23, 59, 58};
    EXPECT_EQ(Vx_SetICCDateTime(p.get(), when), STATUS_OK);
    const uint8_t* img = p->profileData;
    EXPECT_EQ(Be32(img + 4), Sig("lcms"));
    EXPECT_EQ(Be32(img + 48), 0x11223344u);
    EXPECT_EQ(Be32(img + 52), 0x55667788u);
    const uint8_t dateBytes[12] = {0x07, 0xE8, 0, 2, 0, 29, 0, 23, 0, 59, 0, 58};
    EXPECT_EQ(std::vector<uint8_t>(img + 24, img + 36), std::vector<uint8_t>(dateBytes, dateBytes + 12));

    for (int i = 0; i < 16; ++i) h.profileId[i] = uint8_t(i + 1);
    EXPECT_EQ(Vx_SetICCProfileId(p.get()), STATUS_OK);
    for (uint8_t b : h.profileId) EXPECT_EQ(b, 0);
}

TEST(Header, ConnectionSpaceDependsOnTheClass) {
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("Lab "))), ERR_INVALID_PARAMETER);

    ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("link"))), STATUS_OK);
    const std::vector<uint8_t> image = p.Image();
    EXPECT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("CMYK"))), STATUS_OK);
    EXPECT_EQ(p->header->connectionSpace, Sig("CMYK"));
    EXPECT_EQ(p.Image(), image);  // no rebuild for a link
    EXPECT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("TGNT"))), ERR_INVALID_PARAMETER);

    ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("mntr"))), STATUS_OK);
    EXPECT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("CMYK"))), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("Lab "))), STATUS_OK);
    EXPECT_EQ(Be32(p->profileData + 20), Sig("Lab "));
}

TEST(Header, EncodingOfAttributesReservedAndId) {
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    p->header->attributes = 0x0000000200000001ull;
    for (int i = 0; i < 16; ++i) p->header->profileId[i] = uint8_t(0xA0 + i);
    for (uint8_t& b : p->header->reserved) b = 0xEE;
    ASSERT_EQ(Vx_SetICCCMMType(p.get(), 0), STATUS_OK);
    const uint8_t* img = p->profileData;
    const uint8_t attributes[8] = {0, 0, 0, 2, 0, 0, 0, 1};
    EXPECT_EQ(std::vector<uint8_t>(img + 56, img + 64), std::vector<uint8_t>(attributes, attributes + 8));
    for (int i = 0; i < 16; ++i) EXPECT_EQ(img[84 + i], 0xA0 + i);
    for (int i = 100; i < 128; ++i) EXPECT_EQ(img[i], 0) << i;
}

TEST(Header, ByteHelpers) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, 6), 0x03040506u);
    EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, 8), 0x05060708u);
    EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, 2), 0x0102u);
    EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, 9), 0u);
    EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, 0), 0u);
    EXPECT_EQ(Vx_ClrIntIccGetBytes(nullptr, 4), 0u);

    uint8_t out[8] = {};
    EXPECT_EQ(Vx_ClrIntIccSetBytes(out, 0x0102030405060708ull, 8), STATUS_OK);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 8), std::vector<uint8_t>(bytes, bytes + 8));
    uint8_t two[3] = {0xFF, 0xFF, 0xFF};
    EXPECT_EQ(Vx_ClrIntIccSetBytes(two, 0x0102030405060708ull, 2), STATUS_OK);
    EXPECT_EQ(two[0], 7);
    EXPECT_EQ(two[1], 8);
    EXPECT_EQ(two[2], 0xFF);
    EXPECT_EQ(Vx_ClrIntIccSetBytes(out, 1, 9), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntIccSetBytes(out, 1, 0), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrIntIccSetBytes(nullptr, 1, 4), ERR_INVALID_PARAMETER);
}

TEST(Header, RebuildRefusesASizeThatDoesNotCountTheTags) {
    // Re-initializing the header of a profile with tags leaves a size of 132;
    // the next rebuild must not copy the tags past the image.
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ICCXYZNumber v{1, 2, 3};
    ICCXYZType t = XyzOf(&v, 1);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_SetICCCreator(p.get(), 1), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(p->profileSize, 132u + 12u + 20u);
}

}  // namespace
