// Driving the settings dialog from a test: the module's test hook runs one
// scripted step on each dialog it shows, and helpers find and work controls
// by their widget names (the control numbers).
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

namespace kt::test {

using Step = std::function<void(GtkWidget* dialog)>;

// Each dialog the module shows next (the settings dialog, then any file
// chooser) runs the next step once it is on screen. A dialog without a step,
// or one still open 10 s after its step, is cancelled so no test hangs.
void Script(std::vector<Step> steps);

GtkWidget* Find(GtkWidget* dialog, const char* id);
bool Sensitive(GtkWidget* dialog, const char* id);
std::string Text(GtkWidget* dialog, const char* id);
void SetText(GtkWidget* dialog, const char* id, const char* text);
void Choose(GtkWidget* dialog, const char* id, int index);  // list item or radio/check state
std::vector<std::string> Items(GtkWidget* dialog, const char* id);

// A key pressed and released on the focused dialog by xdotool (XTest).
void Key(GtkWidget* dialog, guint keyval);
// Lets the main loop run for about `ms` milliseconds.
void Pump(int ms);
// The dialog's window as a PNG file.
void Screenshot(GtkWidget* dialog, const std::string& path);

}  // namespace kt::test
