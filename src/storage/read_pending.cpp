#include "storage/readers.h"
namespace kt::storage {
KtStatus ReadTiffProfile(file::File&, Gather&) noexcept { return ERR_FORMAT_NOT_SUPPORTED; }
KtStatus ReadPostScriptProfile(file::File&, Gather&) noexcept { return ERR_FORMAT_NOT_SUPPORTED; }
KtStatus ReadMarker56Profile(file::File&, Gather&) noexcept { return ERR_FORMAT_NOT_SUPPORTED; }
KtStatus ReadPngProfile(file::File&, Gather&) noexcept { return ERR_CODEC_FUNCTION_MISSING; }
KtStatus ReadPhotoshopProfile(file::File&, Gather&) noexcept { return ERR_FORMAT_NOT_SUPPORTED; }
KtStatus ReadWebpProfile(file::File&, Gather&) noexcept { return ERR_FORMAT_NOT_SUPPORTED; }
}  // namespace kt::storage
