// Emulation grids: choosing the built-in grid for a pair, or loading a custom
// grid from a TIFF file into the handle.
#pragma once

#include "ktclr/convert.h"

namespace kt::color {

// Whether the grid machinery is part of this build yet. Until it is, the
// selectors answer ERR_BAD_METHOD.
bool EmulationAvailable() noexcept;

// custom false: sets h->builtinEmulationTable for the pair (or nothing).
// custom true: copies p->emulationTablePath into the handle and loads the
// grid into h->customEmulationTable.
KtStatus SelectEmulationTable(ClrHandle* h, int src, int dst, const ConversionParams* p, bool custom) noexcept;

void FreeCustomEmulationTable(ClrHandle* h) noexcept;

}  // namespace kt::color
