// The settings dialogs. DialogChecks need no display and run with DISPLAY
// and WAYLAND_DISPLAY unset: other kinds, the record checks, no display, no
// module. DialogShown run on a display (Xvfb): what the dialogs show, what OK
// writes back, what Cancel, Escape and closing leave alone, the controls
// each method enables, the browse buttons' file choosers, the narrow twin.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

#include "dialog_driver.h"

namespace kt::test {
namespace {

// Other kinds answer STATUS_OK at once whatever the record; for the CMYK and
// CIELab dialogs the record checks answer ERR_INVALID_PARAMETER, then a
// good record or none KTCLR_DLG_UNAVAILABLE (no display). Each record ends
// at an unmapped page: a short-form one may end right before iccFlags, a
// long-form one may not. No answer changes the record. A copy of the
// library without its module answers KTCLR_DLG_UNAVAILABLE.
TEST(DialogChecks, RecordChecksThenNoDisplayOrNoModule) {
    ASSERT_EQ(std::getenv("DISPLAY"), nullptr) << "run without a display";
    using enum MappedPages::Access;
    MappedPages readOnly(1, read), tail(1, readWrite), page(1, readWrite);
    void* const unusable[] = {nullptr, readOnly.data(), tail.end() - 8};  // none, read-only, past the end
    // sizes 0 and 1625, bad CMYK and ICC options, no record bytes at all (unreadable), cut short with either
    // size, good
    const std::uint32_t sizes[] = {0, 1625, KTCLR_SIZEOF_CONVERSION_PARAMS_EX, KTCLR_SIZEOF_CONVERSION_PARAMS};
    for (int c = 0; c < 12; ++c) {
        DialogRecord r;
        if (c >= 2 && c < 5) r.p.cmykOptions = static_cast<CmykOptions*>(unusable[c - 2]);
        if (c >= 5 && c < 8) r.p.iccOptions = static_cast<IccOptions*>(unusable[c - 5]);
        const bool cut = c == 9 || c == 10;
        if (c < 2 || cut) r.p.structSize = sizes[c < 2 ? c : c - 7];
        const std::size_t n = cut ? offsetof(ConversionParams, iccFlags) : c == 8 ? 0 : sizeof r.p;
        auto* p = reinterpret_cast<ConversionParams*>(page.end() - n);
        std::memcpy(p, &r.p, n);
        const auto bytes = [&] { return r.Bytes() + std::string(reinterpret_cast<const char*>(p), n); };
        const auto before = bytes();
        for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB})
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, p), c < 10 ? ERR_INVALID_PARAMETER : KTCLR_DLG_UNAVAILABLE) << c;
        EXPECT_EQ(bytes(), before) << c;
    }
    for (int kind : {0, 3, -1, 128}) {  // other kinds do not read the record
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, reinterpret_cast<ConversionParams*>(8)), STATUS_OK) << kind;
        EXPECT_EQ(Vx_ClrDlgA(kind, nullptr, nullptr, nullptr), STATUS_OK) << kind;
    }
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB}) {  // no record; a narrow one that cannot be read
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), KTCLR_DLG_UNAVAILABLE);
        EXPECT_EQ(Vx_ClrDlgA(kind, nullptr, nullptr, reinterpret_cast<ConversionParamsA*>(page.end())),
                  ERR_INVALID_PARAMETER);
    }
    DialogRecord r;
    std::strcpy(r.narrow.srcProfilePath, "/narrow.icm");
    EXPECT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &r.narrow), KTCLR_DLG_UNAVAILABLE);
    EXPECT_STREQ(r.narrow.srcProfilePath, "/narrow.icm");
    // A copy of the library in a folder without ktclr-modules finds no module.
    ScratchDir dir;
    ASSERT_EQ(test::Run("cp -L " KTCLR_LIBRARY " " + dir.File("libktclr.so")), 0);
    void* lib = dlopen(dir.File("libktclr.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    const auto before = r.Bytes();
    EXPECT_EQ(reinterpret_cast<decltype(&Vx_ClrDlg)>(dlsym(lib, "Vx_ClrDlg"))(KTCLR_DLG_LAB, nullptr, nullptr, &r.p),
              KTCLR_DLG_UNAVAILABLE);
    EXPECT_EQ(r.Bytes(), before);
    dlclose(lib);
}

// The dialog shows its labels with their mnemonics, its lists' items and
// the record; a standard white point shows 0.0 and the custom one brings
// the custom point back. OK (Enter: the method list has the focus) writes
// every choice back (Written's words), not the prepare and emulation
// methods, and no GCR from the CIELab dialog; Cancel, Escape and closing the
// window change nothing.
TEST(DialogShown, WhatOkWritesAndCancelEscapeAndClosingLeave) {
    // kind, method and CMYK mask set (RGB the source: the CMYK profile is the destination), screenshot file,
    // title, texts, controls read and set, what they read, what OK writes
    const std::tuple<int, unsigned, unsigned, const char*, const char*, const char*, const char*, const char*,
                     const char*>
        cases[] = {
        {KTCLR_DLG_CMYK, METHOD_CUSTOM_ICC, KTCLR_DLG_FROM_RGB, KTCLR_SHOT "cmyk.png", "CMYK color settings",
         "...|...|...|BGR _Order|Built-in Settings|Built-in conversion, ICC profiling, Custom ICC Profiling, Built-in "
         "emulation tables, Custom emulation tables|Cancel|Conversion _Method|Custom ICC Profiles|D50, D55, D65, D75, "
         "D93, Custom (xyY) point|Emulation tables|Miscellaneous|OK|RGB _to CMYK|Y is always 1.0|_CMYK Profile|"
         "_Destination RGB table|_GCR|_RGB profile|_White point|_x|_y",
         "116 123 124 125 117 119 121 126 1001 1002 123=2 124 125 123=5 124=0.3457 126=420 1001=1 117=/p/cmyk.icm "
         "119=/p/F\xc3\xa4rg.icm 121=/t/rgb.tif",
         "2 5 0.312700 0.329000 /profiles/destination.icm /profiles/source.icm /tables/grid.tif 640 0 1 0.0 0.0",
         "4 7 3 1 0.345700 0.329000 420 7 /p/F\xc3\xa4rg.icm /p/cmyk.icm /t/rgb.tif"},
        {KTCLR_DLG_LAB, METHOD_ICC, 0, KTCLR_SHOT "lab.png", "CIELab color settings",
         "...|...|...|...|BGR _Order|Built-in Settings|Built-in conversion, ICC profiling, Custom ICC Profiling, "
         "Built-in emulation tables, Custom emulation tables|CIE_Lab To RGB|Cancel|Conversion _Method|Custom ICC "
         "Profiles|D50, D55, D65, D75, D93, Custom (xyY) point|Destination R_GB table|Destination _CIELab table|"
         "Emulation tables|Lab To RGB conversion|Miscellaneous|OK|RGB To Lab conversion|RGB _to LAB|Y is always 1.0|"
         "_Destination output profile|_RGB To CIELab|_Source input profile|_White point|_x|_y",
         "135 130 132 116=4 123=4 134=1 130=/t/lab.tif 117=/p/in.icm 1001=1 1002=1", "1 '' /tables/grid.tif",
         "16 7 3 93 0.000000 0.000000 640 6 /p/in.icm /profiles/destination.icm /t/lab.tif"},
    };
    for (const auto& [kind, method, mask, shot, title, texts, words, read, written] : cases) {
        for (const char end : {'o', 'c', 'e', 'x'}) {  // OK, Cancel, Escape, the window closed
            DialogRecord r(method, mask);
            const std::string before = r.Bytes();
            Script({[&](GtkWidget* d) {
                GdkWindow* w = gtk_widget_get_window(d);  // the window as README's picture
                g_autoptr(GdkPixbuf) png =
                    gdk_pixbuf_get_from_window(w, 0, 0, gdk_window_get_width(w), gdk_window_get_height(w));
                EXPECT_TRUE(png && gdk_pixbuf_save(png, shot, "png", nullptr, nullptr));
                EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(d)), title);
                EXPECT_EQ(Texts(d), texts);
                EXPECT_EQ(Controls(d, words), read);
                if (end == 'o' || end == 'e') {  // by xdotool (XTest), focused first: no window manager under Xvfb
                    gdk_window_focus(gtk_widget_get_window(d), GDK_CURRENT_TIME);
                    Pump(50);
                    EXPECT_EQ(test::Run(std::string("xdotool key ") + (end == 'o' ? "Return" : "Escape")), 0);
                }
                if (end == 'c') Controls(d, "2");
                if (end == 'x') gtk_window_close(GTK_WINDOW(d));
            }});
            EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, &r.p), end == 'o' ? STATUS_OK : 0) << end;
            EXPECT_EQ(end == 'o' ? r.Written() : r.Bytes(), end == 'o' ? written : before) << end;
        }
    }
}

