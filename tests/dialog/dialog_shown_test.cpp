// The dialogs on a display (Xvfb): what OK writes back, what Cancel, Escape
// and closing leave alone, the controls each method enables and the file
// choosers of the browse buttons.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <tuple>

#include "dialog_driver.h"

namespace kt::test {
namespace {

// Shows the dialog of `kind` and runs `step` on it; the dialog's answer.
KtStatus Show(int kind, ConversionParams* p, Step step) {
    Script({std::move(step)});
    return Vx_ClrDlg(kind, nullptr, nullptr, p);
}

// The dialog shows the record (ids=values); OK writes every choice back
// (Written's words), not the prepare and emulation methods, and no GCR from
// the CIELab dialog. Choosing a standard white point, then the custom one
// again, brings the custom y back.
TEST(DialogShown, OkWritesEveryChoiceBack) {
    const std::tuple<int, const char*, const char*, const char*, const char*> cases[] = {  // kind, title, shown, set, written
        {KTCLR_DLG_CMYK, "CMYK color settings",
         "116 123 124 125 117 119 121 126 1001 1002=2 5 0.312700 0.329000 /profiles/destination.icm "
         "/profiles/source.icm /tables/grid.tif 640 0 1",
         "123=2 123=5 124=0.3457 126=420 1001=1 117=/p/cmyk.icm 119=/p/F\xc3\xa4rg.icm 121=/t/rgb.tif",
         "4 1 0.345700 0.329000 420 7 /p/F\xc3\xa4rg.icm /p/cmyk.icm /t/rgb.tif"},
        {KTCLR_DLG_LAB, "CIELab color settings", "135 130 132=1 '' /tables/grid.tif",
         "116=4 123=4 134=1 130=/t/lab.tif 117=/p/in.icm 1001=1 1002=1",
         "16 93 0.000000 0.000000 640 6 /p/in.icm /profiles/destination.icm /t/lab.tif"},
    };
    for (const auto& [kind, title, shown, set, written] : cases) {
        DialogRecord r;
        r.SetCustom(0.3127, 0.329);
        if (kind == KTCLR_DLG_CMYK) {
            r.p.method = METHOD_CUSTOM_ICC;
            r.cmyk.validMask = KTCLR_DLG_FROM_RGB;  // RGB is the source: the CMYK profile is the destination
        }
        ASSERT_EQ(Show(kind, &r.p, [&](GtkWidget* d) {
            Screenshot(d, std::string(KTCLR_SHOT_DIR "/dialog-") + (kind == KTCLR_DLG_CMYK ? "cmyk" : "lab") + ".png");
            EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(d)), title);
            const std::string ids = shown;
            EXPECT_EQ(Values(d, ids.substr(0, ids.find('='))), ids.substr(ids.find('=') + 1));
            Set(d, set);
            Key(d, GDK_KEY_Return);  // the method list has the focus: Enter is OK
        }), STATUS_OK);
        EXPECT_EQ(r.Written(), written);
        EXPECT_EQ(r.p.prepareMethods + r.p.emulationMethod, 7u + 3u);
    }
}

TEST(DialogShown, CancelEscapeAndClosingChangeNothing) {
    const std::pair<int, char> cases[] = {{KTCLR_DLG_CMYK, 'c'}, {KTCLR_DLG_CMYK, 'e'}, {KTCLR_DLG_LAB, 'e'},
                                          {KTCLR_DLG_LAB, 'x'}};  // Cancel, Escape, closed by the window
    for (const auto& [kind, end] : cases) {
        DialogRecord r;
        const auto before = r.Bytes();
        EXPECT_EQ(Show(kind, &r.p, [end = end](GtkWidget* d) {
                      Set(d, "116=4 1001=1 117=/changed.icm");
                      if (end == 'c') Press(d, "2");
                      if (end == 'e') Key(d, GDK_KEY_Escape);
                      if (end == 'x') gtk_window_close(GTK_WINDOW(d));
                  }),
                  0);
        EXPECT_EQ(r.Bytes(), before);
    }
}

