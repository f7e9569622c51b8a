// The dialogs on a display (Xvfb): what they show, what OK writes back,
// what Cancel, Escape and closing leave alone, the controls each method
// enables and the file choosers of the browse buttons.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dialog_driver.h"
#include "dialog_record.h"

namespace kt::test {
namespace {

using Strings = std::vector<std::string>;

// The selected list item, or 1 for a checked box or radio button.
int Active(GtkWidget* d, const char* id) {
    GtkWidget* w = Find(d, id);
    return GTK_IS_COMBO_BOX(w) ? gtk_combo_box_get_active(GTK_COMBO_BOX(w)) : gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(w));
}

TEST(DialogShown, CmykShowsTheRecordAndOkWritesEveryChoiceBack) {
    DialogRecord r;
    r.p.method = METHOD_CUSTOM_ICC;
    r.SetCustom(0.3127, 0.329);
    r.cmyk.validMask = KTCLR_DLG_FROM_RGB;  // RGB is the source: the CMYK profile is the destination
    Script({[](GtkWidget* d) {
        Screenshot(d, KTCLR_SHOT_DIR "/dialog-cmyk.png");
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(d)), "CMYK color settings");
        EXPECT_EQ(Items(d, "116"), (Strings{"Built-in conversion", "ICC profiling", "Custom ICC Profiling",
                                            "Built-in emulation tables", "Custom emulation tables"}));
        EXPECT_EQ(Items(d, "123"), (Strings{"D50", "D55", "D65", "D75", "D93", "Custom (xyY) point"}));
        EXPECT_EQ(Active(d, "116"), 2);
        EXPECT_EQ(Active(d, "123"), 5);
        EXPECT_EQ(Text(d, "124") + " " + Text(d, "125"), "0.312700 0.329000");
        EXPECT_EQ(gtk_entry_get_max_length(GTK_ENTRY(Find(d, "124"))), 8);
        EXPECT_EQ(Text(d, "117") + " " + Text(d, "119"), "/profiles/destination.icm /profiles/source.icm");
        double lo, hi;
        gtk_spin_button_get_range(GTK_SPIN_BUTTON(Find(d, "126")), &lo, &hi);
        EXPECT_EQ(lo, 0);
        EXPECT_EQ(hi, 1000);
        EXPECT_EQ(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(Find(d, "126"))), 640);
        EXPECT_FALSE(Active(d, "1001"));
        EXPECT_TRUE(Active(d, "1002"));
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(Find(d, "1001"))), "BGR _Order");
        Choose(d, "123", 2);  // a standard illuminant shows 0.0; the custom point comes back
        EXPECT_EQ(Text(d, "124"), "0.0");
        Choose(d, "123", 5);
        SetText(d, "124", "0.3457");
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(Find(d, "126")), 420);
        Choose(d, "1001", 1);
        SetText(d, "117", "/p/cmyk.icm");
        SetText(d, "119", "/p/F\xc3\xa4rg.icm");
        SetText(d, "121", "/t/rgb.tif");
        Key(d, GDK_KEY_Return);  // the method list has the focus: Enter is OK
    }});
    ASSERT_EQ(Vx_ClrDlg(KTCLR_DLG_CMYK, nullptr, nullptr, &r.p), STATUS_OK);
    EXPECT_EQ(r.p.method, unsigned(METHOD_CUSTOM_ICC));
    EXPECT_EQ(r.icc.values[0], KTCLR_WHITE_CUSTOM);
    EXPECT_EQ(r.X(), 0.3457);
    EXPECT_EQ(r.Y(), 0.329);
    EXPECT_EQ(r.cmyk.value, 420u);
    EXPECT_EQ(r.cmyk.validMask, 1u | KTCLR_DLG_BGR_ORDER | KTCLR_DLG_FROM_RGB);
    EXPECT_EQ(std::u16string(r.p.srcProfilePath), u"/p/F\u00e4rg.icm");
    EXPECT_EQ(std::u16string(r.p.dstProfilePath), u"/p/cmyk.icm");
    EXPECT_EQ(std::u16string(r.p.emulationTablePath), u"/t/rgb.tif");
    EXPECT_EQ(r.p.prepareMethods, 7u);  // not the dialog's
    EXPECT_EQ(r.p.emulationMethod, 3u);
}

