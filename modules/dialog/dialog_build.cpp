// The widgets of the CMYK and CIELab settings dialogs. Each control carries
// its number as its widget name; labels carry mnemonics for their controls.
#include "dialog_controls.h"

namespace kt::dialog::gtk {
namespace {

GtkWidget* Named(GtkWidget* w, const char* id) {
    gtk_widget_set_name(w, id);
    return w;
}

GtkWidget* Grid() {
    GtkWidget* g = gtk_grid_new();
    gtk_grid_set_row_spacing(GTK_GRID(g), 4);
    gtk_grid_set_column_spacing(GTK_GRID(g), 6);
    gtk_container_set_border_width(GTK_CONTAINER(g), 6);
    return g;
}

GtkWidget* Frame(GtkWidget* box, const char* title, GtkWidget* child, const char* id = nullptr) {
    GtkWidget* f = gtk_frame_new(title);
    if (id) gtk_widget_set_name(f, id);
    gtk_container_add(GTK_CONTAINER(f), child);
    if (box) gtk_box_pack_start(GTK_BOX(box), f, FALSE, FALSE, 0);
    return f;
}

// A mnemonic label for `target` at (column, row) of the grid.
void Label(GtkWidget* grid, const char* text, GtkWidget* target, int column, int row) {
    GtkWidget* l = gtk_label_new_with_mnemonic(text);
    gtk_label_set_xalign(GTK_LABEL(l), 0.0f);
    gtk_label_set_mnemonic_widget(GTK_LABEL(l), target);
    gtk_grid_attach(GTK_GRID(grid), l, column, row, 1, 1);
}

GtkWidget* Combo(const char* id, const char* const* items) {
    GtkWidget* w = Named(gtk_combo_box_text_new(), id);
    for (; *items; ++items) gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(w), *items);
    return w;
}

GtkWidget* Entry(const char* id, int maxChars, int width) {
    GtkWidget* e = Named(gtk_entry_new(), id);
    gtk_entry_set_max_length(GTK_ENTRY(e), maxChars);
    gtk_entry_set_width_chars(GTK_ENTRY(e), width);
    gtk_entry_set_activates_default(GTK_ENTRY(e), TRUE);
    return e;
}

// Label, path edit and "..." button on one row.
void PathRow(Controls* c, GtkWidget* grid, int row, int slot, const char* text, const char* editId,
             const char* buttonId) {
    c->path[slot] = Entry(editId, kPathChars, 36);
    gtk_widget_set_hexpand(c->path[slot], TRUE);
    c->browse[slot] = Named(gtk_button_new_with_label("..."), buttonId);
    Label(grid, text, c->path[slot], 0, row);
    gtk_grid_attach(GTK_GRID(grid), c->path[slot], 1, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), c->browse[slot], 2, row, 1, 1);
}

constexpr const char* kMethodItems[] = {"Built-in conversion", "ICC profiling", "Custom ICC Profiling",
                                        "Built-in emulation tables", "Custom emulation tables", nullptr};
constexpr const char* kWhiteItems[] = {"D50", "D55", "D65", "D75", "D93", "Custom (xyY) point", nullptr};

void MethodRow(Controls* c, GtkWidget* box) {
    GtkWidget* g = Grid();
    c->method = Combo("116", kMethodItems);
    gtk_widget_set_hexpand(c->method, TRUE);
    Label(g, "Conversion _Method", c->method, 0, 0);
    gtk_grid_attach(GTK_GRID(g), c->method, 1, 0, 1, 1);
    gtk_box_pack_start(GTK_BOX(box), g, FALSE, FALSE, 0);
}

// "Built-in Settings": white point, its custom x and y, and for CMYK the GCR.
void BuiltinSettings(Controls* c, GtkWidget* box) {
    GtkWidget* g = Grid();
    c->white = Combo("123", kWhiteItems);
    c->x = Entry("124", 8, 8);
    c->y = Entry("125", 8, 8);
    Label(g, "_White point", c->white, 0, 0);
    gtk_grid_attach(GTK_GRID(g), c->white, 1, 0, 3, 1);
    Label(g, "_x", c->x, 0, 1);
    gtk_grid_attach(GTK_GRID(g), c->x, 1, 1, 1, 1);
    Label(g, "_y", c->y, 2, 1);
    gtk_grid_attach(GTK_GRID(g), c->y, 3, 1, 1, 1);
    GtkWidget* note = gtk_label_new("Y is always 1.0");
    gtk_label_set_xalign(GTK_LABEL(note), 0.0f);
    gtk_grid_attach(GTK_GRID(g), note, 1, 2, 3, 1);
    if (c->kind == kKindCmyk) {
        c->gcr = Named(gtk_spin_button_new_with_range(0, 1000, 1), "126");
        gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(c->gcr), TRUE);
        gtk_entry_set_activates_default(GTK_ENTRY(c->gcr), TRUE);
        Label(g, "_GCR", c->gcr, 0, 3);
        gtk_grid_attach(GTK_GRID(g), c->gcr, 1, 3, 3, 1);
    }
    Frame(box, "Built-in Settings", g);
}

