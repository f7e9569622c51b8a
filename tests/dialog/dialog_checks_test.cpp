// The dialog's answers that need no display: other kinds, the record
// checks, no display, no module. Run with DISPLAY and WAYLAND_DISPLAY unset.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "dialog_record.h"
#include "support/support.h"

namespace kt::test {
namespace {

TEST(DialogChecks, OtherKindsAnswerOkAtOnceWhateverTheRecord) {
    DialogRecord r;
    r.p.cmykOptions = nullptr;
    const auto before = r.Bytes();
    for (int kind : {0, 3, -1, 128}) {
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), STATUS_OK) << kind;
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, reinterpret_cast<ConversionParams*>(8)), STATUS_OK) << kind;
        EXPECT_EQ(Vx_ClrDlgA(kind, nullptr, nullptr, nullptr), STATUS_OK) << kind;
    }
    EXPECT_EQ(r.Bytes(), before);
}

TEST(DialogChecks, RecordChecksAnswerInvalidParameter) {
    MappedPages readOnly(1, MappedPages::Access::read);
    MappedPages tail(1, MappedPages::Access::readWrite);
    struct Case {
        const char* what;
        void (*spoil)(DialogRecord&, MappedPages& readOnly, MappedPages& tail);
    };
    const Case cases[] = {
        {"size 1625", [](DialogRecord& r, MappedPages&, MappedPages&) { r.p.structSize = 1625; }},
        {"size 0", [](DialogRecord& r, MappedPages&, MappedPages&) { r.p.structSize = 0; }},
        {"no CMYK record", [](DialogRecord& r, MappedPages&, MappedPages&) { r.p.cmykOptions = nullptr; }},
        {"no white point", [](DialogRecord& r, MappedPages&, MappedPages&) { r.p.iccOptions = nullptr; }},
        {"CMYK record read-only",
         [](DialogRecord& r, MappedPages& ro, MappedPages&) { r.p.cmykOptions = reinterpret_cast<CmykOptions*>(ro.data()); }},
        {"white point read-only",
         [](DialogRecord& r, MappedPages& ro, MappedPages&) { r.p.iccOptions = reinterpret_cast<IccOptions*>(ro.data()); }},
        {"white point past the end", [](DialogRecord& r, MappedPages&, MappedPages& t) {
             r.p.iccOptions = reinterpret_cast<IccOptions*>(t.end() - 8);
         }},
    };
    for (const Case& c : cases) {
        DialogRecord r;
        c.spoil(r, readOnly, tail);
        const auto before = r.Bytes();
        for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB})
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), ERR_INVALID_PARAMETER) << c.what;
        EXPECT_EQ(r.Bytes(), before) << c.what;
    }
}

// The record's extent follows its size field: a short-form record may end
// right before iccFlags, a long-form one may not.
TEST(DialogChecks, RecordExtentFollowsItsSizeField) {
    MappedPages pages(1, MappedPages::Access::readWrite);
    DialogRecord r;
    const std::size_t shortBytes = offsetof(ConversionParams, iccFlags);
    auto* p = reinterpret_cast<ConversionParams*>(pages.end() - shortBytes);
    std::memcpy(p, &r.p, shortBytes);
    p->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    EXPECT_EQ(Vx_ClrDlg(KTCLR_DLG_CMYK, nullptr, nullptr, p), ERR_INVALID_PARAMETER);
    p->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    EXPECT_EQ(Vx_ClrDlg(KTCLR_DLG_CMYK, nullptr, nullptr, p), KTCLR_DLG_UNAVAILABLE);
    MappedPages unreadable(1, MappedPages::Access::none);
    EXPECT_EQ(Vx_ClrDlg(KTCLR_DLG_LAB, nullptr, nullptr, reinterpret_cast<ConversionParams*>(unreadable.data())),
              ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrDlgA(KTCLR_DLG_LAB, nullptr, nullptr, reinterpret_cast<ConversionParamsA*>(unreadable.data())),
              ERR_INVALID_PARAMETER);
}

TEST(DialogChecks, WithoutDisplayTheDialogIsUnavailableAndNothingChanges) {
    ASSERT_EQ(std::getenv("DISPLAY"), nullptr) << "run without a display";
    DialogRecord r;
    const auto before = r.Bytes();
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB}) {
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), KTCLR_DLG_UNAVAILABLE);
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), KTCLR_DLG_UNAVAILABLE);
    }
    EXPECT_EQ(r.Bytes(), before);
    ConversionParamsA a{};
    a.cmykOptions = &r.cmyk;
    a.iccOptions = &r.icc;
    std::strcpy(a.srcProfilePath, "/narrow.icm");
    EXPECT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &a), KTCLR_DLG_UNAVAILABLE);
    EXPECT_STREQ(a.srcProfilePath, "/narrow.icm");
}

// A copy of the library in a folder without ktclr-modules finds no module.
TEST(DialogChecks, WithoutTheModuleTheDialogIsUnavailable) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("ktclr-no-module-" + std::to_string(getpid()));
    fs::create_directories(dir);
    const fs::path copy = dir / "libktclr.so";
    fs::copy_file(fs::canonical(KTCLR_LIBRARY), copy, fs::copy_options::overwrite_existing);
    void* lib = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    auto dlg = reinterpret_cast<decltype(&Vx_ClrDlg)>(dlsym(lib, "Vx_ClrDlg"));
    ASSERT_NE(dlg, nullptr);
    DialogRecord r;
    const auto before = r.Bytes();
    EXPECT_EQ(dlg(KTCLR_DLG_LAB, nullptr, nullptr, &r.p), KTCLR_DLG_UNAVAILABLE);
    EXPECT_EQ(r.Bytes(), before);
    dlclose(lib);
    fs::remove_all(dir);
}

TEST(DialogChecks, SetResModuleKeepsAndReturnsItsArgument) {
    int anything = 0;
    EXPECT_EQ(SetResModule(&anything), &anything);
    EXPECT_EQ(SetResModule(nullptr), nullptr);
}

}  // namespace
}  // namespace kt::test