TEST(DialogShown, LabOkWritesTheSelectedTableAndAStandardPoint) {
    DialogRecord r;
    r.SetCustom(0.31, 0.32);
    Script({[](GtkWidget* d) {
        Screenshot(d, KTCLR_SHOT_DIR "/dialog-lab.png");
        EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(d)), "CIELab color settings");
        EXPECT_TRUE(Active(d, "135"));
        EXPECT_EQ(Text(d, "130") + "|" + Text(d, "132"), "|/tables/grid.tif");
        Choose(d, "116", 4);
        Choose(d, "123", 4);
        Choose(d, "134", 1);
        SetText(d, "130", "/t/lab.tif");
        SetText(d, "117", "/p/in.icm");
        Choose(d, "1001", 1);
        Choose(d, "1002", 1);
        gtk_button_clicked(GTK_BUTTON(Find(d, "1")));
    }});
    ASSERT_EQ(Vx_ClrDlg(KTCLR_DLG_LAB, nullptr, nullptr, &r.p), STATUS_OK);
    EXPECT_EQ(r.p.method, unsigned(METHOD_CUSTOM_EMULATION));
    EXPECT_EQ(r.icc.values[0], KTCLR_WHITE_D93);
    EXPECT_EQ(r.X() + r.Y(), 0.0);
    EXPECT_EQ(r.cmyk.value, 640u);  // no GCR in the CIELab dialog
    EXPECT_EQ(r.cmyk.validMask, KTCLR_DLG_BGR_ORDER | KTCLR_DLG_FROM_RGB);
    EXPECT_EQ(std::u16string(r.p.emulationTablePath), u"/t/lab.tif");
    EXPECT_EQ(std::u16string(r.p.srcProfilePath), u"/p/in.icm");
    EXPECT_EQ(std::u16string(r.p.dstProfilePath), u"/profiles/destination.icm");
}

TEST(DialogShown, CancelEscapeAndClosingChangeNothing) {
    struct Case {
        int kind;
        void (*end)(GtkWidget*);
    };
    const Case cases[] = {
        {KTCLR_DLG_CMYK, [](GtkWidget* d) { gtk_button_clicked(GTK_BUTTON(Find(d, "2"))); }},
        {KTCLR_DLG_CMYK, [](GtkWidget* d) { Key(d, GDK_KEY_Escape); }},
        {KTCLR_DLG_LAB, [](GtkWidget* d) { Key(d, GDK_KEY_Escape); }},
        {KTCLR_DLG_LAB, [](GtkWidget* d) { gtk_window_close(GTK_WINDOW(d)); }},
    };
    for (const Case& c : cases) {
        DialogRecord r;
        const auto before = r.Bytes();
        Script({[&c](GtkWidget* d) {
            Choose(d, "116", 4);
            Choose(d, "1001", 1);
            SetText(d, "117", "/changed.icm");
            c.end(d);
        }});
        EXPECT_EQ(Vx_ClrDlg(c.kind, nullptr, nullptr, &r.p), 0) << &c - cases;
        EXPECT_EQ(r.Bytes(), before) << &c - cases;
    }
}

// Controls enabled for each method (and white point, and CIELab table).
TEST(DialogShown, EachMethodEnablesOnlyItsControls) {
    struct Case {
        int kind, method, white, radio;
        const char* enabled;
    };
    const Case cases[] = {
        {1, 0, 0, 0, "116 123 126 1001 1002"},
        {1, 0, 5, 0, "116 123 124 125 126 1001 1002"},
        {1, 1, 2, 0, "116 123 126 1001 1002"},
        {1, 2, 5, 0, "116 117 118 119 120 123 124 125 126 1001 1002"},
        {1, 3, 5, 0, "116 126 1001 1002"},
        {1, 4, 0, 0, "116 121 122 126 1001 1002"},
        {2, 0, 5, 0, "116 123 124 125 1001 1002"},
        {2, 2, 0, 0, "116 117 118 119 120 123 1001 1002"},
        {2, 3, 0, 0, "116 1001 1002"},
        {2, 4, 0, 0, "116 130 131 134 135 1001 1002"},
        {2, 4, 5, 1, "116 132 133 134 135 1001 1002"},
    };
    const char* all[] = {"", "116 117 118 119 120 121 122 123 124 125 126 1001 1002",
                         "116 117 118 119 120 130 131 132 133 134 135 123 124 125 1001 1002"};
    for (int kind : {KTCLR_DLG_CMYK, KTCLR_DLG_LAB}) {
        Script({[&](GtkWidget* d) {
            for (const Case& c : cases) {
                if (c.kind != kind) continue;
                Choose(d, "116", c.method);
                Choose(d, "123", c.white);
                if (kind == KTCLR_DLG_LAB) Choose(d, c.radio ? "135" : "134", 1);
                std::istringstream ids(all[kind]);
                std::string enabled;
                for (std::string id; ids >> id;)
                    if (Sensitive(d, id.c_str())) enabled += (enabled.empty() ? "" : " ") + id;
                EXPECT_EQ(enabled, c.enabled) << "kind " << kind << " method " << c.method;
            }
            EXPECT_TRUE(Sensitive(d, "1") && Sensitive(d, "2"));
            gtk_dialog_response(GTK_DIALOG(d), GTK_RESPONSE_CANCEL);
        }});
        EXPECT_EQ(Vx_ClrDlg(kind, nullptr, nullptr, nullptr), 0);
    }
}