// Without a record the dialog opens on its defaults (ids=values); then the
// controls each method (and white point, and CIELab table) enables; OK
// writes nothing.
TEST(DialogShown, DefaultsAndTheControlsEachMethodEnables) {
    const std::tuple<int, const char*, const char*> cases[] = {  // kind, choices, controls enabled
        {1, "116=0 123=0", "116 123 126 1001 1002"},
        {1, "116=0 123=5", "116 123 124 125 126 1001 1002"},
        {1, "116=1 123=2", "116 123 126 1001 1002"},
        {1, "116=2 123=5", "116 117 118 119 120 123 124 125 126 1001 1002"},
        {1, "116=3 123=5", "116 126 1001 1002"},
        {1, "116=4 123=0", "116 121 122 126 1001 1002"},
        {2, "116=0 123=5", "116 123 124 125 1001 1002"},
        {2, "116=2 123=0", "116 117 118 119 120 123 1001 1002"},
        {2, "116=3 123=0", "116 1001 1002"},
        {2, "116=4 123=0 134=1", "116 130 131 134 135 1001 1002"},
        {2, "116=4 123=5 135=1", "116 132 133 134 135 1001 1002"},
    };
    const char* all[] = {"", "116 117 118 119 120 121 122 123 124 125 126 1001 1002 1 2",
                         "116 117 118 119 120 130 131 132 133 134 135 123 124 125 1001 1002 1 2"};
    const char* defaults[] = {"", "116 123 124 117 126 1001 1002=0 0 0.0 '' 175 0 0", "116 123 124 117 134=0 0 0.0 '' 1"};
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB}) {
        EXPECT_EQ(Show(kind, nullptr, [&](GtkWidget* d) {
                      const std::string ids = defaults[kind];
                      EXPECT_EQ(Values(d, ids.substr(0, ids.find('='))), ids.substr(ids.find('=') + 1));
                      for (const auto& [k, choices, enabled] : cases) {
                          if (k != kind) continue;
                          Set(d, choices);
                          EXPECT_EQ(Enabled(d, all[kind]), enabled + std::string(" 1 2")) << choices;
                      }
                      if (kind == KTCLR_DLG_CMYK) {  // x and y take 8 characters, GCR 0 to 1000
                          double lo, hi;
                          gtk_spin_button_get_range(GTK_SPIN_BUTTON(Find(d, "126")), &lo, &hi);
                          EXPECT_TRUE(gtk_entry_get_max_length(GTK_ENTRY(Find(d, "124"))) == 8 && lo == 0 && hi == 1000);
                      }
                      Press(d, "1");
                  }),
                  STATUS_OK);
    }
}

bool Chosen(GtkFileChooser* files) {
    g_autofree gchar* uri = gtk_file_chooser_get_uri(files);
    return uri != nullptr;
}

// Each browse button opens a file chooser with its title and filter; the
// file chosen there lands in the button's edit.
TEST(DialogShown, BrowseButtonsOpenTheirFileChoosers) {
    const std::tuple<int, const char*, const char*, const char*, const char*> cases[] = {  // kind, button, edit, title, filter
        {1, "118", "117", "Open CMYK Profile", "ICC Files (*.ICM)"},
        {1, "120", "119", "Open RGB Profile", "ICC Files (*.ICM)"},
        {1, "122", "121", "Open destination RGB image", "TIFF Files (*.TIF)"},
        {2, "118", "117", "Open RGB Profile", "ICC Files (*.ICM)"},
        {2, "120", "119", "Open LAB Profile", "ICC Files (*.ICM)"},
        {2, "131", "130", "Open destination Lab image", "TIFF Files (*.TIF)"},
        {2, "133", "132", "Open destination RGB image", "TIFF Files (*.TIF)"},
    };
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("ktclr-dialog-" + std::to_string(getpid()) + ".icm");
    std::ofstream(file) << "x";
    for (const auto& [kind, button, edit, title, filter] : cases) {
        Script({[&](GtkWidget* d) {
                    Press(d, button);
                    EXPECT_EQ(Values(d, edit), file.string()) << button;
                    Press(d, "2");
                },
                [&](GtkWidget* chooser) {
                    auto* files = GTK_FILE_CHOOSER(chooser);
                    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(chooser)), title);
                    EXPECT_STREQ(gtk_file_filter_get_name(gtk_file_chooser_get_filter(files)), filter);
                    gtk_file_chooser_select_filename(files, file.c_str());
                    for (int i = 0; i < 200 && !Chosen(files); ++i) Pump(10);  // the folder loads in the background
                    gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
                }});
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), 0) << button;
    }
    std::filesystem::remove(file);
}

TEST(DialogShown, NarrowTwinCopiesTheChoicesBack) {
    DialogRecord r;
    ConversionParamsA a{};
    a.cmykOptions = &r.cmyk;
    a.iccOptions = &r.icc;
    std::strcpy(a.emulationTablePath, "/narrow/grid.tif");
    Script({[](GtkWidget* d) {
        EXPECT_EQ(Values(d, "121"), "/narrow/grid.tif");
        Set(d, "116=3 119=/narrow/rgb.icm");
        Press(d, "1");
    }});
    ASSERT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &a), STATUS_OK);
    EXPECT_EQ(a.method, unsigned(METHOD_BUILTIN_EMULATION));
    EXPECT_STREQ(a.dstProfilePath, "/narrow/rgb.icm");
    EXPECT_STREQ(a.emulationTablePath, "/narrow/grid.tif");
}

}  // namespace
}  // namespace kt::test
