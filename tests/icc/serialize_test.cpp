#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "icc_test_support.h"

namespace {

using namespace icctest;

// Whether a tag call filled its record (success or one of the warnings).
bool Filled(KtStatus st) { return st == STATUS_OK || (st <= WARN_UNKNOWN_TAG && st >= WARN_UNKNOWN_TAG_AND_TYPE); }

std::string TempPath(const char* name) { return ::testing::TempDir() + "ktclr_icc_" + name; }

void WriteFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream f(path, std::ios::binary);
    f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// A profile with a header and two tags, as an image.
std::vector<uint8_t> SampleImage() {
    Profile p;
    Vx_InitICCHeader(p.get());
    Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("mntr")));
    ICCXYZNumber v{0xF6D6, 0x10000, 0xD32D};
    ICCXYZType t = XyzOf(&v, 1);
    Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ "));
    uint8_t text[6] = {'h', 'e', 'l', 'l', 'o', 0};
    ICCRawTagType raw = RawOf(text, 6, 0);
    Vx_SetICCTagData(p.get(), &raw, Sig("cprt"), Sig("desc"));  // a type without a codec
    Vx_GenerateICCPointer(p.get());
    return p.Image();
}

TEST(Serialize, GenerateChecksTheSize) {
    Profile p;
    EXPECT_EQ(Vx_GenerateICCPointer(nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_NULL_ARGUMENT);
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    ASSERT_EQ(p->profileSize, 132u);
    EXPECT_EQ(Be32(p->profileData), 132u);
    EXPECT_EQ(Be32(p->profileData + 36), Sig("acsp"));

    const std::vector<uint8_t> image = p.Image();
    p->header->size = 200;
    p->profileSize = 7;
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(p->profileSize, 132u);
    EXPECT_EQ(p.Image(), image);

    // A negative count cannot be made to match.
    p->header->size = 120;
    p->tagCount = -1;
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), ERR_ICC_SIZE_MISMATCH);
    p->tagCount = 0;
}

TEST(Serialize, FillParsesWhatGenerateWrote) {
    const std::vector<uint8_t> image = SampleImage();
    ASSERT_EQ(image.size(), 132u + 24u + 20u + 16u);
    Profile p;
    EXPECT_EQ(Vx_FillICCProfileStructure(nullptr, image.data(), 10), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), nullptr, 10), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), 0), ERR_INVALID_PARAMETER);
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), static_cast<uint32_t>(image.size())), STATUS_OK);
    EXPECT_EQ(p->profileSize, image.size());
    EXPECT_NE(p->profileData, image.data());
    EXPECT_EQ(p->header->deviceClass, Sig("mntr"));
    EXPECT_EQ(p->header->version, 0x04200000u);
    EXPECT_EQ(p->header->illuminant.Z, 0xD32D);
    ASSERT_EQ(p->tagCount, 2);
    EXPECT_EQ(p->tagList[1].signature, Sig("cprt"));
    EXPECT_EQ(p->tagList[1].size, 14u);
    EXPECT_EQ(p->tagDataSize, 36u);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    EXPECT_EQ(p.Image(), image);

    // Parsing the record's own image in place.
    Vx_ClrIntFreeTagList(p.get());
    uint8_t* own = p->profileData;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), own, p->profileSize), STATUS_OK);
    EXPECT_EQ(p->profileData, own);
    EXPECT_EQ(p->tagCount, 2);
}

TEST(Serialize, FillEdgeCases) {
    std::vector<uint8_t> image = SampleImage();
    {
        // Size field beyond the bytes: refused, no header left behind.
        Profile p;
        std::vector<uint8_t> bytes(199, 0);
        PutBe32(bytes.data(), 200);
        EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), 199), ERR_ICC_INVALID_PROFILE);
        EXPECT_EQ(p->header, nullptr);
        EXPECT_EQ(p->profileData, nullptr);
        // An existing header is kept.
        Vx_InitICCHeader(p.get());
        EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), 199), ERR_ICC_INVALID_PROFILE);
        EXPECT_NE(p->header, nullptr);
        // Too short to hold a header and a tag count.
        PutBe32(bytes.data(), 100);
        EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), 131), ERR_ICC_INVALID_PROFILE);
    }
    {
        // The high half of the attributes is dropped.
        std::vector<uint8_t> bytes = image;
        const uint8_t attributes[8] = {0, 0, 0, 1, 0, 0, 0, 2};
        std::copy(attributes, attributes + 8, bytes.begin() + 56);
        Profile p;
        ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), static_cast<uint32_t>(bytes.size())), STATUS_OK);
        EXPECT_EQ(p->header->attributes, 2u);
    }
    for (uint32_t count : {0u, 0x80000000u, 0xFFFFFFFFu}) {
        // A count below 1 ends the parse successfully.
        std::vector<uint8_t> bytes(image.begin(), image.begin() + 132);
        PutBe32(bytes.data(), 132);
        PutBe32(bytes.data() + 128, count);
        Profile p;
        ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), 132), STATUS_OK);
        EXPECT_EQ(p->tagCount, static_cast<int32_t>(count));
        EXPECT_EQ(p->tagList, nullptr);
        EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("wtpt")), 0u);
    }
    for (uint32_t count : {6u, 1000u, 0x7FFFFFFFu}) {
        // A directory larger than the profile is refused before any allocation.
        std::vector<uint8_t> bytes = image;
        PutBe32(bytes.data() + 128, count);
        Profile p;
        EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), static_cast<uint32_t>(bytes.size())),
                  ERR_ICC_INVALID_PROFILE);
        EXPECT_EQ(p->tagCount, 0);
        EXPECT_EQ(p->header, nullptr);
    }
}

