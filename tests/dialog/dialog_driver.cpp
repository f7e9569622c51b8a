#include "dialog_driver.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <sstream>

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

using Visit = std::function<void(GtkWidget*)>;

// Calls `f` on `w` and on every widget inside it, in order.
void Walk(GtkWidget* w, const Visit& f) {
    f(w);
    if (GTK_IS_CONTAINER(w))
        gtk_container_forall(GTK_CONTAINER(w), [](GtkWidget* c, gpointer v) { Walk(c, *static_cast<Visit*>(v)); },
                             const_cast<Visit*>(&f));
}

template <class F>
std::string Each(const std::string& ids, F f) {
    std::istringstream in(ids);
    std::string out;
    for (std::string id; in >> id;) {
        const std::string v = f(id.c_str());
        if (!v.empty()) out.append(out.empty() ? "" : " ").append(v);
    }
    return out;
}

}  // namespace

void Script(std::vector<Step> steps) {
    InstallHook();
    g_steps.assign(std::make_move_iterator(steps.begin()), std::make_move_iterator(steps.end()));
}

GtkWidget* Find(GtkWidget* dialog, const char* id) {
    GtkWidget* found = nullptr;
    Walk(dialog, [&](GtkWidget* w) {
        if (!found && g_strcmp0(gtk_widget_get_name(w), id) == 0) found = w;
    });
    EXPECT_NE(found, nullptr) << "no control " << id;
    return found;
}

std::string Values(GtkWidget* dialog, const std::string& ids) {
    return Each(ids, [dialog](const char* id) {
        GtkWidget* w = Find(dialog, id);
        if (GTK_IS_COMBO_BOX(w)) return std::to_string(gtk_combo_box_get_active(GTK_COMBO_BOX(w)));
        if (GTK_IS_TOGGLE_BUTTON(w)) return std::to_string(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(w)));
        if (GTK_IS_SPIN_BUTTON(w)) return std::to_string(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(w)));
        const std::string text = gtk_entry_get_text(GTK_ENTRY(w));
        return text.empty() ? std::string("''") : text;
    });
}

std::string Enabled(GtkWidget* dialog, const std::string& ids) {
    return Each(ids, [dialog](const char* id) { return gtk_widget_is_sensitive(Find(dialog, id)) ? id : ""; });
}

std::string Texts(GtkWidget* dialog) {
    std::vector<std::string> texts;
    Walk(dialog, [&](GtkWidget* w) {
        if (GTK_IS_LABEL(w)) texts.emplace_back(gtk_label_get_label(GTK_LABEL(w)));
    });
    std::sort(texts.begin(), texts.end());
    std::string all;
    for (const std::string& t : texts) all.append(all.empty() ? "" : "|").append(t);
    return all;
}

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
