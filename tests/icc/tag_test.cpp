#include <gtest/gtest.h>

#include <vector>

#include "icc_test_support.h"

namespace {

using namespace icctest;

struct TagProfile : Profile {
    TagProfile() { Vx_InitICCHeader(get()); }
};

TEST(Tags, AppendPlacesElementsAndMovesOffsets) {
    TagProfile p;
    ICCXYZNumber white{0xF6D6, 0x10000, 0xD32D};
    ICCXYZType t = XyzOf(&white, 1);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(p->tagCount, 1);
    EXPECT_EQ(p->tagList[0].signature, Sig("rXYZ"));
    EXPECT_EQ(p->tagList[0].offset, 144u);
    EXPECT_EQ(p->tagList[0].size, 20u);
    EXPECT_EQ(p->header->size, 164u);
    EXPECT_EQ(p->tagDataSize, 20u);
    ASSERT_EQ(p->profileSize, 164u);
    const uint8_t element[20] = {'X', 'Y', 'Z', ' ', 0, 0, 0, 0, 0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D};
    EXPECT_EQ(std::vector<uint8_t>(p->profileData + 144, p->profileData + 164),
              std::vector<uint8_t>(element, element + 20));
    EXPECT_EQ(Be32(p->profileData + 128), 1u);

    // A raw element of 13 bytes carries 3 zero pad bytes; its row counts 13.
    uint8_t five[5] = {1, 2, 3, 4, 5};
    ICCRawTagType raw = RawOf(five, 5, Sig("zzzz"));
    raw.reservedWord = 0xFFFFFFFF;  // not carried over
    const std::vector<uint8_t> before = p.Image();
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &raw, Sig("gXYZ"), Sig("abcd")), WARN_UNKNOWN_TAG_TYPE);
    EXPECT_EQ(p.Image(), before);  // the warning returns before the rebuild
    ASSERT_EQ(p->tagCount, 2);
    EXPECT_EQ(p->tagList[0].offset, 156u);
    EXPECT_EQ(p->tagList[1].offset, 176u);  // 132 + 24 + 20
    EXPECT_EQ(p->tagList[1].size, 13u);
    EXPECT_EQ(p->tagDataSize, 36u);
    EXPECT_EQ(p->header->size, 132u + 24u + 36u);
    const uint8_t rawElement[16] = {'a', 'b', 'c', 'd', 0, 0, 0, 0, 1, 2, 3, 4, 5, 0, 0, 0};
    EXPECT_EQ(std::vector<uint8_t>(p->tagData + 20, p->tagData + 36), std::vector<uint8_t>(rawElement, rawElement + 16));
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    EXPECT_EQ(p->profileSize, 192u);
    EXPECT_EQ(Be32(p->profileData + 132 + 12 + 4), 176u);

    EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("gXYZ")), Sig("abcd"));
    EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("rXYZ")), Sig("XYZ "));
    EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("bXYZ")), 0u);
    EXPECT_EQ(Vx_GetICCTagTypeSig(nullptr, Sig("rXYZ")), 0u);

    ICCRawTagType back{};
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &back, Sig("gXYZ")), WARN_UNKNOWN_TAG_TYPE);
    EXPECT_EQ(back.typeSignature, Sig("abcd"));
    EXPECT_EQ(back.reservedWord, 0u);
    ASSERT_EQ(back.byteCount, 5u);
    EXPECT_EQ(std::vector<uint8_t>(back.bytes, back.bytes + 5), std::vector<uint8_t>(five, five + 5));
    Vx_FreeICCTagType(&back, Sig("abcd"));
    EXPECT_EQ(back.bytes, nullptr);
    Vx_FreeICCTagType(&back, Sig("abcd"));
    Vx_FreeICCTagType(nullptr, Sig("abcd"));
}

TEST(Tags, StatusesFollowTagAndType) {
    TagProfile p;
    ICCXYZNumber v[2] = {{1, -2, 3}, {0x7FFFFFFF, static_cast<int32_t>(0x80000000u), 0}};
    ICCXYZType t = XyzOf(v, 2);
    uint8_t one[1] = {9};
    ICCRawTagType raw = RawOf(one, 1, 0);

    ASSERT_EQ(Vx_SetICCCreator(p.get(), 5), STATUS_OK);
    const std::vector<uint8_t> before = p.Image();
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("zzzz"), Sig("XYZ ")), WARN_UNKNOWN_TAG);
    EXPECT_EQ(p.Image(), before);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &raw, Sig("yyyy"), Sig("qqqq")), WARN_UNKNOWN_TAG_AND_TYPE);
    EXPECT_EQ(p.Image(), before);
    EXPECT_EQ(p->tagCount, 2);

    ICCXYZType got{};
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("zzzz")), WARN_UNKNOWN_TAG);
    EXPECT_EQ(got.signature, Sig("XYZ "));
    ASSERT_EQ(got.count, 2u);
    EXPECT_EQ(got.values[0].Y, -2);
    EXPECT_EQ(got.values[1].X, 0x7FFFFFFF);
    EXPECT_EQ(got.values[1].Y, static_cast<int32_t>(0x80000000u));
    Vx_FreeICCTagType(&got, Sig("XYZ "));
    EXPECT_EQ(got.values, nullptr);
    ICCRawTagType gotRaw{};
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &gotRaw, Sig("yyyy")), WARN_UNKNOWN_TAG_AND_TYPE);
    Vx_FreeICCTagType(&gotRaw, gotRaw.typeSignature);

    // A known tag with a codec rebuilds.
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p->profileSize, p->header->size);

    EXPECT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("bkpt")), ERR_INVALID_TAG);
    EXPECT_EQ(Vx_GetICCTagData(nullptr, &got, Sig("wtpt")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_GetICCTagData(p.get(), nullptr, Sig("wtpt")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCTagData(nullptr, &t, Sig("wtpt"), Sig("XYZ ")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), nullptr, Sig("wtpt"), Sig("XYZ ")), ERR_INVALID_PARAMETER);
    ICCXYZType noValues = XyzOf(nullptr, 1);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &noValues, Sig("wtpt"), Sig("XYZ ")), ERR_INVALID_PARAMETER);
    ICCRawTagType noBytes = RawOf(nullptr, 0, 0);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &noBytes, Sig("desc"), Sig("desc")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(p->tagCount, 3);

    Profile empty;
    EXPECT_EQ(Vx_GetICCTagData(empty.get(), &got, Sig("wtpt")), ERR_INVALID_TAG);
    EXPECT_EQ(Vx_CreateICCTagData(nullptr, &t, Sig("XYZ ")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_CreateICCTagData(&got, nullptr, Sig("XYZ ")), ERR_INVALID_PARAMETER);
}

