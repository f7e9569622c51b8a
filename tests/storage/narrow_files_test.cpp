// The narrow twins of the profile file functions: a UTF-8 name with accents
// and CJK reaches the same file as its UTF-16 form; names the locale cannot
// decode fail with ERR_NO_MEMORY. (Each twin on an ASCII name, and its
// allocation failures: tests/alloc.)
#include <functional>

#include "ktclr/narrow.h"
#include "storage_support.h"

namespace kt::test {
namespace {

struct Record {
    ICCProfileRecord r{KTCLR_SIZEOF_ICC_PROFILE_RECORD, 0, 0, nullptr, 0, nullptr, nullptr, nullptr};
    ~Record() { Vx_FreeICCProfile(&r); }
    std::string Bytes() const { return std::string(r.profileData, r.profileData + r.profileSize); }
};

TEST(NarrowFiles, Utf8NameReachesTheSameFile) {
    ScopedLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.ok());
    ScratchDir dir;
    Record source, wide, narrow;
    ASSERT_EQ(Vx_FillICCProfileFromICCFile(Wide(kBuiltinDir + "rgb_display.icc").c_str(), &source.r), STATUS_OK);
    const std::string name = dir.File("caf\xC3\xA9 \xE8\x89\xB2\xE5\xBD\xA9"), jpg = name + ".jpg", backup = name + ".orig";
    EXPECT_EQ(Vx_GenerateICCFileA(&source.r, (name + ".icc").c_str()), STATUS_OK);
    EXPECT_EQ(Vx_FillICCProfileFromICCFile(Wide(name + ".icc").c_str(), &wide.r), STATUS_OK);
    EXPECT_EQ(wide.Bytes(), source.Bytes());
    // Saved with a narrow backup name, then loaded and asked by narrow name.
    WriteFile(dir.File("base.ppm"), "P6 4 4 255\n" + std::string(48, '\x80'));
    Sh("cjpeg -outfile '" + jpg + "' '" + dir.File("base.ppm") + "'");
    const std::string original = ReadFile(jpg);
    EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 0);
    const Vx_SaveFileOptionsA options{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, backup.c_str()};
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &options), STATUS_OK);
    EXPECT_EQ(ReadFile(backup), original);
    EXPECT_EQ(Vx_LoadICCProfileA(jpg.c_str(), &narrow.r, nullptr), STATUS_OK);
    EXPECT_EQ(narrow.Bytes(), source.Bytes());
    EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 1);
}

// Names that do not convert and null names, per twin; then the options.
TEST(NarrowFiles, Statuses) {
    ScratchDir dir;
    Record source, out;
    ASSERT_EQ(Vx_FillICCProfileFromICCFile(Wide(kBuiltinDir + "rgb_display.icc").c_str(), &source.r), STATUS_OK);
    const std::string jpg = dir.Write("a.jpg", Jpeg({})), utf8 = dir.File("caf\xC3\xA9.icc"), bad = dir.File("bad\xFF.icc");
    using Call = std::function<KtStatus(const char*)>;
    const Call twins[] = {
        [&](const char* n) { return Vx_FillICCProfileFromICCFileA(n, &out.r); },
        [&](const char* n) { return Vx_LoadICCProfileA(n, &out.r, nullptr); },
        [&](const char* n) { return Vx_HasICCProfileA(n, nullptr); },
        [&](const char* n) { return Vx_GenerateICCFileA(&source.r, n); },
        [&](const char* n) { return Vx_SaveICCProfileA(n, &source.r, nullptr); },
    };
    const struct {
        const char* locale;
        const char* name;
        KtStatus fill, load, has, generate, save;
    } rows[] = {
        {"C.UTF-8", bad.c_str(), ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY},
        {"C", utf8.c_str(), ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY, ERR_NO_MEMORY},
        {"C.UTF-8", nullptr, ERR_INVALID_PARAMETER, ERR_INVALID_PARAMETER, 0, ERR_INVALID_PARAMETER,
         ERR_INVALID_PARAMETER},
        {"C.UTF-8", utf8.c_str(), ERR_FILE_CREATE, ERR_FILE_NOT_FOUND, 0, STATUS_OK, ERR_FORMAT_NOT_SUPPORTED},
    };
    for (const auto& r : rows) {
        ScopedLocale locale(r.locale);
        const KtStatus expected[] = {r.fill, r.load, r.has, r.generate, r.save};
        for (std::size_t i = 0; i < std::size(twins); ++i)
            EXPECT_EQ(twins[i](r.name), expected[i]) << r.locale << " row " << &r - rows << " twin " << i;
        Vx_FreeICCProfile(&out.r);
    }
    ScopedLocale locale("C.UTF-8");
    MappedPages none(1, MappedPages::Access::none);
    const auto* unreadable = reinterpret_cast<const Vx_SaveFileOptionsA*>(none.data());
    const Vx_SaveFileOptionsA badBackup{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, bad.c_str()};
    const Vx_SaveFileOptionsA shortRecord{8, 0, reinterpret_cast<const char*>(none.data())};
    EXPECT_EQ(Vx_GenerateICCFileA(nullptr, utf8.c_str()), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, unreadable), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &badBackup), ERR_NO_MEMORY);
    // A record of another size keeps its name pointer unread; the save judges the size.
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &shortRecord), ERR_BAD_STRUCT_SIZE);
}

}  // namespace
}  // namespace kt::test
