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
    void* const unusable[] = {nullptr, readOnly.data(), tail.end() - 8};  // none, read-only, past the end
    for (int c = 0; c < 8; ++c) {
        DialogRecord r;
        if (c < 2) r.p.structSize = c ? 1625 : 0;
        if (c >= 2 && c < 5) r.p.cmykOptions = static_cast<CmykOptions*>(unusable[c - 2]);
        if (c >= 5) r.p.iccOptions = static_cast<IccOptions*>(unusable[c - 5]);
        const auto before = r.Bytes();
        for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB})
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), ERR_INVALID_PARAMETER) << c;
        EXPECT_EQ(r.Bytes(), before) << c;
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
