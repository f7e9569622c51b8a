// The process-wide loader of the PNG codec module.
#pragma once

namespace kt::storage::testing {
// Unloads the PNG codec module and makes the next PNG load look for it in
// `dir` (null: the module folder beside the library). Not thread-safe.
void ResetPngCodec(const char* dir) noexcept;
}  // namespace kt::storage::testing