TEST(Tags, DuplicatesKeepTheFirst) {
    TagProfile p;
    ICCXYZNumber a{1, 1, 1}, b{2, 2, 2};
    ICCXYZType ta = XyzOf(&a, 1), tb = XyzOf(&b, 1);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &ta, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &tb, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p->tagCount, 2);
    ICCXYZType got{};
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("rXYZ")), STATUS_OK);
    EXPECT_EQ(got.values[0].X, 1);
    Vx_FreeICCTagType(&got, Sig("XYZ "));
    // Deleting removes the first; the second is then found.
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr), STATUS_OK);
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("rXYZ")), STATUS_OK);
    EXPECT_EQ(got.values[0].X, 2);
    Vx_FreeICCTagType(&got, Sig("XYZ "));
}

TEST(Tags, DeleteShiftsRowsAndKeepsTheImageInStep) {
    TagProfile p;
    ICCXYZNumber a{1, 2, 3}, c{7, 8, 9};
    ICCXYZType ta = XyzOf(&a, 1), tc = XyzOf(&c, 1);
    uint8_t five[5] = {1, 2, 3, 4, 5};
    ICCRawTagType tb = RawOf(five, 5, 0);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &ta, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &tb, Sig("gTRC"), Sig("abcd")), WARN_UNKNOWN_TAG_TYPE);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &tc, Sig("bXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(p->tagList[2].offset, 204u);  // 132 + 36 + 20 + 16
    p->header->profileId[0] = 0x55;

    EXPECT_EQ(Vx_DeleteICCTag(nullptr, Sig("gTRC"), nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("kTRC"), nullptr), ERR_INVALID_TAG);
    // With a record to fill, a warning stops the deletion.
    ICCRawTagType out{};
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("gTRC"), &out), WARN_UNKNOWN_TAG_TYPE);
    Vx_FreeICCTagType(&out, Sig("abcd"));
    EXPECT_EQ(p->tagCount, 3);

    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("gTRC"), nullptr), STATUS_OK);
    ASSERT_EQ(p->tagCount, 2);
    EXPECT_EQ(p->tagList[0].signature, Sig("rXYZ"));
    EXPECT_EQ(p->tagList[0].offset, 156u);
    EXPECT_EQ(p->tagList[1].signature, Sig("bXYZ"));
    EXPECT_EQ(p->tagList[1].offset, 179u);  // only the 13 bytes go, not the pad
    EXPECT_EQ(p->tagDataSize, 43u);
    EXPECT_EQ(p->header->size, 199u);
    EXPECT_EQ(p->header->profileId[0], 0);
    EXPECT_EQ(p->profileSize, 199u);
    ICCXYZType got{};
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("bXYZ"), &got), STATUS_OK);
    ASSERT_EQ(got.count, 1u);
    EXPECT_EQ(got.values[0].Z, 9);
    Vx_FreeICCTagType(&got, Sig("XYZ "));

    // The last tag leaves a bare 132-byte image.
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr), STATUS_OK);
    EXPECT_EQ(p->tagCount, 0);
    EXPECT_EQ(p->tagList, nullptr);
    EXPECT_EQ(p->tagData, nullptr);
    EXPECT_EQ(p->tagDataSize, 0u);
    EXPECT_EQ(p->profileSize, 132u);
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr), ERR_INVALID_PARAMETER);
    // And the record takes tags again.
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &ta, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p->tagList[0].offset, 144u);
}

TEST(Tags, RowsOutsideTheElementAreaAreRefused) {
    TagProfile p;
    ICCXYZNumber v{1, 2, 3};
    ICCXYZType t = XyzOf(&v, 1);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
    ICCXYZType got{};
    const struct {
        uint32_t offset, size;
    } bad[] = {{143, 20}, {145, 20}, {144, 21}, {144, 7}, {0xFFFFFFFF, 20}, {144, 0xFFFFFFFF}, {0, 8}};
    for (const auto& b : bad) {
        p->tagList[0].offset = b.offset;
        p->tagList[0].size = b.size;
        EXPECT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("wtpt")), ERR_INVALID_TAG) << b.offset << " " << b.size;
        EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("wtpt"), &got), ERR_INVALID_TAG);
        if (b.size < 4 || b.offset < 144) {
            EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("wtpt")), 0u);
        }
    }
    p->tagList[0].offset = 144;
    p->tagList[0].size = 8;  // an empty array is fine
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("wtpt")), STATUS_OK);
    EXPECT_EQ(got.count, 0u);
    Vx_FreeICCTagType(&got, Sig("XYZ "));
}

}  // namespace
