// Filling the controls from the state, the enabling rules per method, the
// custom white point edits, the browse buttons, and reading back.
#include <cstring>

#include "dialog_controls.h"

namespace kt::dialog::gtk {
namespace {

enum MethodIndex { kBuiltin, kIcc, kCustomIcc, kBuiltinEmulation, kCustomEmulation };

// A control and the labels that name it.
void Enable(GtkWidget* w, bool on) {
    gtk_widget_set_sensitive(w, on);
    GList* labels = gtk_widget_list_mnemonic_labels(w);
    for (GList* l = labels; l; l = l->next) gtk_widget_set_sensitive(GTK_WIDGET(l->data), on);
    g_list_free(labels);
}

void EnablePath(Controls* c, int slot, bool on) {
    if (!c->path[slot]) return;
    Enable(c->path[slot], on);
    gtk_widget_set_sensitive(c->browse[slot], on);
}

void Apply(Controls* c) {
    const int m = gtk_combo_box_get_active(GTK_COMBO_BOX(c->method));
    const bool white = m == kBuiltin || m == kIcc || m == kCustomIcc;
    const bool custom = white && gtk_combo_box_get_active(GTK_COMBO_BOX(c->white)) == kCustomWhite;
    Enable(c->white, white);
    Enable(c->x, custom);
    Enable(c->y, custom);
    EnablePath(c, kPathProfile1, m == kCustomIcc);
    EnablePath(c, kPathProfile2, m == kCustomIcc);
    const bool tables = m == kCustomEmulation;
    if (c->kind == kKindCmyk) {
        EnablePath(c, kPathTable1, tables);
        return;
    }
    for (GtkWidget* r : c->radio) gtk_widget_set_sensitive(r, tables);
    EnablePath(c, kPathTable1, tables && gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(c->radio[0])));
    EnablePath(c, kPathTable2, tables && gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(c->radio[1])));
}

void SetNumber(GtkWidget* entry, double v) {
    char text[G_ASCII_DTOSTR_BUF_SIZE];
    gtk_entry_set_text(GTK_ENTRY(entry), g_ascii_formatd(text, sizeof text, "%f", v));
}

double Number(GtkWidget* entry) { return g_ascii_strtod(gtk_entry_get_text(GTK_ENTRY(entry)), nullptr); }

// The x and y edits show the custom point as "%f" and "0.0" for a standard
// illuminant; the custom values are kept while a standard one is shown.
void ShowWhite(Controls* c) {
    if (c->shownWhite == kCustomWhite) {
        c->customX = Number(c->x);
        c->customY = Number(c->y);
    }
    c->shownWhite = gtk_combo_box_get_active(GTK_COMBO_BOX(c->white));
    if (c->shownWhite == kCustomWhite) {
        SetNumber(c->x, c->customX);
        SetNumber(c->y, c->customY);
    } else {
        gtk_entry_set_text(GTK_ENTRY(c->x), "0.0");
        gtk_entry_set_text(GTK_ENTRY(c->y), "0.0");
    }
}

void OnChanged(GtkWidget*, gpointer data) { Apply(static_cast<Controls*>(data)); }

void OnWhite(GtkWidget*, gpointer data) {
    ShowWhite(static_cast<Controls*>(data));
    Apply(static_cast<Controls*>(data));
}

struct Browse {
    const char* title;
    bool table;
};

Browse BrowseFor(int kind, int slot) {
    static constexpr Browse kCmyk[] = {{"Open CMYK Profile", false}, {"Open RGB Profile", false},
                                       {"Open destination RGB image", true}, {nullptr, true}};
    static constexpr Browse kLab[] = {{"Open RGB Profile", false}, {"Open LAB Profile", false},
                                      {"Open destination Lab image", true}, {"Open destination RGB image", true}};
    return kind == kKindCmyk ? kCmyk[slot] : kLab[slot];
}

