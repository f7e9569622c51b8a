// Driving the settings dialog from a test: the module's test hook runs one
// scripted step on each dialog it shows, and helpers read and set controls
// by their widget names (the control numbers). DialogRecord is a
// ConversionParams record with its CMYK and white-point sub-records, and a
// byte snapshot to tell whether a call changed any of them.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstring>
#include <deque>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "ktclr.h"
#include "support/support.h"

namespace kt::test {

using Step = std::function<void(GtkWidget* dialog)>;
inline std::deque<Step> g_steps;

// Lets the main loop run for about `ms` milliseconds.
inline void Pump(int ms) {
    const gint64 end = g_get_monotonic_time() + ms * 1000;
    do {
        while (gtk_events_pending()) gtk_main_iteration();
        g_usleep(2000);
    } while (g_get_monotonic_time() < end);
}

inline gboolean Cancel(gpointer dialog) {
    ADD_FAILURE() << "dialog still open, or not expected: cancelled";
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    return G_SOURCE_REMOVE;
}

inline void Hook(GtkWidget* dialog, void*) {
    if (g_steps.empty()) return void(Cancel(dialog));
    const guint watchdog = g_timeout_add_seconds(10, Cancel, dialog);
    g_signal_connect_swapped(dialog, "destroy", G_CALLBACK(+[](gpointer id) { g_source_remove(GPOINTER_TO_UINT(id)); }),
                             GUINT_TO_POINTER(watchdog));
    Step step = std::move(g_steps.front());
    g_steps.pop_front();
    for (int i = 0; i < 400 && !gtk_widget_get_mapped(dialog); ++i) Pump(5);
    Pump(100);
    step(dialog);
}

using Visit = std::function<void(GtkWidget*)>;

// Calls `f` on `w` and on every widget inside it.
inline void Walk(GtkWidget* w, const Visit& f) {
    f(w);
    if (GTK_IS_CONTAINER(w))
        gtk_container_forall(GTK_CONTAINER(w), [](GtkWidget* c, gpointer v) { Walk(c, *static_cast<Visit*>(v)); },
                             const_cast<Visit*>(&f));
}

// `f` on each space-separated word; the non-empty answers, space-separated.
inline std::string Each(const std::string& words, const std::function<std::string(const std::string&)>& f) {
    std::istringstream in(words);
    std::string out;
    for (std::string word; in >> word;)
        if (const std::string v = f(word); !v.empty()) out.append(out.empty() ? "" : " ").append(v);
    return out;
}

// The module the library loads: dlopen of the same file yields the same
// module, so the hook installed here is the one the library's copy sees.
// Each dialog the module shows next (the settings dialog, then any file
// chooser) runs the next step once it is on screen. A dialog without a step,
// or one still open 10 s after its step, is cancelled so no test hangs.
inline void Script(std::vector<Step> steps) {
    static const bool installed = [] {
        using SetHook = void (*)(void (*)(GtkWidget*, void*), void*);
        auto set = reinterpret_cast<SetHook>(
            dlsym(dlopen(KTCLR_DIALOG_MODULE, RTLD_NOW | RTLD_LOCAL), "ktclr_dialog_test_hook"));
        if (set) set(Hook, nullptr);
        return set != nullptr;
    }();
    ASSERT_TRUE(installed) << dlerror();
    g_steps.assign(std::make_move_iterator(steps.begin()), std::make_move_iterator(steps.end()));
}

inline GtkWidget* Find(GtkWidget* dialog, const char* id) {
    GtkWidget* found = nullptr;
    Walk(dialog, [&](GtkWidget* w) {
        if (!found && g_strcmp0(gtk_widget_get_name(w), id) == 0) found = w;
    });
    EXPECT_NE(found, nullptr) << "no control " << id;
    return found;
}

// What the controls of the space-separated ids hold, space-separated: the
// list item's index, 0 or 1 for a check box or radio button, the spin
// button's value, an edit's text ('' when empty).
inline std::string Values(GtkWidget* dialog, const std::string& ids) {
    return Each(ids, [dialog](const std::string& id) {
        GtkWidget* w = Find(dialog, id.c_str());
        if (GTK_IS_COMBO_BOX(w)) return std::to_string(gtk_combo_box_get_active(GTK_COMBO_BOX(w)));
        if (GTK_IS_TOGGLE_BUTTON(w)) return std::to_string(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(w)));
        if (GTK_IS_SPIN_BUTTON(w)) return std::to_string(gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(w)));
        const std::string text = gtk_entry_get_text(GTK_ENTRY(w));
        return text.empty() ? std::string("''") : text;
    });
}

