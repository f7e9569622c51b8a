// Vx_ClrDlgA: the narrow record widened, shown, and copied back after OK.
#include "convert/narrow_params.h"
#include "ktclr/dialog.h"
#include "platform/probe.h"

extern "C" KTCLR_API KtStatus Vx_ClrDlgA(int kind, void* parent, void* reserved, ConversionParamsA* params) {
    if (!params) return Vx_ClrDlg(kind, parent, reserved, nullptr);
    if (kt::platform::IsBadReadPtr(params, sizeof *params) || kt::platform::IsBadWritePtr(params, sizeof *params))
        return ERR_INVALID_PARAMETER;
    ConversionParams wide;
    kt::convert::ParamsFromNarrow(*params, &wide);
    const KtStatus status = Vx_ClrDlg(kind, parent, reserved, &wide);
    if (status == STATUS_OK) kt::convert::ParamsToNarrow(wide, params);
    return status;
}
