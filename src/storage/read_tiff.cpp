// TIFF and BigTIFF: tag 34675 of the first directory.
#include "formats/tiff_tags.h"
#include "storage/readers.h"

namespace kt::storage {

KtStatus ReadTiffProfile(file::File& file, Gather& gather) noexcept {
    using namespace formats::tiff;
    TagInfo info;
    KtStatus status = ReadTag(file, kTagIccProfile, &info, nullptr, 0);
    if (status < 1 || info.byteCount == 0) return status;
    uint8_t* data = gather.Take(info.byteCount);  // bounded: ReadTag checked it against the file size
    if (!data) return ERR_NO_MEMORY;
    return ReadTag(file, kTagIccProfile, &info, data, info.byteCount);
}

}  // namespace kt::storage
