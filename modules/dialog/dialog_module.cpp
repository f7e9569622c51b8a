// The GTK 3 dialog module: its entry point, the modal loop and a hook
// through which the tests act on each dialog the module shows.
#include "dialog_controls.h"

#define KT_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

namespace kt::dialog::gtk {
namespace {

using Hook = void (*)(GtkWidget* dialog, void* context);
Hook g_hook = nullptr;
void* g_hookContext = nullptr;

gboolean CallHook(gpointer dialog) {
    if (g_hook) g_hook(GTK_WIDGET(dialog), g_hookContext);
    return G_SOURCE_REMOVE;
}

// Enter presses OK unless a push button has the focus (which then presses
// itself); in an edit, on a list, a check box or a radio button it is OK.
gboolean OnKey(GtkWidget* window, GdkEventKey* e, gpointer) {
    if (e->keyval != GDK_KEY_Return && e->keyval != GDK_KEY_KP_Enter && e->keyval != GDK_KEY_ISO_Enter)
        return FALSE;
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(window));
    if (focus && GTK_IS_BUTTON(focus) && !GTK_IS_TOGGLE_BUTTON(focus)) return FALSE;
    GtkWidget* ok = gtk_window_get_default_widget(GTK_WINDOW(window));
    return ok && gtk_widget_is_sensitive(ok) && gtk_widget_activate(ok);
}

// Initializes GTK unless the application already has, without letting it
// change the process locale; false without a display.
bool InitGtk() {
    static bool localeKept = false;
    if (!localeKept && !gdk_display_get_default()) {
        gtk_disable_setlocale();
        localeKept = true;
    }
    return gtk_init_check(nullptr, nullptr);
}

void Drain() {
    while (gtk_events_pending()) gtk_main_iteration();
}

}  // namespace

int RunModal(GtkWidget* dialog) {
    if (g_hook) g_idle_add(CallHook, dialog);
    return gtk_dialog_run(GTK_DIALOG(dialog));
}

}  // namespace kt::dialog::gtk

using namespace kt::dialog;

KT_MODULE_EXPORT int ktclr_dialog_run(State* state) {
    if (!gtk::InitGtk()) return -1;
    gtk::Controls c;
    c.kind = state->kind;
    gtk::Build(&c);
    gtk::Load(&c, *state);
    g_signal_connect(c.dialog, "key-press-event", G_CALLBACK(gtk::OnKey), nullptr);
    gtk_widget_show_all(c.dialog);
    const int response = gtk::RunModal(c.dialog);
    if (response == GTK_RESPONSE_OK) gtk::Store(&c, state);
    gtk_widget_destroy(c.dialog);
    gtk::Drain();
    return response == GTK_RESPONSE_OK ? 1 : 0;
}

// Tests only: `hook` is called with each dialog the module shows (the
// settings dialog, then any file chooser), from the dialog's own loop.
KT_MODULE_EXPORT void ktclr_dialog_test_hook(void (*hook)(GtkWidget*, void*), void* context) {
    gtk::g_hook = hook;
    gtk::g_hookContext = context;
}
