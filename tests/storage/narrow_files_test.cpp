// The narrow twins of the profile file functions: UTF-8 names with accents
// and CJK reach the same files as their UTF-16 forms; names the locale
// cannot decode fail with ERR_NO_MEMORY.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "ktclr/narrow.h"
#include "support/support.h"

namespace kt {
namespace {

using test::ScopedLocale;
using test::ScratchDir;

const std::string kProfile = std::string(KTCLR_TEST_SOURCE_DIR) + "/data/builtin/rgb_display.icc";

const KtChar16* W(const std::u16string& s) { return reinterpret_cast<const KtChar16*>(s.c_str()); }

// A record holding the bytes of a profile file.
struct Record {
    explicit Record(const std::string& path = "") {
        r.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
        if (!path.empty()) {
            EXPECT_EQ(Vx_FillICCProfileFromICCFile(W(test::Wide(path)), &r), STATUS_OK);
        }
    }
    ~Record() { Vx_FreeICCProfile(&r); }
    std::string Bytes() const { return std::string(r.profileData, r.profileData + r.profileSize); }
    ICCProfileRecord r{};
};

// A small JPEG without a profile, made by cjpeg.
std::string BaseJpeg(const ScratchDir& dir) {
    test::WriteFile(dir.File("base.ppm"), "P6 4 4 255\n" + std::string(48, '\x80'));
    EXPECT_EQ(test::Run("cjpeg -outfile '" + (dir.File("base.jpg")) + "' '" + (dir.File("base.ppm")) + "'"), 0);
    return test::ReadFile(dir.File("base.jpg"));
}

TEST(NarrowFiles, Utf8NamesReachTheSameFiles) {
    ScopedLocale locale("C.UTF-8");
    ASSERT_TRUE(locale.ok());
    ScratchDir dir;
    const Record source(kProfile);
    const std::string profile = source.Bytes();
    const std::string base = BaseJpeg(dir);
    const char* names[] = {"caf\xC3\xA9 r\xC3\xA9sum\xC3\xA9", "\xE8\x89\xB2\xE5\xBD\xA9\xE6\xBC\xA2", "plain"};
    for (const std::string name : names) {
        // Generate by narrow name, read back by wide name; and the reverse.
        const std::string icc = dir.File(name + ".icc"), icc2 = dir.File(name + "2.icc");
        EXPECT_EQ(Vx_GenerateICCFileA(const_cast<ICCProfileRecord*>(&source.r), icc.c_str()), STATUS_OK);
        EXPECT_EQ(Record(icc).Bytes(), profile);
        EXPECT_EQ(Vx_GenerateICCFile(const_cast<ICCProfileRecord*>(&source.r), W(test::Wide(icc2))), STATUS_OK);
        Record filled;
        EXPECT_EQ(Vx_FillICCProfileFromICCFileA(icc2.c_str(), &filled.r), STATUS_OK);
        EXPECT_EQ(filled.Bytes(), profile);

        // Save with a narrow backup name, load and ask by narrow name.
        const std::string jpg = dir.File(name + ".jpg"), backup = dir.File(name + ".orig.jpg");
        test::WriteFile(jpg, base);
        EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 0);
        const Vx_SaveFileOptionsA options{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, backup.c_str()};
        EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &options), STATUS_OK) << name;
        EXPECT_EQ(test::ReadFile(backup), base);
        Record loaded;
        EXPECT_EQ(Vx_LoadICCProfileA(jpg.c_str(), &loaded.r, nullptr), STATUS_OK);
        EXPECT_EQ(std::string(loaded.r.profileData, loaded.r.profileData + loaded.r.profileSize), profile);
        EXPECT_EQ(Vx_HasICCProfileA(jpg.c_str(), nullptr), 1);
    }
}

// Names that do not convert, null names and options, per twin.
TEST(NarrowFiles, Statuses) {
    ScratchDir dir;
    Record source(kProfile);
    BaseJpeg(dir);
    const std::string jpg = dir.File("base.jpg"), utf8 = dir.File("caf\xC3\xA9.icc"), bad = dir.File("bad\xFF.icc");
    test::MappedPages none(1, test::MappedPages::Access::none);
    const auto* unreadable = reinterpret_cast<const Vx_SaveFileOptionsA*>(none.data());
    const Vx_SaveFileOptionsA badBackup{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, bad.c_str()};
    const Vx_SaveFileOptionsA shortRecord{8, 0, reinterpret_cast<const char*>(none.data())};
    Record out;
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
    EXPECT_EQ(Vx_GenerateICCFileA(nullptr, utf8.c_str()), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, unreadable), ERR_BAD_POINTER);
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &badBackup), ERR_NO_MEMORY);
    // A record of another size keeps its name pointer unread; the save judges the size.
    EXPECT_EQ(Vx_SaveICCProfileA(jpg.c_str(), &source.r, &shortRecord), ERR_BAD_STRUCT_SIZE);
}

}  // namespace
}  // namespace kt
