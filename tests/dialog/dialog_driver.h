// Driving the settings dialog from a test: the module's test hook runs one
// scripted step on each dialog it shows, and helpers read and set controls
// by their widget names (the control numbers). DialogRecord is a
// ConversionParams record with its CMYK and white-point sub-records.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <set>
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
    for (const gint64 end = g_get_monotonic_time() + ms * 1000; g_get_monotonic_time() < end; g_usleep(2000))
        while (gtk_events_pending()) gtk_main_iteration();
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

// The dialog and every widget inside it.
inline std::vector<GtkWidget*> All(GtkWidget* dialog) {
    std::vector<GtkWidget*> all{dialog};
    const auto add = [](GtkWidget* c, gpointer v) { static_cast<std::vector<GtkWidget*>*>(v)->push_back(c); };
    for (std::size_t i = 0; i < all.size(); ++i)
        if (GTK_IS_CONTAINER(all[i])) gtk_container_forall(GTK_CONTAINER(all[i]), add, &all);
    return all;
}

// The module the library loads: dlopen of the same file yields the same
// module, so the hook installed here is the one the library's copy sees.
// Each dialog the module shows next (the settings dialog, then any file
// chooser) runs the next step once it is on screen. A dialog without a step,
// or one still open 10 s after its step, is cancelled so no test hangs.
inline void Script(std::deque<Step> steps) {
    using SetHook = void (*)(void (*)(GtkWidget*, void*), void*);
    static const auto set = reinterpret_cast<SetHook>(
        dlsym(dlopen(KTCLR_DIALOG_MODULE, RTLD_NOW | RTLD_LOCAL), "ktclr_dialog_test_hook"));
    ASSERT_NE(set, nullptr) << dlerror();
    set(Hook, nullptr);
    g_steps = std::move(steps);
}

// The numbered widgets (controls, buttons and one frame) by number.
inline std::map<int, GtkWidget*> Numbered(GtkWidget* dialog) {
    std::map<int, GtkWidget*> ids;
    for (GtkWidget* w : All(dialog))
        if (g_ascii_isdigit(*gtk_widget_get_name(w))) ids[std::atoi(gtk_widget_get_name(w))] = w;
    return ids;
}

// Reads, sets and presses controls word by word: "117" reads what the
// control holds (a list's item index, 0 or 1 for a check box or radio
// button, an edit's or spin button's text, '' when empty), "117=/p/a.icm"
// sets it, "1" presses button 1, and "|" reads "|" and the numbers of the
// enabled controls (buttons included, the frame not). What the words read,
// space-separated.
inline std::string Controls(GtkWidget* dialog, const std::string& words) {
    std::istringstream in(words);
    std::string out;
    for (std::string word; in >> word;) {
        auto numbered = Numbered(dialog);
        if (word == "|") out += "|";
        for (const auto& [id, w] : numbered)
            if (word == "|" && !GTK_IS_FRAME(w) && gtk_widget_is_sensitive(w))
                out.append(out.back() == '|' ? "" : " ").append(std::to_string(id));
        if (word == "|") continue;
        GtkWidget* w = numbered[std::stoi(word)];
        EXPECT_NE(w, nullptr) << "no control " << word;
        const char* v = std::strchr(word.c_str(), '=');  // then v + 1 is the value set
        std::string got;
        if (GTK_IS_COMBO_BOX(w) || GTK_IS_TOGGLE_BUTTON(w)) {  // both have an int "active"
            int active = 0;
            if (v) g_object_set(w, "active", std::atoi(v + 1), nullptr);
            g_object_get(w, "active", &active, nullptr);
            got = std::to_string(active);
        } else if (GTK_IS_ENTRY(w)) {
            if (v) gtk_entry_set_text(GTK_ENTRY(w), v + 1);
            if (v && GTK_IS_SPIN_BUTTON(w)) gtk_spin_button_update(GTK_SPIN_BUTTON(w));
            got = *gtk_entry_get_text(GTK_ENTRY(w)) ? gtk_entry_get_text(GTK_ENTRY(w)) : "''";
        } else if (GTK_IS_BUTTON(w)) {
            gtk_button_clicked(GTK_BUTTON(w));
        }
        if (!v && !got.empty()) out.append(out.empty() ? "" : " ").append(got);
    }
    return out;
}

// Every label of the window (frame titles, control labels with their
// mnemonics, button texts) and each list's items in their order, sorted.
inline std::string Texts(GtkWidget* dialog) {
    std::multiset<std::string> texts;
    for (GtkWidget* w : All(dialog)) {
        if (GTK_IS_LABEL(w)) texts.insert(gtk_label_get_label(GTK_LABEL(w)));
        if (!GTK_IS_COMBO_BOX(w)) continue;
        GtkTreeModel* m = gtk_combo_box_get_model(GTK_COMBO_BOX(w));
        std::string items;
        GtkTreeIter i;
        for (gboolean ok = gtk_tree_model_get_iter_first(m, &i); ok; ok = gtk_tree_model_iter_next(m, &i)) {
            g_autofree gchar* text = nullptr;
            gtk_tree_model_get(m, &i, 0, &text, -1);
            items.append(items.empty() ? "" : ", ").append(text);
        }
        texts.insert(items);
    }
    std::string all;
    for (const std::string& t : texts) all.append(all.empty() ? "" : "|").append(t);
    return all;
}

// The custom white point 0.3127, 0.329; prepare and emulation methods the
// dialog leaves alone. `narrow` is an empty narrow record sharing the
// sub-records.
struct DialogRecord {
    ConversionParams p;
    CmykOptions cmyk;
    IccOptions icc{{KTCLR_WHITE_CUSTOM, 0, 0, 0, 0}};
    ConversionParamsA narrow{};

    explicit DialogRecord(std::uint32_t method = METHOD_ICC, std::uint32_t mask = 0)
        : p(Params(method, 7)), cmyk(Cmyk(640, mask)) {
        p.emulationMethod = 3;
        p.cmykOptions = &cmyk;
        p.iccOptions = &icc;
        narrow.cmykOptions = &cmyk;
        narrow.iccOptions = &icc;
        const double xy[] = {0.3127, 0.329};
        std::memcpy(&icc.values[1], xy, sizeof xy);
        std::u16string(u"/profiles/source.icm").copy(p.srcProfilePath, 100);
        std::u16string(u"/profiles/destination.icm").copy(p.dstProfilePath, 100);
        std::u16string(u"/tables/grid.tif").copy(p.emulationTablePath, 100);
    }
    DialogRecord(const DialogRecord&) = delete;

    // Its bytes, sub-records included: whether a call changed any of them.
    std::string Bytes() const { return std::string(reinterpret_cast<const char*>(this), sizeof *this); }

    // In words: method, prepare and emulation methods, white point, its x and
    // y, GCR, flags, source, destination and table paths.
    std::string Written() const {
        double xy[2];
        std::memcpy(xy, &icc.values[1], sizeof xy);
        g_autofree gchar* head = g_strdup_printf("%u %u %u %u %f %f %u %u", p.method, p.prepareMethods,
                                                 p.emulationMethod, icc.values[0], xy[0], xy[1], cmyk.value, cmyk.validMask);
        std::string s = head;
        for (const KtChar16* path : {p.srcProfilePath, p.dstProfilePath, p.emulationTablePath}) {
            g_autofree gchar* utf8 = g_utf16_to_utf8(reinterpret_cast<const gunichar2*>(path), -1, nullptr, nullptr, nullptr);
            s += std::string(" ") + (utf8 ? utf8 : "?");
        }
        return s;
    }
};

}  // namespace kt::test