// Each browse button opens a file chooser with its title and filter.
TEST(DialogShown, BrowseButtonsOpenTheirFileChoosers) {
    struct Case {
        int kind;
        const char *button, *title, *filter;
    };
    const Case cases[] = {
        {1, "118", "Open CMYK Profile", "ICC Files (*.ICM)"},
        {1, "120", "Open RGB Profile", "ICC Files (*.ICM)"},
        {1, "122", "Open destination RGB image", "TIFF Files (*.TIF)"},
        {2, "118", "Open RGB Profile", "ICC Files (*.ICM)"},
        {2, "120", "Open LAB Profile", "ICC Files (*.ICM)"},
        {2, "131", "Open destination Lab image", "TIFF Files (*.TIF)"},
        {2, "133", "Open destination RGB image", "TIFF Files (*.TIF)"},
    };
    for (const Case& c : cases) {
        Script({[&c](GtkWidget* d) {
                    gtk_button_clicked(GTK_BUTTON(Find(d, c.button)));
                    gtk_dialog_response(GTK_DIALOG(d), GTK_RESPONSE_CANCEL);
                },
                [&c](GtkWidget* chooser) {
                    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(chooser)), c.title);
                    EXPECT_STREQ(gtk_file_filter_get_name(gtk_file_chooser_get_filter(GTK_FILE_CHOOSER(chooser))), c.filter);
                    gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_CANCEL);
                }});
        EXPECT_EQ(Vx_ClrDlg(c.kind, nullptr, nullptr, nullptr), 0) << c.button;
    }
}

TEST(DialogShown, AChosenFileLandsInTheEditOfItsButton) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / ("ktclr-dialog-" + std::to_string(getpid()) + ".icm");
    std::ofstream(file) << "x";
    DialogRecord r;
    Script({[](GtkWidget* d) {
                gtk_button_clicked(GTK_BUTTON(Find(d, "118")));
                gtk_button_clicked(GTK_BUTTON(Find(d, "1")));
            },
            [&file](GtkWidget* chooser) {
                gtk_file_chooser_select_filename(GTK_FILE_CHOOSER(chooser), file.c_str());
                auto chosen = [chooser] {
                    g_autofree gchar* uri = gtk_file_chooser_get_uri(GTK_FILE_CHOOSER(chooser));
                    return uri != nullptr;
                };
                for (int i = 0; i < 200 && !chosen(); ++i) Pump(10);  // the folder loads in the background
                gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
            }});
    EXPECT_EQ(Vx_ClrDlg(KTCLR_DLG_CMYK, nullptr, nullptr, &r.p), STATUS_OK);
    EXPECT_EQ(std::u16string(r.p.srcProfilePath), file.u16string());
    std::filesystem::remove(file);
}

TEST(DialogShown, WithoutRecordTheDialogStartsFromDefaults) {
    Script({[](GtkWidget* d) {
        EXPECT_EQ(Active(d, "116"), 0);
        EXPECT_EQ(Active(d, "123"), 0);
        EXPECT_EQ(Text(d, "124") + Text(d, "117"), "0.0");
        EXPECT_EQ(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(Find(d, "126"))), 175);
        Key(d, GDK_KEY_Return);
    }});
    EXPECT_EQ(Vx_ClrDlg(KTCLR_DLG_CMYK, nullptr, nullptr, nullptr), STATUS_OK);
}

TEST(DialogShown, NarrowTwinCopiesTheChoicesBack) {
    DialogRecord r;
    ConversionParamsA a{};
    a.cmykOptions = &r.cmyk;
    a.iccOptions = &r.icc;
    a.emulationMethod = 8;
    std::strcpy(a.emulationTablePath, "/narrow/grid.tif");
    Script({[](GtkWidget* d) {
        EXPECT_EQ(Text(d, "121"), "/narrow/grid.tif");
        Choose(d, "116", 3);
        SetText(d, "119", "/narrow/rgb.icm");
        gtk_button_clicked(GTK_BUTTON(Find(d, "1")));
    }});
    ASSERT_EQ(Vx_ClrDlgA(KTCLR_DLG_CMYK, nullptr, nullptr, &a), STATUS_OK);
    EXPECT_EQ(a.method, unsigned(METHOD_BUILTIN_EMULATION));
    EXPECT_STREQ(a.dstProfilePath, "/narrow/rgb.icm");
    EXPECT_STREQ(a.emulationTablePath, "/narrow/grid.tif");
    EXPECT_EQ(a.emulationMethod, 8u);
}

}  // namespace
}  // namespace kt::test
