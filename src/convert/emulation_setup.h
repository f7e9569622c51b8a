// Choosing a handle's emulation grid: a built-in one by pair (the space
// table's grid entries), or a custom one read from the caller's TIFF file
// and owned by the handle.
#pragma once

#include "ktclr/convert.h"

namespace kt::convert {

// custom false: sets h->builtinEmulationTable for the pair (or nothing).
// custom true: copies p->emulationTablePath into the handle and loads the
// grid into h->customEmulationTable.
KtStatus SelectEmulationTable(ClrHandle* h, int src, int dst, const ConversionParams* p, bool custom) noexcept;

void FreeCustomEmulationTable(ClrHandle* h) noexcept;

}  // namespace kt::convert
