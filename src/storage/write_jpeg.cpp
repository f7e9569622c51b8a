#include <cstring>

#include "formats/jpeg_markers.h"
#include "ktclr/status.h"
#include "storage/writers.h"

namespace kt::storage {
namespace {

constexpr auto kModule = mem::Module::iccsave;
namespace jpeg = formats::jpeg;

// Profile bytes per segment: 65,533 bytes of segment data less the 14-byte
// head. The segment count is the size divided by this, rounded up; every
// piece is full but the last. (A size 1 to 13 bytes beyond a multiple of it
// thus ends with a short last segment, never an oversized one.)
constexpr uint32_t kPiece = 65519;
constexpr uint32_t kHead = 14;
constexpr uint8_t kIccName[12] = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0};
constexpr KtStatus kNoSegmentBuffer = 8;

bool IsIccSegment(const jpeg::Marker& m) {
    return m.code == jpeg::kApp2 && m.length >= 11 && std::memcmp(m.data, kIccName, 11) == 0;
}

// The new segments stand after the leading APP0 (JFIF) and APP1 (Exif, XMP)
// segments, where readers look for them.
std::size_t InsertionPoint(const jpeg::MarkerList* markers) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < jpeg::Count(markers); ++i) {
        const jpeg::Marker& m = *jpeg::At(markers, i);
        if (IsIccSegment(m)) continue;
        if (m.code != 0xE0 && m.code != 0xE1) break;
        at = i + 1;
    }
    return at;
}

bool WriteMarker(file::File& out, const jpeg::Marker& m) {
    const uint32_t field = m.length + 2;
    const uint8_t head[4] = {0xFF, m.code, static_cast<uint8_t>(field >> 8), static_cast<uint8_t>(field)};
    return out.WriteAll(head, m.standalone ? 2 : 4) && (!m.length || out.WriteAll(m.data, m.length));
}

// The start of image, the original's segments with `fresh` in place of its
// ICC_PROFILE ones, then the scan and everything after it unchanged.
KtStatus Rewrite(file::SafeReplace& edit, const jpeg::MarkerList* fresh) {
    jpeg::MarkerList* markers = nullptr;
    KtStatus status = jpeg::Read(edit.Original(), kModule, &markers);
    if (status != STATUS_OK) return status;
    const std::size_t at = InsertionPoint(markers), count = jpeg::Count(markers);
    static constexpr uint8_t kSoi[2] = {0xFF, 0xD8};
    bool ok = edit.Temp().WriteAll(kSoi, 2);
    for (std::size_t i = 0; ok && i <= count; ++i) {
        if (i == at) ok = jpeg::Write(fresh, edit.Temp());
        if (ok && i < count && !IsIccSegment(*jpeg::At(markers, i))) ok = WriteMarker(edit.Temp(), *jpeg::At(markers, i));
    }
    const std::int64_t scan = jpeg::ScanOffset(markers);
    jpeg::Free(markers);
    if (!ok) return ERR_FILE_WRITE;
    return edit.Copy(scan, edit.OriginalSize() - scan);
}

}  // namespace

KtStatus WriteJpegProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept {
    jpeg::MarkerList* fresh = jpeg::Create(kModule);
    if (!fresh) return ERR_NO_MEMORY;
    const uint32_t segments = profile.size / kPiece + (profile.size % kPiece ? 1 : 0);
    auto* buffer = static_cast<uint8_t*>(KT_ALLOC_ZERO(kHead + kPiece));
    if (!buffer) {
        jpeg::Free(fresh);
        return kNoSegmentBuffer;
    }
    KtStatus status = STATUS_OK;
    uint32_t remaining = profile.size;
    for (uint32_t i = 1; i <= segments && status == STATUS_OK; ++i) {
        const uint32_t piece = remaining < kPiece ? remaining : kPiece;
        std::memcpy(buffer, kIccName, sizeof kIccName);
        buffer[12] = static_cast<uint8_t>(i);  // one byte each: a count above 255 wraps
        buffer[13] = static_cast<uint8_t>(segments);
        std::memcpy(buffer + kHead, profile.data + (profile.size - remaining), piece);
        status = jpeg::Insert(fresh, -1, jpeg::kApp2, piece + kHead, buffer);
        remaining -= piece;
    }
    if (status == STATUS_OK) status = Rewrite(edit, fresh);
    KT_FREE(buffer);
    jpeg::Free(fresh);
    return status;
}

}  // namespace kt::storage