// Without a record the dialog opens on its defaults; then, row by row, the
// controls read and the enabled ones after the choices (method, white point,
// CIELab table; x and y take 8 characters, GCR 0 to 1000). Each browse
// button opens a file chooser with its title and filter, and the file chosen
// there lands in the button's edit. OK writes nothing.
TEST(DialogShown, DefaultsEnabledControlsAndBrowseButtons) {
    const std::tuple<int, const char*, const char*> cases[] = {  // kind, controls read and set, read|enabled
        {1, "116 123 124 117 126 1001 1002", "0 0 0.0 '' 175 0 0|1 2 116 123 126 1001 1002"},
        {1, "123=5 126=2000 126 124=0.123456789 124", "1000 0.123456|1 2 116 123 124 125 126 1001 1002"},
        {1, "116=1 123=2", "|1 2 116 123 126 1001 1002"},
        {1, "116=2 123=5", "|1 2 116 117 118 119 120 123 124 125 126 1001 1002"},
        {1, "116=3", "|1 2 116 126 1001 1002"},
        {1, "116=4 123=0", "|1 2 116 121 122 126 1001 1002"},
        {2, "116 123 124 117 134", "0 0 0.0 '' 1|1 2 116 123 1001 1002"},
        {2, "123=5", "|1 2 116 123 124 125 1001 1002"},
        {2, "116=2 123=0", "|1 2 116 117 118 119 120 123 1001 1002"},
        {2, "116=3", "|1 2 116 1001 1002"},
        {2, "116=4 134=1", "|1 2 116 130 131 134 135 1001 1002"},
        {2, "116=4 123=5 135=1", "|1 2 116 132 133 134 135 1001 1002"},
    };
    const std::tuple<int, const char*, const char*, const char*, const char*> browse[] = {  // kind, button, edit, title, filter
        {1, "118", "117", "Open CMYK Profile", "ICC Files (*.ICM)"},
        {1, "120", "119", "Open RGB Profile", "ICC Files (*.ICM)"},
        {1, "122", "121", "Open destination RGB image", "TIFF Files (*.TIF)"},
        {2, "118", "117", "Open RGB Profile", "ICC Files (*.ICM)"},
        {2, "120", "119", "Open LAB Profile", "ICC Files (*.ICM)"},
        {2, "131", "130", "Open destination Lab image", "TIFF Files (*.TIF)"},
        {2, "133", "132", "Open destination RGB image", "TIFF Files (*.TIF)"},
    };
    ScratchDir dir;
    const std::string file = dir.File("p.icm");
    WriteFile(file, "x");
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB}) {
        Script({[&](GtkWidget* d) {
            for (const auto& [k, words, expected] : cases) {
                if (k != kind) continue;
                EXPECT_EQ(Controls(d, std::string(words) + " |"), expected) << words;  // the choices, what they enable
            }
            for (const auto& [k, button, edit, title, filter] : browse) {
                if (k != kind) continue;
                g_steps.push_back([&, title = title, filter = filter](GtkWidget* c) {  // the chooser's step
                    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(c)), title);
                    EXPECT_STREQ(gtk_file_filter_get_name(gtk_file_chooser_get_filter(GTK_FILE_CHOOSER(c))), filter);
                    gtk_file_chooser_select_filename(GTK_FILE_CHOOSER(c), file.c_str());
                    g_autofree gchar* uri = nullptr;  // the folder loads in the background
                    for (int i = 0; i < 200 && !uri; ++i, Pump(10)) uri = gtk_file_chooser_get_uri(GTK_FILE_CHOOSER(c));
                    gtk_dialog_response(GTK_DIALOG(c), GTK_RESPONSE_ACCEPT);
                });
                EXPECT_EQ(Controls(d, std::string(button) + " " + edit), file) << button;
            }
            Controls(d, "1");
        }});
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), STATUS_OK);
    }
}

TEST(DialogShown, NarrowTwinCopiesTheChoicesBack) {
    DialogRecord r;
    std::strcpy(r.narrow.emulationTablePath, "/narrow/grid.tif");
    Script({[](GtkWidget* d) { EXPECT_EQ(Controls(d, "121 116=3 119=/narrow/rgb.icm 1"), "/narrow/grid.tif"); }});
    ASSERT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &r.narrow), STATUS_OK);
    EXPECT_EQ(r.narrow.method, unsigned(METHOD_BUILTIN_EMULATION));
    EXPECT_STREQ(r.narrow.dstProfilePath, "/narrow/rgb.icm");
    EXPECT_STREQ(r.narrow.emulationTablePath, "/narrow/grid.tif");
}

}  // namespace
}  // namespace kt::test