void Miscellaneous(Controls* c, GtkWidget* box) {
    GtkWidget* g = Grid();
    c->bgr = Named(gtk_check_button_new_with_mnemonic("BGR _Order"), "1001");
    c->fromRgb = Named(gtk_check_button_new_with_mnemonic(c->kind == kKindCmyk ? "RGB _to CMYK" : "RGB _to LAB"), "1002");
    gtk_grid_attach(GTK_GRID(g), c->bgr, 0, 0, 1, 1);
    gtk_grid_attach(GTK_GRID(g), c->fromRgb, 1, 0, 1, 1);
    Frame(box, "Miscellaneous", g);
}

void CmykBody(Controls* c, GtkWidget* box) {
    GtkWidget* icc = Grid();
    PathRow(c, icc, 0, kPathProfile1, "_CMYK Profile", "117", "118");
    PathRow(c, icc, 1, kPathProfile2, "_RGB profile", "119", "120");
    Frame(box, "Custom ICC Profiles", icc);
    GtkWidget* tables = Grid();
    PathRow(c, tables, 0, kPathTable1, "_Destination RGB table", "121", "122");
    Frame(box, "Emulation tables", tables);
}

// One direction of the CIELab dialog's tables: its radio button and table.
GtkWidget* LabDirection(Controls* c, int slot, const char* radioText, const char* radioId, const char* text,
                        const char* editId, const char* buttonId) {
    GtkWidget* g = Grid();
    GtkRadioButton* group = slot == kPathTable1 ? nullptr : GTK_RADIO_BUTTON(c->radio[0]);
    GtkWidget* radio = Named(gtk_radio_button_new_with_mnemonic_from_widget(group, radioText), radioId);
    c->radio[slot - kPathTable1] = radio;
    gtk_grid_attach(GTK_GRID(g), radio, 0, 0, 3, 1);
    PathRow(c, g, 1, slot, text, editId, buttonId);
    return g;
}

void LabBody(Controls* c, GtkWidget* box) {
    GtkWidget* icc = Grid();
    PathRow(c, icc, 0, kPathProfile1, "_Source input profile", "117", "118");
    PathRow(c, icc, 1, kPathProfile2, "_Destination output profile", "119", "120");
    Frame(box, "Custom ICC Profiles", icc);
    GtkWidget* tables = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
    gtk_container_set_border_width(GTK_CONTAINER(tables), 6);
    Frame(tables, "RGB To Lab conversion",
          LabDirection(c, kPathTable1, "_RGB To CIELab", "134", "Destination _CIELab table", "130", "131"));
    Frame(tables, "Lab To RGB conversion",
          LabDirection(c, kPathTable2, "CIE_Lab To RGB", "135", "Destination R_GB table", "132", "133"));
    Frame(box, "Emulation tables", tables, "129");
}

}  // namespace

void Build(Controls* c) {
    c->dialog = gtk_dialog_new();
    GtkWindow* w = GTK_WINDOW(c->dialog);
    gtk_window_set_title(w, c->kind == kKindCmyk ? "CMYK color settings" : "CIELab color settings");
    gtk_window_set_modal(w, TRUE);
    gtk_window_set_resizable(w, FALSE);
    GtkWidget* box = gtk_dialog_get_content_area(GTK_DIALOG(c->dialog));
    gtk_box_set_spacing(GTK_BOX(box), 6);
    gtk_container_set_border_width(GTK_CONTAINER(c->dialog), 6);
    MethodRow(c, box);
    if (c->kind == kKindCmyk) CmykBody(c, box);
    else LabBody(c, box);
    BuiltinSettings(c, box);
    Miscellaneous(c, box);
    Named(gtk_dialog_add_button(GTK_DIALOG(c->dialog), "OK", GTK_RESPONSE_OK), "1");
    Named(gtk_dialog_add_button(GTK_DIALOG(c->dialog), "Cancel", GTK_RESPONSE_CANCEL), "2");
    gtk_dialog_set_default_response(GTK_DIALOG(c->dialog), GTK_RESPONSE_OK);
}

}  // namespace kt::dialog::gtk
