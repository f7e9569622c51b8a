#include "dialog_driver.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <deque>

namespace kt::test {
namespace {

std::deque<Step> g_steps;

gboolean Watchdog(gpointer dialog) {
    ADD_FAILURE() << "dialog still open: cancelled";
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    return G_SOURCE_REMOVE;
}

void StopWatchdog(GtkWidget*, gpointer id) { g_source_remove(GPOINTER_TO_UINT(id)); }

void Hook(GtkWidget* dialog, void*) {
    const guint id = g_timeout_add_seconds(10, Watchdog, dialog);
    g_signal_connect(dialog, "destroy", G_CALLBACK(StopWatchdog), GUINT_TO_POINTER(id));
    if (g_steps.empty()) {
        ADD_FAILURE() << "unexpected dialog: cancelled";
        gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
        return;
    }
    Step step = std::move(g_steps.front());
    g_steps.pop_front();
    for (int i = 0; i < 400 && !gtk_widget_get_mapped(dialog); ++i) Pump(5);
    Pump(100);
    step(dialog);
}

// The module the library loads: dlopen of the same file yields the same
// module, so the hook installed here is the one the library's copy sees.
void InstallHook() {
    static bool done = false;
    if (done) return;
    void* module = dlopen(KTCLR_DIALOG_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    using SetHook = void (*)(void (*)(GtkWidget*, void*), void*);
    auto set = reinterpret_cast<SetHook>(dlsym(module, "ktclr_dialog_test_hook"));
    ASSERT_NE(set, nullptr);
    set(Hook, nullptr);
    done = true;
}

struct Search {
    const char* id;
    GtkWidget* found;
};

void Visit(GtkWidget* w, gpointer data) {
    auto* s = static_cast<Search*>(data);
    if (s->found) return;
    if (g_strcmp0(gtk_widget_get_name(w), s->id) == 0) s->found = w;
    else if (GTK_IS_CONTAINER(w)) gtk_container_forall(GTK_CONTAINER(w), Visit, s);
}

}  // namespace

void Script(std::vector<Step> steps) {
    InstallHook();
    g_steps.assign(std::make_move_iterator(steps.begin()), std::make_move_iterator(steps.end()));
}

GtkWidget* Find(GtkWidget* dialog, const char* id) {
    Search s{id, nullptr};
    Visit(dialog, &s);
    EXPECT_NE(s.found, nullptr) << "no control " << id;
    return s.found;
}

bool Sensitive(GtkWidget* dialog, const char* id) { return gtk_widget_is_sensitive(Find(dialog, id)); }

std::string Text(GtkWidget* dialog, const char* id) { return gtk_entry_get_text(GTK_ENTRY(Find(dialog, id))); }

void SetText(GtkWidget* dialog, const char* id, const char* text) {
    gtk_entry_set_text(GTK_ENTRY(Find(dialog, id)), text);
}

void Choose(GtkWidget* dialog, const char* id, int index) {
    GtkWidget* w = Find(dialog, id);
    if (GTK_IS_COMBO_BOX(w)) gtk_combo_box_set_active(GTK_COMBO_BOX(w), index);
    else gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(w), index != 0);
}

std::vector<std::string> Items(GtkWidget* dialog, const char* id) {
    GtkTreeModel* model = gtk_combo_box_get_model(GTK_COMBO_BOX(Find(dialog, id)));
    std::vector<std::string> items;
    GtkTreeIter it;
    for (gboolean ok = gtk_tree_model_get_iter_first(model, &it); ok; ok = gtk_tree_model_iter_next(model, &it)) {
        gchar* text = nullptr;
        gtk_tree_model_get(model, &it, 0, &text, -1);
        items.emplace_back(text ? text : "");
        g_free(text);
    }
    return items;
}

void Key(GtkWidget* dialog, guint keyval) {
    gdk_window_focus(gtk_widget_get_window(dialog), GDK_CURRENT_TIME);  // no window manager under Xvfb
    Pump(50);
    const std::string command = std::string("xdotool key ") + gdk_keyval_name(keyval);
    gint status = -1;
    EXPECT_TRUE(g_spawn_command_line_sync(command.c_str(), nullptr, nullptr, &status, nullptr) && status == 0)
        << command;
}

void Pump(int ms) {
    const gint64 end = g_get_monotonic_time() + ms * 1000;
    do {
        while (gtk_events_pending()) gtk_main_iteration();
        g_usleep(2000);
    } while (g_get_monotonic_time() < end);
}

void Screenshot(GtkWidget* dialog, const std::string& path) {
    GdkWindow* window = gtk_widget_get_window(dialog);
    GdkPixbuf* shot =
        gdk_pixbuf_get_from_window(window, 0, 0, gdk_window_get_width(window), gdk_window_get_height(window));
    ASSERT_NE(shot, nullptr);
    EXPECT_TRUE(gdk_pixbuf_save(shot, path.c_str(), "png", nullptr, nullptr));
    g_object_unref(shot);
}

}  // namespace kt::test
