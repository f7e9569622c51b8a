// Profile images and files: the statuses of writing and reading them, each
// against an image whose bytes are edited by hand.
#include <gtest/gtest.h>

#include <string>

#include "icc_test_support.h"

namespace {

using namespace icctest;

// A header and two tags (XYZ, and a type without a codec): 192 bytes.
Bytes SampleImage() {
    Profile p;
    Vx_InitICCHeader(p.get());
    Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("mntr")));
    ICCXYZNumber v{0xF6D6, 0x10000, 0xD32D};
    ICCXYZType t = XyzOf(&v, 1);
    Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ "));
    uint8_t text[6] = {'h', 'e', 'l', 'l', 'o', 0};
    ICCRawTagType raw = RawOf(text, 6, 0);
    Vx_SetICCTagData(p.get(), &raw, Sig("cprt"), Sig("desc"));
    Vx_GenerateICCPointer(p.get());
    return p.Image();
}

TEST(Serialize, GenerateChecksTheSize) {
    Profile p;
    EXPECT_EQ(Vx_GenerateICCPointer(nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_NULL_ARGUMENT);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    const Bytes image = p.Image();
    p->header->size = 200;
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(p.Image(), image);
    p->header->size = 120;
    p->tagCount = -1;  // a negative count cannot be made to match
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_ICC_SIZE_MISMATCH);
    p->tagCount = 0;
}

// Each row edits the sample image (a big-endian word at `at`, or the length
// passed) and gives the status and tag count the parse leaves.
TEST(Serialize, FillStatuses) {
    const Bytes image = SampleImage();
    ASSERT_EQ(image.size(), 192u);
    const struct {
        const char* what;
        uint32_t at, value, size;
        KtStatus expected;
        int32_t count;
    } cases[] = {
        {"as written", 0, 192, 192, STATUS_OK, 2},
        {"size beyond the bytes", 0, 193, 192, ERR_ICC_INVALID_PROFILE, 0},
        {"no room for the tag count", 0, 100, 131, ERR_ICC_INVALID_PROFILE, 0},
        {"a count of 0", 128, 0, 192, STATUS_OK, 0},
        {"a negative count ends the parse", 128, 0x80000000u, 192, STATUS_OK, int32_t(0x80000000u)},
        {"a count of -1", 128, 0xFFFFFFFFu, 192, STATUS_OK, -1},
        {"a directory past the image", 128, 6, 192, ERR_ICC_INVALID_PROFILE, 0},
        {"a directory of 2^31 - 1 rows", 128, 0x7FFFFFFF, 192, ERR_ICC_INVALID_PROFILE, 0},
        {"no bytes", 0, 192, 0, ERR_INVALID_PARAMETER, 0},
    };
    for (const auto& c : cases) {
        Bytes bytes = image;
        PutBe32(bytes.data() + c.at, c.value);
        Profile p;
        EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), c.size), c.expected) << c.what;
        EXPECT_EQ(p->tagCount, c.count) << c.what;
        EXPECT_EQ(p->header == nullptr, c.expected != STATUS_OK) << c.what;  // nothing left behind
        if (c.count < 1) {
            EXPECT_EQ(p->tagList, nullptr) << c.what;
        }
    }
    Profile p;
    EXPECT_EQ(Vx_FillICCProfileStructure(nullptr, image.data(), 10), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), nullptr, 10), ERR_INVALID_PARAMETER);
    // A failed parse keeps a header the record already had.
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), 191), ERR_ICC_INVALID_PROFILE);
    EXPECT_NE(p->header, nullptr);
    // The record's own image parses in place.
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), 192), STATUS_OK);
    Vx_ClrIntFreeTagList(p.get());
    uint8_t* own = p->profileData;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), own, p->profileSize), STATUS_OK);
    EXPECT_EQ(p->profileData, own);
    EXPECT_EQ(p->tagCount, 2);
}

TEST(Serialize, FileStatuses) {
    const Bytes image = SampleImage();
    const kt::test::ScratchDir dir;
    const std::string path = dir.File("p.icc");
    const std::u16string path16 = Wide(path);
    const char16_t* missing = u"/nonexistent-dir/x.icc";
    Profile p, back;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), 192), STATUS_OK);
    for (const auto& [status, expected] : {std::pair{Vx_GenerateICCFile(nullptr, path16.c_str()), ERR_INVALID_PARAMETER},
                                           {Vx_GenerateICCFile(p.get(), nullptr), ERR_INVALID_PARAMETER},
                                           {Vx_GenerateICCFile(p.get(), missing), ERR_FILE_CREATE},
                                           {Vx_FillICCProfileFromICCFile(nullptr, back.get()), ERR_INVALID_PARAMETER},
                                           {Vx_FillICCProfileFromICCFile(path16.c_str(), nullptr), ERR_INVALID_PARAMETER},
                                           {Vx_FillICCProfileFromICCFile(missing, back.get()), ERR_FILE_CREATE}})
        EXPECT_EQ(status, expected);
    ASSERT_EQ(Vx_GenerateICCFile(p.get(), path16.c_str()), STATUS_OK);
    ASSERT_EQ(Vx_FillICCProfileFromICCFile(path16.c_str(), back.get()), STATUS_OK);
    EXPECT_EQ(back.Image(), image);
    // Without an image the write fails after creating the file.
    Vx_ClrIntFreeICCData(p.get());
    EXPECT_EQ(Vx_GenerateICCFile(p.get(), path16.c_str()), ERR_FILE_WRITE);

    // Byte edits of the file: 'acsp', the version's major and minor digits,
    // the size word; a size below the length reads that many bytes only.
    const struct {
        std::vector<std::pair<uint32_t, uint8_t>> edits;
        KtStatus expected;
        size_t length = 192;
    } cases[] = {
        {{}, ERR_FILE_READ, 127},
        {{{36, 'b'}}, ERR_ICC_SIZE_MISMATCH},
        {{{8, 0}}, ERR_ICC_SIZE_MISMATCH},
        {{{8, 5}}, ERR_ICC_SIZE_MISMATCH},
        {{{8, 1}}, STATUS_OK},
        {{{9, 0x90}}, STATUS_OK},
        {{{9, 0x90}, {11, 1}}, ERR_ICC_SIZE_MISMATCH},
        {{{9, 0x80}, {11, 1}}, STATUS_OK},
        {{{0, 0}, {1, 0}, {2, 0}, {3, 0}}, ERR_ICC_SIZE_MISMATCH},
        {{{3, 193}}, ERR_ICC_SIZE_MISMATCH},
        {{{3, 132}, {131, 0}}, STATUS_OK},
    };
    for (const auto& c : cases) {
        Bytes bytes(image.begin(), image.begin() + c.length);
        for (const auto& [at, value] : c.edits) bytes[at] = value;
        kt::test::WriteFile(path, std::string(bytes.begin(), bytes.end()));
        Profile q;
        EXPECT_EQ(Vx_FillICCProfileFromICCFile(path16.c_str(), q.get()), c.expected) << testing::PrintToString(c.edits);
    }
}

}  // namespace