TEST(Serialize, FilesRoundTripAndAreValidated) {
    const std::vector<uint8_t> image = SampleImage();
    const std::u16string path = Utf16(TempPath("written.icc"));
    {
        Profile p;
        ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), static_cast<uint32_t>(image.size())), STATUS_OK);
        EXPECT_EQ(Vx_GenerateICCFile(nullptr, path.c_str()), ERR_INVALID_PARAMETER);
        EXPECT_EQ(Vx_GenerateICCFile(p.get(), nullptr), ERR_INVALID_PARAMETER);
        EXPECT_EQ(Vx_GenerateICCFile(p.get(), u"/nonexistent-dir/x.icc"), ERR_FILE_CREATE);
        ASSERT_EQ(Vx_GenerateICCFile(p.get(), path.c_str()), STATUS_OK);
    }
    {
        Profile p;
        EXPECT_EQ(Vx_FillICCProfileFromICCFile(nullptr, p.get()), ERR_INVALID_PARAMETER);
        EXPECT_EQ(Vx_FillICCProfileFromICCFile(path.c_str(), nullptr), ERR_INVALID_PARAMETER);
        EXPECT_EQ(Vx_FillICCProfileFromICCFile(u"/nonexistent-dir/x.icc", p.get()), ERR_FILE_CREATE);
        ASSERT_EQ(Vx_FillICCProfileFromICCFile(path.c_str(), p.get()), STATUS_OK);
        EXPECT_EQ(p.Image(), image);
        EXPECT_EQ(p->tagCount, 2);
        // Without an image the write fails after creating the file.
        Vx_ClrIntFreeICCData(p.get());
        EXPECT_EQ(Vx_GenerateICCFile(p.get(), path.c_str()), ERR_FILE_WRITE);
    }

    const std::string bad = TempPath("bad.icc");
    const std::u16string bad16 = Utf16(bad);
    auto fill = [&](const std::vector<uint8_t>& bytes) {
        WriteFile(bad, bytes);
        Profile p;
        return Vx_FillICCProfileFromICCFile(bad16.c_str(), p.get());
    };
    EXPECT_EQ(fill(std::vector<uint8_t>(image.begin(), image.begin() + 127)), ERR_FILE_READ);
    auto mutated = [&](std::size_t at, uint8_t value) {
        std::vector<uint8_t> b = image;
        b[at] = value;
        return fill(b);
    };
    EXPECT_EQ(mutated(36, 'b'), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(mutated(8, 0), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(mutated(8, 5), ERR_ICC_SIZE_MISMATCH);
    EXPECT_EQ(mutated(8, 1), STATUS_OK);
    EXPECT_EQ(mutated(9, 0x90), STATUS_OK);  // 4.9 with bytes 10, 11 zero
    {
        std::vector<uint8_t> b = image;
        b[9] = 0x90;
        b[11] = 1;
        EXPECT_EQ(fill(b), ERR_ICC_SIZE_MISMATCH);
        b[9] = 0x80;
        EXPECT_EQ(fill(b), STATUS_OK);
    }
    {
        std::vector<uint8_t> b = image;
        PutBe32(b.data(), 0);
        EXPECT_EQ(fill(b), ERR_ICC_SIZE_MISMATCH);
        PutBe32(b.data(), static_cast<uint32_t>(image.size() + 1));
        EXPECT_EQ(fill(b), ERR_ICC_SIZE_MISMATCH);
        // A size below the file's length reads that many bytes only.
        PutBe32(b.data(), 132);
        PutBe32(b.data() + 128, 0);
        EXPECT_EQ(fill(b), STATUS_OK);
    }
    std::remove(bad.c_str());
    std::remove(TempPath("written.icc").c_str());
}

// Damaged profiles: every byte of the header count and directory, and the
// size field, flipped in turn; nothing may be read outside the buffers.
TEST(Serialize, DamagedDirectoriesStayInsideTheBuffers) {
    const std::vector<uint8_t> image = SampleImage();
    const uint32_t tags[] = {Sig("wtpt"), Sig("cprt")};
    for (std::size_t at = 0; at < 132 + 24; ++at) {
        if (at >= 4 && at < 128) continue;
        for (uint8_t value : {uint8_t{0}, uint8_t{0x01}, uint8_t{0x80}, uint8_t{0xFF}}) {
            std::vector<uint8_t> bytes = image;
            bytes[at] = value;
            Profile p;
            const KtStatus st =
                Vx_FillICCProfileStructure(p.get(), bytes.data(), static_cast<uint32_t>(bytes.size()));
            if (st != STATUS_OK) continue;
            for (uint32_t tag : tags) {
                (void)Vx_GetICCTagTypeSig(p.get(), tag);
                ICCRawTagType any{};
                const KtStatus got = Vx_GetICCTagData(p.get(), &any, tag);
                if (Filled(got)) Vx_FreeICCTagType(&any, Vx_GetICCTagTypeSig(p.get(), tag));
            }
            (void)Vx_GenerateICCPointer(p.get());
            ICCRawTagType any{};
            const KtStatus deleted = Vx_DeleteICCTag(p.get(), tags[1], &any);
            if (Filled(deleted)) Vx_FreeICCTagType(&any, Sig("desc"));
            (void)Vx_DeleteICCTag(p.get(), tags[0], nullptr);
        }
    }
}

}  // namespace
