// The tag directory: where set places elements, the statuses by tag and
// type, duplicates, deletion and rows that point outside the elements.
// Offsets and sizes are worked out by hand (header 132, rows of 12 bytes,
// elements padded to 4); the Little CMS witness reads a profile of every
// type set here.
#include <gtest/gtest.h>

#include "icc_test_support.h"

namespace {

using namespace icctest;

struct TagProfile : Profile {
    ICCXYZNumber v[2] = {{1, 2, 3}, {7, 8, 9}};
    uint8_t five[5] = {1, 2, 3, 4, 5};
    ICCXYZType a = XyzOf(v, 1), c = XyzOf(v + 1, 1);
    ICCRawTagType raw = RawOf(five, 5, 0);
    TagProfile() { Vx_InitICCHeader(get()); }
    std::vector<uint32_t> Rows() const {
        std::vector<uint32_t> out;
        for (int32_t i = 0; i < r.tagCount; ++i) out.insert(out.end(), {r.tagList[i].signature, r.tagList[i].offset, r.tagList[i].size});
        return out;
    }
};

TEST(Tags, SetPlacesElementsAndStatusesFollowTagAndType) {
    TagProfile p;
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.a, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p.Rows(), (std::vector<uint32_t>{Sig("rXYZ"), 144, 20}));
    EXPECT_EQ(p.Image(), Cat({Be32s({164}), Bytes(4), {4, 0x20, 0, 0}, Bytes(24), {'a', 'c', 's', 'p'}, Bytes(28),
                              Be32s({0xF6D6, 0x10000, 0xD32D}), Bytes(48), Be32s({1, Sig("rXYZ"), 144, 20}),
                              Head("XYZ "), Be32s({1, 2, 3})}));

    // An unknown type is kept as its bytes, padded to 4 but counted 13, its
    // reserved word not carried over; the warning returns before the image
    // is rebuilt. Unknown tags warn likewise.
    const Bytes before = p.Image();
    p.raw.reservedWord = 0xFFFFFFFF;
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &p.raw, Sig("gXYZ"), Sig("abcd")), WARN_UNKNOWN_TAG_TYPE);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &p.c, Sig("zzzz"), Sig("XYZ ")), WARN_UNKNOWN_TAG);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), &p.raw, Sig("yyyy"), Sig("qqqq")), WARN_UNKNOWN_TAG_AND_TYPE);
    EXPECT_EQ(p.Image(), before);
    EXPECT_EQ(p.Rows(), (std::vector<uint32_t>{Sig("rXYZ"), 180, 20, Sig("gXYZ"), 200, 13, Sig("zzzz"), 216, 20,
                                               Sig("yyyy"), 236, 13}));
    EXPECT_EQ(Of(p->tagData + 20, 16), Cat({Head("abcd"), {1, 2, 3, 4, 5, 0, 0, 0}}));
    EXPECT_EQ(p->header->size, 252u);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    EXPECT_EQ(p->profileSize, 252u);

    for (const auto& [tag, type] : {std::pair{Sig("gXYZ"), Sig("abcd")}, {Sig("rXYZ"), Sig("XYZ ")}, {Sig("bXYZ"), 0u}})
        EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), tag), type);
    EXPECT_EQ(Vx_GetICCTagTypeSig(nullptr, Sig("rXYZ")), 0u);
    ICCRawTagType back{};
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &back, Sig("gXYZ")), WARN_UNKNOWN_TAG_TYPE);
    EXPECT_EQ((std::pair{back.typeSignature, back.reservedWord}), (std::pair{Sig("abcd"), 0u}));
    EXPECT_EQ(Of(back.bytes, back.byteCount), Of(p.five, 5));
    Vx_FreeICCTagType(&back, Sig("abcd"));
    EXPECT_EQ(back.bytes, nullptr);
    Vx_FreeICCTagType(&back, Sig("abcd"));
    Vx_FreeICCTagType(nullptr, Sig("abcd"));
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &back, Sig("yyyy")), WARN_UNKNOWN_TAG_AND_TYPE);
    Vx_FreeICCTagType(&back, back.typeSignature);
    ICCXYZType got{};
    EXPECT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("zzzz")), WARN_UNKNOWN_TAG);
    Vx_FreeICCTagType(&got, Sig("XYZ "));

    const struct {
        ICCProfileRecord* r;
        void* out;
        uint32_t tag;
        KtStatus status;
    } gets[] = {{p.get(), &got, Sig("bkpt"), ERR_INVALID_TAG}, {nullptr, &got, Sig("rXYZ"), ERR_INVALID_PARAMETER},
                {p.get(), nullptr, Sig("rXYZ"), ERR_INVALID_PARAMETER}};
    for (const auto& g : gets) EXPECT_EQ(Vx_GetICCTagData(g.r, g.out, g.tag), g.status) << g.tag;
    EXPECT_EQ(Vx_SetICCTagData(nullptr, &p.a, Sig("wtpt"), Sig("XYZ ")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SetICCTagData(p.get(), nullptr, Sig("wtpt"), Sig("XYZ ")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_CreateICCTagData(nullptr, &p.a, Sig("XYZ ")), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_CreateICCTagData(&got, nullptr, Sig("XYZ ")), ERR_INVALID_PARAMETER);
    Profile empty;
    EXPECT_EQ(Vx_GetICCTagData(empty.get(), &got, Sig("wtpt")), ERR_INVALID_TAG);
}

TEST(Tags, DuplicatesKeepTheFirst) {
    TagProfile p;
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.a, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.c, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p->tagCount, 2);
    // Get finds the first; deleting removes the first, then the second is found.
    for (int32_t x : {1, 7}) {
        ICCXYZType got{};
        ASSERT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("rXYZ")), STATUS_OK);
        EXPECT_EQ(got.values[0].X, x);
        Vx_FreeICCTagType(&got, Sig("XYZ "));
        Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr);
    }
}

