// The header: the bare image of init and one setter, and each setter's
// accepted values and the image bytes it leaves, worked out by hand.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "icc_test_support.h"

namespace {

using namespace icctest;

TEST(Header, InitThenOneSetterGivesTheBareImage) {
    Profile p;
    EXPECT_EQ(Vx_InitICCHeader(nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCCreator(p.get(), 1), ERR_INVALID_PARAMETER);  // no header yet
    EXPECT_EQ(Vx_SetICCProfileId(p.get()), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCCreator(nullptr, 1), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(p->profileData, nullptr);  // init does not rebuild
    ASSERT_EQ(Vx_SetICCCreator(p.get(), Sig("ktcl")), STATUS_OK);
    Bytes expected(132, 0);
    const uint8_t fields[][2] = {{3, 132}, {8, 0x04}, {9, 0x20},  {36, 'a'}, {37, 'c'}, {38, 's'},
                                 {39, 'p'}, {70, 0xF6}, {71, 0xD6}, {73, 0x01}, {78, 0xD3}, {79, 0x2D},
                                 {80, 'k'}, {81, 't'},  {82, 'c'},  {83, 'l'}};
    for (const auto& f : fields) expected[f[0]] = f[1];
    EXPECT_EQ(p.Image(), expected);

    // A second init reuses the header and resets it.
    ICCHeader* header = p->header;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(p->header, header);
    EXPECT_EQ(p->header->creator, 0u);
}

// Rows run in turn on one profile: the status, and for a set the image
// bytes at `at`; a refusal leaves the image as it was.
TEST(Header, SettersAcceptTheirSetsOnly) {
    using R = ICCProfileRecord*;
    auto cls = [](const char(&s)[5]) { return [v = Sig(s)](R r) { return Vx_SetICCDeviceClass(r, int32_t(v)); }; };
    auto pcs = [](const char(&s)[5]) { return [v = Sig(s)](R r) { return Vx_SetICCConnectionSpace(r, int32_t(v)); }; };
    auto platform = [](uint32_t v) { return [v](R r) { return Vx_SetICCPrimaryPlatform(r, int32_t(v)); }; };
    const uint16_t when[6] = {2024, 2, 29, 23, 59, 58};
    const struct {
        const char* what;
        std::function<KtStatus(R)> set;
        KtStatus status;
        uint32_t at = 0;
        Bytes bytes = {};
    } rows[] = {
        {"class TGNT", cls("TGNT"), ERR_INVALID_PARAMETER},
        {"class 0", [](R r) { return Vx_SetICCDeviceClass(r, 0); }, ERR_INVALID_PARAMETER},
        {"Lab before a class", pcs("Lab "), ERR_INVALID_PARAMETER},
        {"class link", cls("link"), STATUS_OK, 12, {'l', 'i', 'n', 'k'}},
        {"a link takes a color space, without a rebuild", pcs("CMYK"), STATUS_OK, 20, {0, 0, 0, 0}},
        {"link PCS TGNT", pcs("TGNT"), ERR_INVALID_PARAMETER},
        {"class mntr", cls("mntr"), STATUS_OK, 12, {'m', 'n', 't', 'r', 'R', 'G', 'B', ' ', 'C', 'M', 'Y', 'K'}},
        {"mntr PCS CMYK", pcs("CMYK"), ERR_INVALID_PARAMETER},
        {"mntr PCS Lab", pcs("Lab "), STATUS_OK, 20, {'L', 'a', 'b', ' '}},
        {"color space 1CLR", [](R r) { return Vx_SetICCColorSpace(r, int32_t(Sig("1CLR"))); }, ERR_INVALID_PARAMETER},
        {"color space GCLR", [](R r) { return Vx_SetICCColorSpace(r, int32_t(Sig("GCLR"))); }, ERR_INVALID_PARAMETER},
        {"platform 0", platform(0), STATUS_OK, 40, {0, 0, 0, 0}},
        {"platform SUNW", platform(Sig("SUNW")), STATUS_OK, 40, {'S', 'U', 'N', 'W'}},
        {"platform TGNT", platform(Sig("TGNT")), ERR_INVALID_PARAMETER},
        {"intent 4", [](R r) { return Vx_SetICCRenderingIntent(r, 4); }, ERR_INVALID_PARAMETER},
        {"intent 3", [](R r) { return Vx_SetICCRenderingIntent(r, 3); }, STATUS_OK, 64, {0, 0, 0, 3}},
        {"flags keep two bits", [](R r) { return Vx_SetICCFlags(r, -1); }, STATUS_OK, 44, {0, 0, 0, 3}},
        {"attributes keep bit 3 of the low word",
         [](R r) { return Vx_SetICCDeviceAttributes(r, 0x12345678, 0xFFFFFFFF); }, STATUS_OK, 56, {0, 0, 0, 0, 0, 0, 0, 8}},
        {"CMM", [](R r) { return Vx_SetICCCMMType(r, Sig("lcms")); }, STATUS_OK, 4, {'l', 'c', 'm', 's'}},
        {"maker and model",
         [](R r) {
             EXPECT_EQ(Vx_SetICCDevManufacturer(r, 0x11223344), STATUS_OK);
             return Vx_SetICCDevModel(r, 0x55667788);
         }, STATUS_OK, 48,
         {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88}},
        {"date", [&](R r) { return Vx_SetICCDateTime(r, when); }, STATUS_OK, 24,
         {0x07, 0xE8, 0, 2, 0, 29, 0, 23, 0, 59, 0, 58}},
        // Both attribute words and the ID as they stand (intent, illuminant
        // and creator between them); reserved bytes zero.
        {"attributes, ID and reserved bytes of the record",
         [](R r) {
             r->header->attributes = 0x0000000200000001ull;
             for (int i = 0; i < 16; ++i) r->header->profileId[i] = uint8_t(0xA0 + i);
             for (uint8_t& b : r->header->reserved) b = 0xEE;
             return Vx_SetICCCMMType(r, 0);
         },
         STATUS_OK, 56,
         Cat({{0, 0, 0, 2, 0, 0, 0, 1}, Be32s({3, 0xF6D6, 0x10000, 0xD32D, 0}), {0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB,
                                                    0xAC, 0xAD, 0xAE, 0xAF}, Bytes(28)})},
        {"the ID reset", Vx_SetICCProfileId, STATUS_OK, 84, Bytes(16)},
    };
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCColorSpace(p.get(), int32_t(Sig("RGB "))), STATUS_OK);
    for (const auto& row : rows) {
        const Bytes before = p.Image();
        EXPECT_EQ(row.set(p.get()), row.status) << row.what;
        if (row.status != STATUS_OK) EXPECT_EQ(p.Image(), before) << row.what;
        else EXPECT_EQ(Of(p->profileData + row.at, row.bytes.size()), row.bytes) << row.what;
    }
    // The color spaces taken, each written at 16.
    for (const char* s : {"XYZ ", "Lab ", "Luv ", "YCbr", "Yxy ", "RGB ", "GRAY", "HSV ", "HLS ", "CMYK", "CMY ", "2CLR",
                          "3CLR", "4CLR", "5CLR", "6CLR", "7CLR", "8CLR", "9CLR", "ACLR", "BCLR", "CCLR", "DCLR", "ECLR",
                          "FCLR"}) {
        EXPECT_EQ(Vx_SetICCColorSpace(p.get(), int32_t(Be32(reinterpret_cast<const uint8_t*>(s)))), STATUS_OK) << s;
        EXPECT_EQ(Of(p->profileData + 16, 4), Of(s, 4));
    }
    for (const char* c : {"scnr", "prtr", "spac", "abst", "nmcl"})
        EXPECT_EQ(Vx_SetICCDeviceClass(p.get(), int32_t(Be32(reinterpret_cast<const uint8_t*>(c)))), STATUS_OK) << c;
}

TEST(Header, ByteHelpers) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (const auto& [n, value] : {std::pair{6, 0x03040506u}, {8, 0x05060708u}, {2, 0x0102u}, {9, 0u}, {0, 0u}})
        EXPECT_EQ(Vx_ClrIntIccGetBytes(bytes, n), value) << n;
    EXPECT_EQ(Vx_ClrIntIccGetBytes(nullptr, 4), 0u);
    uint8_t out[8] = {}, two[3] = {0xFF, 0xFF, 0xFF};
    EXPECT_EQ(Vx_ClrIntIccSetBytes(out, 0x0102030405060708ull, 8), STATUS_OK);
    EXPECT_EQ(Of(out, 8), Of(bytes, 8));
    EXPECT_EQ(Vx_ClrIntIccSetBytes(two, 0x0102030405060708ull, 2), STATUS_OK);
    EXPECT_EQ(Of(two, 3), (Bytes{7, 8, 0xFF}));
    for (int n : {9, 0}) EXPECT_EQ(Vx_ClrIntIccSetBytes(out, 1, n), ERR_INVALID_PARAMETER) << n;
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
