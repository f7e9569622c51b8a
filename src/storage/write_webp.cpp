#include <cstring>

#include "formats/riff_chunks.h"
#include "ktclr/status.h"
#include "storage/replace_region.h"
#include "storage/writers.h"

namespace kt::storage {
namespace {

namespace riff = formats::riff;
constexpr KtStatus kShortRiffHead = -9;  // the file ends inside its 12-byte RIFF head
constexpr uint8_t kIccFlag = 0x20, kAlphaFlag = 0x10;

void Le32(uint8_t* p, uint64_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
}
bool Is(const riff::ChunkHead& h, const char* id) { return std::memcmp(h.id, id, 4) == 0; }

// "RIFF", a little-endian size of at least 20, "WEBP".
bool IsWebpHead(const uint8_t* p) {
    const uint32_t size = p[4] | p[5] << 8 | p[6] << 16 | static_cast<uint32_t>(p[7]) << 24;
    return std::memcmp(p, "RIFF", 4) == 0 && size >= 20 && std::memcmp(p + 8, "WEBP", 4) == 0;
}

// Reads the head at offset 0: STATUS_OK, or the status of a failed or short read.
KtStatus ReadHead(file::File& f, uint8_t head[12]) {
    const std::int64_t got = f.Seek(0) ? f.Read(head, 12) : -1;
    return got <= 0 ? ERR_FILE_READ : got < 12 ? kShortRiffHead : STATUS_OK;
}

bool WriteHead(file::File& f, const char* id, uint64_t size) {
    uint8_t head[8];
    std::memcpy(head, id, 4);
    Le32(head + 4, size);
    return f.WriteAll(head, 8);
}

// In place on the copy: the chunk body replaced, or a chunk written where the
// walk ended; the RIFF size follows.
KtStatus WriteInPlace(file::SafeReplace& edit, ProfileBytes profile) {
    KtStatus status = edit.Copy(0, edit.OriginalSize());
    if (status != STATUS_OK) return status;
    file::File& t = edit.Temp();
    uint8_t head[12];
    if ((status = ReadHead(t, head)) != STATUS_OK) return status;
    if (!IsWebpHead(head)) return STATUS_OK;  // not a RIFF WebP head: nothing is written
    riff::Walker walk(t);
    if (!walk.Begin("WEBP")) return ERR_FILE_READ;
    riff::ChunkHead h{};
    std::int64_t end = 12;
    while ((status = walk.Next(&h)) == 1 && !Is(h, "ICCP")) {
        end = h.offset + 8 + static_cast<std::int64_t>(riff::Padded(h.size));
        if (!walk.Skip(h)) return ERR_FILE_SEEK;
    }
    if (status < 0) return status;
    uint64_t riffSize = walk.riffSize();
    uint8_t size[4];
    Le32(size, profile.size);
    if (status == 1) {
        riffSize = riffSize + profile.size - riff::Padded(h.size);
        if (riffSize > 0xFFFFFFFFu) return ERR_FILE_WRITE;
        if (!t.Seek(h.offset + 4)) return ERR_FILE_SEEK;
        if (!t.WriteAll(size, 4)) return ERR_FILE_WRITE;
        status = ReplaceRegion(t, h.offset + 8, riff::Padded(h.size), profile.data, profile.size);
        if (status != STATUS_OK) return status;
    } else {
        riffSize += uint64_t{profile.size} + 8;
        if (riffSize > 0xFFFFFFFFu) return ERR_FILE_WRITE;
        if (!t.Seek(end)) return ERR_FILE_SEEK;
        if (!WriteHead(t, "ICCP", profile.size) || !t.WriteAll(profile.data, profile.size)) return ERR_FILE_WRITE;
    }
    if (riffSize != walk.riffSize()) {
        uint8_t field[4];
        Le32(field, riffSize);
        if (!t.Seek(4)) return ERR_FILE_SEEK;
        if (!t.WriteAll(field, 4)) return ERR_FILE_WRITE;
    }
    return STATUS_OK;
}

// The VP8X chunk a simple (VP8 or VP8L only) file gets: the canvas of its
// bitstream, the alpha bit of a lossless one.
KtStatus MakeVp8x(file::File& in, const riff::ChunkHead& image, uint8_t vp8x[10]) {
    uint8_t b[10] = {};
    if (image.size < 10 || !in.Seek(image.offset + 8) || !in.ReadExact(b, sizeof b)) return ERR_FILE_READ;
    uint32_t width, height, alpha = 0;
    if (Is(image, "VP8 ") && b[3] == 0x9D && b[4] == 0x01 && b[5] == 0x2A) {
        width = (b[6] | b[7] << 8) & 0x3FFF;
        height = (b[8] | b[9] << 8) & 0x3FFF;
    } else if (Is(image, "VP8L") && b[0] == 0x2F) {
        const uint32_t bits = b[1] | b[2] << 8 | b[3] << 16 | static_cast<uint32_t>(b[4]) << 24;
        width = (bits & 0x3FFF) + 1;
        height = ((bits >> 14) & 0x3FFF) + 1;
        alpha = (bits >> 28) & 1;
    } else {
        return ERR_FILE_READ;
    }
    if (width == 0 || height == 0) return ERR_FILE_READ;
    std::memset(vp8x, 0, 10);
    vp8x[0] = static_cast<uint8_t>(alpha ? kAlphaFlag : 0);
    for (int i = 0; i < 3; ++i) {
        vp8x[4 + i] = static_cast<uint8_t>((width - 1) >> (8 * i));
        vp8x[7 + i] = static_cast<uint8_t>((height - 1) >> (8 * i));
    }
    return STATUS_OK;
}

// Rebuilt in order: RIFF head, VP8X with the ICC bit, ICCP (padded), every
// other chunk as it was, then whatever followed the RIFF data.
KtStatus WriteByContainerRules(file::SafeReplace& edit, ProfileBytes profile) {
    file::File& in = edit.Original();
    uint8_t head[12];
    KtStatus status = ReadHead(in, head);
    if (status != STATUS_OK) return status;
    if (!IsWebpHead(head)) return WriteInPlace(edit, profile);
    riff::Walker walk(in);
    if (!walk.Begin("WEBP")) return ERR_FILE_READ;
    riff::ChunkHead h{}, vp8x{}, image{};
    bool haveVp8x = false, haveImage = false;
    uint64_t kept = 0;
    std::int64_t end = 12;
    while ((status = walk.Next(&h)) == 1) {
        if (Is(h, "VP8X") && !haveVp8x) {
            vp8x = h;
            haveVp8x = true;
        } else if (!Is(h, "ICCP")) {
            if (!haveImage && (Is(h, "VP8 ") || Is(h, "VP8L"))) {
                image = h;
                haveImage = true;
            }
            kept += 8 + riff::Padded(h.size);
        }
        end = h.offset + 8 + static_cast<std::int64_t>(riff::Padded(h.size));
        if (!walk.Skip(h)) return ERR_FILE_SEEK;
    }
    if (status < 0) return status;
    uint8_t made[10];
    if (haveVp8x && vp8x.size < 10) return ERR_FILE_READ;
    if (!haveVp8x && (!haveImage || (status = MakeVp8x(in, image, made)) != STATUS_OK)) return ERR_FILE_READ;
    const uint64_t vp8xSize = haveVp8x ? vp8x.size : 10;
    const uint64_t riffSize = 4 + 8 + riff::Padded(static_cast<uint32_t>(vp8xSize)) + 8 + riff::Padded(profile.size) + kept;
    if (riffSize > 0xFFFFFFFFu) return ERR_FILE_WRITE;

    file::File& t = edit.Temp();
    Le32(head + 4, riffSize);
    const uint8_t zero = 0;
    uint8_t flags = 0;
    if (!t.WriteAll(head, sizeof head) || !WriteHead(t, "VP8X", vp8xSize)) return ERR_FILE_WRITE;
    if (haveVp8x) {
        if (!in.Seek(vp8x.offset + 8) || !in.ReadExact(&flags, 1)) return ERR_FILE_READ;
        flags |= kIccFlag;
        if (!t.WriteAll(&flags, 1)) return ERR_FILE_WRITE;
        if ((status = edit.Copy(vp8x.offset + 9, vp8x.size - 1)) != STATUS_OK) return status;
    } else {
        made[0] |= kIccFlag;
        if (!t.WriteAll(made, sizeof made)) return ERR_FILE_WRITE;
    }
    if ((vp8xSize & 1 && !t.WriteAll(&zero, 1)) || !WriteHead(t, "ICCP", profile.size) ||
        !t.WriteAll(profile.data, profile.size) || (profile.size & 1 && !t.WriteAll(&zero, 1)))
        return ERR_FILE_WRITE;
    // The other chunks, a pad byte missing at the end of the file supplied.
    if (!walk.Begin("WEBP")) return ERR_FILE_READ;
    while ((status = walk.Next(&h)) == 1) {
        if (!Is(h, "ICCP") && !(haveVp8x && h.offset == vp8x.offset)) {
            const std::int64_t whole = 8 + static_cast<std::int64_t>(riff::Padded(h.size));
            const std::int64_t have = edit.OriginalSize() - h.offset < whole ? edit.OriginalSize() - h.offset : whole;
            if ((status = edit.Copy(h.offset, have)) != STATUS_OK) return status;
            if (have < whole && !t.WriteAll(&zero, 1)) return ERR_FILE_WRITE;
        }
        if (!walk.Skip(h)) return ERR_FILE_SEEK;
    }
    if (status < 0) return status;
    std::int64_t riffEnd = 8 + static_cast<std::int64_t>(walk.riffSize());
    if (riffEnd < end) riffEnd = end;
    return riffEnd < edit.OriginalSize() ? edit.Copy(riffEnd, edit.OriginalSize() - riffEnd) : STATUS_OK;
}

}  // namespace

KtStatus WriteWebpProfile(file::SafeReplace& edit, ProfileBytes profile, bool containerRules) noexcept {
    return containerRules ? WriteByContainerRules(edit, profile) : WriteInPlace(edit, profile);
}

}  // namespace kt::storage
