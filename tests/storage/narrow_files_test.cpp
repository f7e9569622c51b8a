// The narrow twins of the profile file functions: a UTF-8 name with accents,
// CJK and a character beyond the BMP reaches the same file as its UTF-16
// form; a name the locale cannot decode fails with ERR_NO_MEMORY. (Each
// twin on an ASCII name, and its allocation failures: tests/alloc.)
#include "ktclr/narrow.h"
#include "storage_support.h"

namespace kt::test {
namespace {

struct Record {
    ICCProfileRecord r{KTCLR_SIZEOF_ICC_PROFILE_RECORD, 0, 0, nullptr, 0, nullptr, nullptr, nullptr};
    ~Record() { Vx_FreeICCProfile(&r); }
    std::string Bytes() const { return std::string(r.profileData, r.profileData + r.profileSize); }
};

TEST(NarrowFiles, Utf8NamesReachTheSameFiles) {
    ScopedLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.ok());
    ScratchDir dir;
    Record source, wide, narrow, out;
    ASSERT_EQ(Vx_FillICCProfileFromICCFile(Wide(kBuiltinDir + "rgb_display.icc").c_str(), &source.r), STATUS_OK);
    const std::string name = dir.File("caf\xC3\xA9 \xE8\x89\xB2\xF0\x9F\x8E\xA8"), jpg = name + ".jpg", backup = name + ".orig";
    WriteAll(jpg, Jpeg({}));
    EXPECT_EQ(Vx_GenerateICCFileA(&source.r, (name + ".icc").c_str()), STATUS_OK);
    EXPECT_EQ(Vx_FillICCProfileFromICCFile(Wide(name + ".icc").c_str(), &wide.r), STATUS_OK);
    EXPECT_EQ(wide.Bytes(), source.Bytes());
    const std::string original = ReadFile(jpg);
    EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 0);
    const Vx_SaveFileOptionsA options{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, backup.c_str()};
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &options), STATUS_OK);
    EXPECT_EQ(ReadFile(backup), original);
    EXPECT_EQ(Vx_LoadICCProfileA(jpg.c_str(), &narrow.r, nullptr), STATUS_OK);
    EXPECT_EQ(narrow.Bytes(), source.Bytes());
    EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 1);

    // A name that does not convert; none. (Each twin's conversion check is
    // pinned by its allocation failures in tests/alloc.)
    const std::string bad = dir.File("bad\xFF.icc");
    EXPECT_EQ(Vx_LoadICCProfileA(bad.c_str(), &out.r, nullptr), ERR_NO_MEMORY);
    EXPECT_EQ(Vx_HasICCProfileA(nullptr, nullptr), 0);
    EXPECT_EQ(Vx_GenerateICCFileA(&source.r, nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_GenerateICCFileA(nullptr, jpg.c_str()), ERR_INVALID_PARAMETER);
    // The save options: unreadable, a backup name that does not convert, a
    // record of another size (its name pointer unread; the save judges it).
    MappedPages none(1, MappedPages::Access::none);
    const Vx_SaveFileOptionsA badBackup{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, bad.c_str()};
    const Vx_SaveFileOptionsA shortRecord{8, 0, reinterpret_cast<const char*>(none.data())};
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, reinterpret_cast<const Vx_SaveFileOptionsA*>(none.data())),
              ERR_BAD_POINTER);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &badBackup), ERR_NO_MEMORY);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &shortRecord), ERR_BAD_STRUCT_SIZE);
}

}  // namespace
}  // namespace kt::test
