/* ktclr: the conversion settings dialog.
 *
 * Vx_ClrDlg shows a modal dialog in which an end user edits a
 * ConversionParams record for a CMYK or a CIELab conversion. The dialog is
 * a GTK 3 window built by a separate module, ktclr-modules/ktclr-dialog-gtk3.so
 * beside libktclr.so, loaded on the first call; the library itself does not
 * link GTK. When the module initializes GTK itself it first calls
 * gtk_disable_setlocale(), so showing the dialog leaves the process locale
 * alone; a GTK application keeps its own setup. Calls are serialized; in a
 * GTK application make them from its main thread.
 *
 * Where the dialog keeps its values:
 *   method                      the method list (METHOD_BUILTIN .. METHOD_CUSTOM_EMULATION;
 *                               any other value opens as METHOD_BUILTIN)
 *   iccOptions->values[0]       the white point: KTCLR_WHITE_D50 .. KTCLR_WHITE_D93 or
 *                               KTCLR_WHITE_CUSTOM (any other value opens as D50)
 *   iccOptions->values[1..2]    custom x, a double in host byte order (copy with memcpy)
 *   iccOptions->values[3..4]    custom y, likewise; 0.0 for a standard illuminant
 *   cmykOptions->value          the GCR (black generation, 0..1000, larger values open as
 *                               1000; CMYK dialog only,
 *                               which also sets validMask bit 1 so that
 *                               Vx_ClrSetConversionParams applies it)
 *   cmykOptions->validMask      KTCLR_DLG_BGR_ORDER, KTCLR_DLG_FROM_RGB (both dialogs)
 *   srcProfilePath, dstProfilePath
 *       CMYK dialog: "CMYK Profile" is the source and "RGB profile" the
 *       destination, swapped when "RGB to CMYK" is checked; CIELab dialog:
 *       "Source input profile" and "Destination output profile".
 *   emulationTablePath
 *       CMYK dialog: "Destination RGB table"; CIELab dialog: the table of the
 *       selected radio button ("RGB To CIELab": "Destination CIELab table",
 *       "CIELab To RGB": "Destination RGB table"). On opening the record's
 *       table shows under the radio button that KTCLR_DLG_FROM_RGB selects.
 * Nothing else is written: emulationMethod (which Vx_ClrInit wants at 8
 * with METHOD_BUILTIN_EMULATION), prepareMethods and the other sub-records
 * stay as they are.
 *
 * Controls enabled for each method (the others are disabled):
 *   every method        method list, GCR, "BGR Order", "RGB to CMYK" / "RGB to LAB"
 *   built-in, ICC       white point; x and y only for the custom point
 *   custom ICC          white point (as above) and the two profile paths with their browse buttons
 *   built-in emulation  nothing more (the tables fix the white point)
 *   custom emulation    CMYK: the RGB table path; CIELab: both radio buttons and
 *                       the path of the selected one
 *
 * Keys: Enter presses OK (unless a push button has the focus), Escape and
 * closing the window cancel. Each control's GTK widget name is its number
 * ("116", "1001", OK "1", Cancel "2", the CIELab tables' frame "129");
 * "126" is one GtkSpinButton holding both the GCR edit and its up-down
 * control (127). */
#ifndef KTCLR_DIALOG_H
#define KTCLR_DIALOG_H

#include "export.h"
#include "status.h"
#include "convert.h"
#include "narrow.h"

KTCLR_EXTERN_C_BEGIN

/* Dialog kinds. */
#define KTCLR_DLG_CMYK 1
#define KTCLR_DLG_LAB 2

/* White points in IccOptions.values[0]. */
#define KTCLR_WHITE_CUSTOM 1u
#define KTCLR_WHITE_D50 50u
#define KTCLR_WHITE_D55 55u
#define KTCLR_WHITE_D65 65u
#define KTCLR_WHITE_D75 75u
#define KTCLR_WHITE_D93 93u

/* Flags in CmykOptions.validMask; the conversion engine reads only bit 1. */
#define KTCLR_DLG_BGR_ORDER 2u /* "BGR Order": pixels in B, G, R order */
#define KTCLR_DLG_FROM_RGB 4u  /* "RGB to CMYK" / "RGB to LAB": RGB is the source */

/* The dialog cannot be shown: its module is missing or lacks its entry
 * point, or GTK cannot open a display. Nothing was changed. */
#define KTCLR_DLG_UNAVAILABLE ERR_CODEC_FUNCTION_MISSING

/* Shows the CMYK (kind 1) or CIELab (kind 2) settings dialog and waits for
 * the user; any other kind returns STATUS_OK at once. parent and reserved
 * are ignored on Linux (the dialog is its own top-level window). params
 * may be null: the dialog then opens with METHOD_BUILTIN, D50, GCR 175, no
 * flags and empty paths, and OK writes nothing. When given, params must be
 * readable and writable over its size field's extent (1624 or 1628), and
 * params->cmykOptions (12 bytes) and params->iccOptions (the white point,
 * 20 bytes) must be present, readable and writable; else
 * ERR_INVALID_PARAMETER. Returns STATUS_OK after OK, with the choices
 * written back as listed above; 0 after Cancel, Escape or closing, with
 * nothing changed; KTCLR_DLG_UNAVAILABLE when the dialog cannot be shown;
 * ERR_ALLOC when a path cannot be converted for lack of memory. */
KTCLR_API KtStatus Vx_ClrDlg(int kind, void* parent, void* reserved, ConversionParams* params);

/* Vx_ClrDlg with narrow paths: params is converted to the wide record
 * (paths in the locale's multibyte encoding, as the other narrow twins),
 * shown, and after OK method, iccOptions, the three paths, both memory
 * pointers and the five trailing values are copied back. A null params
 * passes null; params neither readable nor writable over its size:
 * ERR_INVALID_PARAMETER. */
KTCLR_API KtStatus Vx_ClrDlgA(int kind, void* parent, void* reserved, ConversionParamsA* params);

/* Keeps module and returns it. On Linux the dialogs are built in code by
 * the GTK module, so there are no templates to load and the value is not
 * used. */
KTCLR_API void* SetResModule(void* module);

KTCLR_EXTERN_C_END

#endif
