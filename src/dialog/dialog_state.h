// What the library and the GTK dialog module exchange: plain data only, so
// the module needs nothing from the library. The library fills a state from
// the caller's record, the module edits it while the dialog is open, and the
// library writes it back after OK.
#pragma once

#include <cstdint>

namespace kt::dialog {

// Bytes of a UTF-8 path: 259 UTF-16 units need at most 3 bytes each.
constexpr int kPathBytes = 259 * 3 + 1;
constexpr int kPathChars = 259;

constexpr int32_t kKindCmyk = 1, kKindLab = 2;
constexpr int32_t kCustomWhite = 5;  // the last white-point list item

enum Path : int { kPathProfile1, kPathProfile2, kPathTable1, kPathTable2, kPathCount };

struct State {
    int32_t kind;        // kKindCmyk or kKindLab
    int32_t method;      // list index 0..4
    int32_t whitePoint;  // list index 0..5 (kCustomWhite)
    double x, y;         // custom white point
    int32_t gcr;         // 0..1000 (CMYK)
    int32_t bgrOrder;    // check box 1001
    int32_t fromRgb;     // check box 1002
    int32_t labTable;    // CIELab radio: 0 "RGB To CIELab" (134), 1 "CIELab To RGB" (135)
    // UTF-8: 117, 119, 121 or 130, 132.
    char paths[kPathCount][kPathBytes];
};

// The module's entry "ktclr_dialog_run": shows the dialog for state->kind.
// 1 after OK (state updated), 0 after Cancel, -1 when there is no display.
using RunFn = int (*)(State* state);
inline constexpr const char* kModuleName = "ktclr-dialog-gtk3";
inline constexpr const char* kRunName = "ktclr_dialog_run";

}  // namespace kt::dialog