// Filters name the extension in capitals and match it in any case.
GtkFileFilter* Filter(bool table) {
    GtkFileFilter* f = gtk_file_filter_new();
    gtk_file_filter_set_name(f, table ? "TIFF Files (*.TIF)" : "ICC Files (*.ICM)");
    gtk_file_filter_add_pattern(f, table ? "*.[Tt][Ii][Ff]" : "*.[Ii][Cc][Mm]");
    return f;
}

void OnBrowse(GtkWidget* button, gpointer data) {
    auto* c = static_cast<Controls*>(data);
    int slot = 0;
    while (c->browse[slot] != button) ++slot;
    const Browse b = BrowseFor(c->kind, slot);
    GtkWidget* chooser = gtk_file_chooser_dialog_new(b.title, GTK_WINDOW(c->dialog), GTK_FILE_CHOOSER_ACTION_OPEN,
                                                     "_Cancel", GTK_RESPONSE_CANCEL, "_Open", GTK_RESPONSE_ACCEPT,
                                                     nullptr);
    gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(chooser), Filter(b.table));
    gtk_dialog_set_default_response(GTK_DIALOG(chooser), GTK_RESPONSE_ACCEPT);
    if (RunModal(chooser) == GTK_RESPONSE_ACCEPT) {
        gchar* name = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser));
        gchar* utf8 = name ? g_filename_to_utf8(name, -1, nullptr, nullptr, nullptr) : nullptr;
        if (utf8) gtk_entry_set_text(GTK_ENTRY(c->path[slot]), utf8);
        g_free(utf8);
        g_free(name);
    }
    gtk_widget_destroy(chooser);
}

}  // namespace

void Load(Controls* c, const State& s) {
    gtk_combo_box_set_active(GTK_COMBO_BOX(c->method), s.method);
    c->customX = s.x;
    c->customY = s.y;
    c->shownWhite = -1;
    gtk_combo_box_set_active(GTK_COMBO_BOX(c->white), s.whitePoint);
    ShowWhite(c);
    if (c->gcr) gtk_spin_button_set_value(GTK_SPIN_BUTTON(c->gcr), s.gcr);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(c->bgr), s.bgrOrder);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(c->fromRgb), s.fromRgb);
    if (c->radio[0]) gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(c->radio[s.labTable ? 1 : 0]), TRUE);
    for (int i = 0; i < kPathCount; ++i) {
        if (!c->path[i]) continue;
        gtk_entry_set_text(GTK_ENTRY(c->path[i]), s.paths[i]);
        g_signal_connect(c->browse[i], "clicked", G_CALLBACK(OnBrowse), c);
    }
    Apply(c);
    g_signal_connect(c->method, "changed", G_CALLBACK(OnChanged), c);
    g_signal_connect(c->white, "changed", G_CALLBACK(OnWhite), c);
    if (c->radio[0]) g_signal_connect(c->radio[0], "toggled", G_CALLBACK(OnChanged), c);
}

void Store(Controls* c, State* s) {
    s->method = gtk_combo_box_get_active(GTK_COMBO_BOX(c->method));
    s->whitePoint = gtk_combo_box_get_active(GTK_COMBO_BOX(c->white));
    s->x = Number(c->x);
    s->y = Number(c->y);
    if (c->gcr) {
        gtk_spin_button_update(GTK_SPIN_BUTTON(c->gcr));
        s->gcr = gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(c->gcr));
    }
    s->bgrOrder = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(c->bgr));
    s->fromRgb = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(c->fromRgb));
    s->labTable = c->radio[1] && gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(c->radio[1]));
    for (int i = 0; i < kPathCount; ++i) {
        if (!c->path[i]) continue;
        std::strncpy(s->paths[i], gtk_entry_get_text(GTK_ENTRY(c->path[i])), kPathBytes - 1);
        s->paths[i][kPathBytes - 1] = '\0';
    }
}

}  // namespace kt::dialog::gtk
