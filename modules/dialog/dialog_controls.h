// The controls of the two settings dialogs and the code that builds them,
// fills them from the exchanged state, keeps their enabling rules and reads
// them back.
#pragma once

#include <gtk/gtk.h>

#include "dialog/dialog_state.h"

namespace kt::dialog::gtk {

struct Controls {
    int kind = 0;
    GtkWidget* dialog = nullptr;
    GtkWidget* method = nullptr;                // 116
    GtkWidget* path[kPathCount] = {};           // 117, 119, 121 or 130, 132
    GtkWidget* browse[kPathCount] = {};         // 118, 120, 122 or 131, 133
    GtkWidget* white = nullptr;                 // 123
    GtkWidget* x = nullptr;                     // 124
    GtkWidget* y = nullptr;                     // 125
    GtkWidget* gcr = nullptr;                   // 126 (with its up-down, 127)
    GtkWidget* radio[2] = {};                   // 134, 135
    GtkWidget* bgr = nullptr;                   // 1001
    GtkWidget* fromRgb = nullptr;               // 1002
    int shownWhite = 0;                         // white-point index the x/y edits belong to
    double customX = 0, customY = 0;            // kept while a standard point is shown
};

// Builds the window for c->kind (1 CMYK, 2 CIELab) with its OK (1) and
// Cancel (2) buttons; nothing is shown yet.
void Build(Controls* c);

// Puts the state into the controls and connects the enabling rules and the
// browse buttons.
void Load(Controls* c, const State& s);

// Reads the controls back into the state.
void Store(Controls* c, State* s);

// Runs a dialog modally (the settings dialog or a file chooser) and returns
// its response; a test hook installed in the module sees each one first.
int RunModal(GtkWidget* dialog);

}  // namespace kt::dialog::gtk
