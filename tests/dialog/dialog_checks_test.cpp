// The dialog's answers that need no display: other kinds, the record
// checks, no display, no module. Run with DISPLAY and WAYLAND_DISPLAY unset.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "dialog_driver.h"

namespace kt::test {
namespace {

// Other kinds answer STATUS_OK at once whatever the record; for the CMYK and
// CIELab dialogs the record checks answer ERR_INVALID_PARAMETER, then a
// good record or none KTCLR_DLG_UNAVAILABLE (no display). No answer changes
// the record.
TEST(DialogChecks, RecordChecksThenNoDisplay) {
    ASSERT_EQ(std::getenv("DISPLAY"), nullptr) << "run without a display";
    MappedPages readOnly(1, MappedPages::Access::read);
    MappedPages tail(1, MappedPages::Access::readWrite);
    void* const unusable[] = {nullptr, readOnly.data(), tail.end() - 8};  // none, read-only, past the end
    for (int c = 0; c < 9; ++c) {
        DialogRecord r;
        if (c < 2) r.p.structSize = c ? 1625 : 0;
        if (c >= 2 && c < 5) r.p.cmykOptions = static_cast<CmykOptions*>(unusable[c - 2]);
        if (c >= 5 && c < 8) r.p.iccOptions = static_cast<IccOptions*>(unusable[c - 5]);
        const auto before = r.Bytes();
        for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB})
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), c < 8 ? ERR_INVALID_PARAMETER : KTCLR_DLG_UNAVAILABLE) << c;
        for (int kind : {0, 3, -1, 128}) {
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), STATUS_OK) << kind;
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, reinterpret_cast<ConversionParams*>(8)), STATUS_OK) << kind;
            EXPECT_EQ(Vx_ClrDlgA(kind, nullptr, nullptr, nullptr), STATUS_OK) << kind;
        }
        EXPECT_EQ(r.Bytes(), before) << c;
    }
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB})
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), KTCLR_DLG_UNAVAILABLE);
    DialogRecord r;
    ConversionParamsA a{};
    a.cmykOptions = &r.cmyk;
    a.iccOptions = &r.icc;
    std::strcpy(a.srcProfilePath, "/narrow.icm");
    EXPECT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &a), KTCLR_DLG_UNAVAILABLE);
    EXPECT_STREQ(a.srcProfilePath, "/narrow.icm");
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

// A copy of the library in a folder without ktclr-modules finds no module;
// SetResModule keeps and returns its argument.
TEST(DialogChecks, WithoutTheModuleTheDialogIsUnavailable) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("ktclr-no-module-" + std::to_string(getpid()));
    fs::create_directories(dir);
    fs::copy_file(fs::canonical(KTCLR_LIBRARY), dir / "libktclr.so", fs::copy_options::overwrite_existing);
    void* lib = dlopen((dir / "libktclr.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    DialogRecord r;
    const auto before = r.Bytes();
    EXPECT_EQ(reinterpret_cast<decltype(&Vx_ClrDlg)>(dlsym(lib, "Vx_ClrDlg"))(KTCLR_DLG_LAB, nullptr, nullptr, &r.p),
              KTCLR_DLG_UNAVAILABLE);
    EXPECT_EQ(r.Bytes(), before);
    dlclose(lib);
    fs::remove_all(dir);
    int anything = 0;
    EXPECT_EQ(SetResModule(&anything), &anything);
    EXPECT_EQ(SetResModule(nullptr), nullptr);
}

}  // namespace
}  // namespace kt::test