// Sets controls the same way: "116=4 1001=1 117=/p/a.icm".
inline void Set(GtkWidget* dialog, const std::string& assignments) {
    Each(assignments, [dialog](const std::string& a) {
        GtkWidget* w = Find(dialog, a.substr(0, a.find('=')).c_str());
        const std::string v = a.substr(a.find('=') + 1);
        if (GTK_IS_COMBO_BOX(w)) gtk_combo_box_set_active(GTK_COMBO_BOX(w), std::stoi(v));
        else if (GTK_IS_TOGGLE_BUTTON(w)) gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(w), v == "1");
        else if (GTK_IS_SPIN_BUTTON(w)) gtk_spin_button_set_value(GTK_SPIN_BUTTON(w), std::stoi(v));
        else gtk_entry_set_text(GTK_ENTRY(w), v.c_str());
        return std::string();
    });
}

// Of the ids, those whose control is enabled.
inline std::string Enabled(GtkWidget* dialog, const std::string& ids) {
    return Each(ids, [dialog](const std::string& id) {
        return gtk_widget_is_sensitive(Find(dialog, id.c_str())) ? id : std::string();
    });
}

inline void Press(GtkWidget* dialog, const char* id) { gtk_button_clicked(GTK_BUTTON(Find(dialog, id))); }

// A key pressed and released on the focused dialog by xdotool (XTest).
inline void Key(GtkWidget* dialog, guint keyval) {
    gdk_window_focus(gtk_widget_get_window(dialog), GDK_CURRENT_TIME);  // no window manager under Xvfb
    Pump(50);
    const std::string command = std::string("xdotool key ") + gdk_keyval_name(keyval);
    gint status = -1;
    EXPECT_TRUE(g_spawn_command_line_sync(command.c_str(), nullptr, nullptr, &status, nullptr) && status == 0)
        << command;
}

// The dialog's window as a PNG file.
inline void Screenshot(GtkWidget* dialog, const std::string& path) {
    GdkWindow* window = gtk_widget_get_window(dialog);
    GdkPixbuf* shot =
        gdk_pixbuf_get_from_window(window, 0, 0, gdk_window_get_width(window), gdk_window_get_height(window));
    ASSERT_NE(shot, nullptr);
    EXPECT_TRUE(gdk_pixbuf_save(shot, path.c_str(), "png", nullptr, nullptr));
    g_object_unref(shot);
}

struct DialogRecord {
    ConversionParams p = Params(METHOD_ICC, 7);
    CmykOptions cmyk = Cmyk(640);
    IccOptions icc{{KTCLR_WHITE_D65, 0, 0, 0, 0}};

    DialogRecord() {
        p.emulationMethod = 3;
        p.cmykOptions = &cmyk;
        p.iccOptions = &icc;
        std::u16string(u"/profiles/source.icm").copy(p.srcProfilePath, 100);
        std::u16string(u"/profiles/destination.icm").copy(p.dstProfilePath, 100);
        std::u16string(u"/tables/grid.tif").copy(p.emulationTablePath, 100);
    }
    DialogRecord(const DialogRecord&) = delete;

    void SetCustom(double x, double y) {
        icc.values[0] = KTCLR_WHITE_CUSTOM;
        std::memcpy(&icc.values[1], &x, sizeof x);
        std::memcpy(&icc.values[3], &y, sizeof y);
    }
    // What the dialog writes, in words: method, white point, custom x and y,
    // GCR, flags, source, destination and table paths.
    std::string Written() const {
        double x, y;
        std::memcpy(&x, &icc.values[1], sizeof x);
        std::memcpy(&y, &icc.values[3], sizeof y);
        g_autofree gchar* head =
            g_strdup_printf("%u %u %f %f %u %u", p.method, icc.values[0], x, y, cmyk.value, cmyk.validMask);
        std::string s = head;
        for (const KtChar16* path : {p.srcProfilePath, p.dstProfilePath, p.emulationTablePath}) {
            g_autofree gchar* utf8 = g_utf16_to_utf8(reinterpret_cast<const gunichar2*>(path), -1, nullptr, nullptr, nullptr);
            s += std::string(" ") + (utf8 ? utf8 : "?");
        }
        return s;
    }

    std::string Bytes() const {
        return std::string(reinterpret_cast<const char*>(&p), sizeof p) +
               std::string(reinterpret_cast<const char*>(&cmyk), sizeof cmyk) +
               std::string(reinterpret_cast<const char*>(&icc), sizeof icc);
    }
};

}  // namespace kt::test