TEST(Tags, DeleteShiftsRowsAndKeepsTheImageInStep) {
    TagProfile p;
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.a, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.raw, Sig("gTRC"), Sig("abcd")), WARN_UNKNOWN_TAG_TYPE);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.c, Sig("bXYZ"), Sig("XYZ ")), STATUS_OK);
    p->header->profileId[0] = 0x55;

    EXPECT_EQ(Vx_DeleteICCTag(nullptr, Sig("gTRC"), nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("kTRC"), nullptr), ERR_INVALID_TAG);
    // With a record to fill, a warning stops the deletion.
    ICCRawTagType out{};
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("gTRC"), &out), WARN_UNKNOWN_TAG_TYPE);
    Vx_FreeICCTagType(&out, Sig("abcd"));
    EXPECT_EQ(p->tagCount, 3);

    // Only the 13 bytes go, not the pad; the ID is reset.
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("gTRC"), nullptr), STATUS_OK);
    EXPECT_EQ(p.Rows(), (std::vector<uint32_t>{Sig("rXYZ"), 156, 20, Sig("bXYZ"), 179, 20}));
    EXPECT_EQ(p->tagDataSize, 43u);
    EXPECT_EQ(p->header->size, 199u);
    EXPECT_EQ(p->header->profileId[0], 0);
    EXPECT_EQ(p->profileSize, 199u);
    ICCXYZType got{};
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("bXYZ"), &got), STATUS_OK);
    ASSERT_EQ(got.count, 1u);
    EXPECT_EQ(got.values[0].Z, 9);
    Vx_FreeICCTagType(&got, Sig("XYZ "));

    // The last tag leaves a bare 132-byte image, and the record takes tags again.
    ASSERT_EQ(Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr), STATUS_OK);
    EXPECT_EQ(p->tagList, nullptr);
    EXPECT_EQ(p->tagData, nullptr);
    EXPECT_EQ(p->tagDataSize, 0u);
    EXPECT_EQ(p->profileSize, 132u);
    EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("rXYZ"), nullptr), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.a, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    EXPECT_EQ(p.Rows(), (std::vector<uint32_t>{Sig("rXYZ"), 144, 20}));
}

TEST(Tags, RowsOutsideTheElementAreaAreRefused) {
    TagProfile p;
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &p.a, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
    ICCXYZType got{};
    for (const auto& [offset, size] : {std::pair{143u, 20u}, {145u, 20u}, {144u, 21u}, {144u, 7u}, {0xFFFFFFFFu, 20u},
                                       {144u, 0xFFFFFFFFu}, {0u, 8u}}) {
        p->tagList[0].offset = offset;
        p->tagList[0].size = size;
        EXPECT_EQ(Vx_GetICCTagData(p.get(), &got, Sig("wtpt")), ERR_INVALID_TAG) << offset << " " << size;
        EXPECT_EQ(Vx_DeleteICCTag(p.get(), Sig("wtpt"), &got), ERR_INVALID_TAG);
        if (size < 4 || offset < 144) {
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
