// JPEG: the APP2 "ICC_PROFILE" segments before the first scan.
#include <cstring>

#include "formats/jpeg_markers.h"
#include "storage/readers.h"

namespace kt::storage {
namespace {

constexpr char kName[] = "ICC_PROFILE";  // 11 characters, then a zero byte

uint32_t Be32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3];
}

// Pieces are joined in the order the segments stand in the file; their
// sequence numbers and counts (bytes 12 and 13) are not looked at, so a file
// whose segments are out of sequence yields them in file order (pinned by the
// out-of-order test). A segment that holds a whole profile right behind the
// 11 characters, with no number bytes, is taken as it is when it comes first.
int OnMarker(uint8_t code, uint32_t n, const uint8_t* data, void* context) {
    if (code != formats::jpeg::kApp2) return 1;
    auto& gather = *static_cast<Gather*>(context);
    if (n >= 15 && std::memcmp(data, kName, 11) == 0 && !gather.record()->profileData &&
        static_cast<uint64_t>(Be32(data + 11)) + 11 == n)
        return gather.Append(data + 11, n - 11) ? 1 : ERR_NO_MEMORY;
    if (n >= 14 && std::memcmp(data, kName, 12) == 0)
        return gather.Append(data + 14, n - 14) ? 1 : ERR_NO_MEMORY;
    return 1;
}

}  // namespace

KtStatus ReadJpegProfile(file::File& file, Gather& gather) noexcept {
    formats::jpeg::MarkerList* list = nullptr;
    KtStatus status = formats::jpeg::Read(file, mem::Module::iccload, &list);
    if (status != STATUS_OK) return status;
    status = formats::jpeg::Enumerate(list, OnMarker, &gather);
    formats::jpeg::Free(list);
    return status;
}

}  // namespace kt::storage
