// Saving is not built yet: every format answers that it has no writer.
#include "ktclr/storage.h"

extern "C" KTCLR_API KtStatus Vx_SaveICCProfile(const KtChar16*, const ICCProfileRecord*, const Vx_SaveFileOptions*) {
    return ERR_FORMAT_NOT_SUPPORTED;
}
