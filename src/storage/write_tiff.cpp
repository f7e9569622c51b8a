// Tag 34675 without libtiff's rewrite of the whole file: the profile and a
// copy of the first directory with the tag added are appended, and the
// header points at the copy. Nothing else moves, so every other tag, its
// values, the strips and the later pages stay where they were.
#include <cstring>

#include "ktclr/status.h"
#include "storage/writers.h"

namespace kt::storage {
namespace {

constexpr auto kModule = mem::Module::iccsave;
constexpr uint16_t kIccTag = 34675;
constexpr uint16_t kUndefined = 7;

// Numbers in the file's byte order and its offset width.
struct Layout {
    bool little;
    bool big;  // BigTIFF: 8-byte counts and offsets, 20-byte entries
    unsigned offsetBytes() const { return big ? 8 : 4; }
    unsigned countBytes() const { return big ? 8 : 2; }
    unsigned entryBytes() const { return big ? 20 : 12; }
    uint64_t Get(const uint8_t* p, unsigned n) const {
        uint64_t v = 0;
        for (unsigned i = 0; i < n; ++i) v |= uint64_t{p[little ? i : n - 1 - i]} << (8 * i);
        return v;
    }
    void Put(uint8_t* p, uint64_t v, unsigned n) const {
        for (unsigned i = 0; i < n; ++i) p[little ? i : n - 1 - i] = static_cast<uint8_t>(v >> (8 * i));
    }
};

bool ReadAt(file::File& f, std::int64_t offset, uint8_t* out, std::size_t n) {
    return f.Seek(offset) && f.ReadExact(out, n);
}

}  // namespace

KtStatus WriteTiffProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept {
    file::File& in = edit.Original();
    const std::int64_t size = edit.OriginalSize();
    uint8_t head[16];
    if (size < 8 || !ReadAt(in, 0, head, size < 16 ? 8 : 16)) return ERR_FILE_READ;
    Layout l{head[0] == 'I', false};
    l.big = l.Get(head + 2, 2) == 43;
    const unsigned headBytes = l.big ? 16 : 8;
    if (size < headBytes) return ERR_FILE_READ;
    const uint64_t ifd = l.Get(head + headBytes - l.offsetBytes(), l.offsetBytes());

    // The first directory, checked against the file's real size.
    uint8_t countField[8];
    if (ifd < headBytes || ifd > static_cast<uint64_t>(size) - l.countBytes() || !ReadAt(in, static_cast<std::int64_t>(ifd), countField, l.countBytes()))
        return ERR_FILE_READ;
    const uint64_t count = l.Get(countField, l.countBytes());
    const uint64_t available = static_cast<uint64_t>(size) - ifd - l.countBytes();
    if (count > available / l.entryBytes() || count * l.entryBytes() + l.offsetBytes() > available) return ERR_FILE_READ;
    const std::size_t oldBytes = static_cast<std::size_t>(count) * l.entryBytes() + l.offsetBytes();
    const std::size_t newBytes = l.countBytes() + oldBytes + l.entryBytes();
    auto* old = static_cast<uint8_t*>(KT_ALLOC(oldBytes));
    auto* fresh = static_cast<uint8_t*>(KT_ALLOC_ZERO(newBytes));
    KtStatus status = STATUS_OK;
    if (!old || !fresh) status = ERR_NO_MEMORY;
    else if (!ReadAt(in, static_cast<std::int64_t>(ifd) + l.countBytes(), old, oldBytes)) status = ERR_FILE_READ;

    // Where the appended parts go: the profile (unless it fits in the entry)
    // and the directory, each on an even offset.
    const bool inline_ = profile.size <= l.offsetBytes();
    const uint64_t profileAt = static_cast<uint64_t>(size) + (size & 1);
    const uint64_t profileEnd = inline_ ? profileAt : profileAt + profile.size;
    const uint64_t ifdAt = profileEnd + (profileEnd & 1);
    if (status == STATUS_OK && !l.big && ifdAt + newBytes > 0xFFFFFFFFu) status = ERR_FILE_WRITE;  // past 4 GiB
    if (status == STATUS_OK && !l.big && count >= 0xFFFF) status = ERR_FILE_WRITE;

    if (status == STATUS_OK) {
        // The old entries in order, an earlier profile tag dropped, the new
        // one before the first larger tag number.
        uint8_t* out = fresh + l.countBytes();
        uint64_t entries = 0;
        bool placed = false;
        auto putIcc = [&] {
            l.Put(out, kIccTag, 2);
            l.Put(out + 2, kUndefined, 2);
            l.Put(out + 4, profile.size, l.big ? 8 : 4);
            uint8_t* value = out + (l.big ? 12 : 8);
            if (inline_) {
                if (profile.size) std::memcpy(value, profile.data, profile.size);
            } else {
                l.Put(value, profileAt, l.offsetBytes());
            }
            out += l.entryBytes();
            ++entries;
            placed = true;
        };
        for (uint64_t i = 0; i < count; ++i) {
            const uint8_t* entry = old + i * l.entryBytes();
            const uint64_t tag = l.Get(entry, 2);
            if (tag == kIccTag) continue;
            if (!placed && tag > kIccTag) putIcc();
            std::memcpy(out, entry, l.entryBytes());
            out += l.entryBytes();
            ++entries;
        }
        if (!placed) putIcc();
        std::memcpy(out, old + count * l.entryBytes(), l.offsetBytes());  // the next directory: later pages
        l.Put(fresh, entries, l.countBytes());
        const std::size_t written = l.countBytes() + static_cast<std::size_t>(entries) * l.entryBytes() + l.offsetBytes();

        uint8_t pointer[8], zero = 0;
        l.Put(pointer, ifdAt, l.offsetBytes());
        const unsigned at = headBytes - l.offsetBytes();
        file::File& t = edit.Temp();
        if ((status = edit.Copy(0, at)) == STATUS_OK && !t.WriteAll(pointer, l.offsetBytes())) status = ERR_FILE_WRITE;
        if (status == STATUS_OK) status = edit.Copy(headBytes, size - headBytes);
        if (status == STATUS_OK && ((size & 1 && !t.WriteAll(&zero, 1)) ||
                                    (!inline_ && !t.WriteAll(profile.data, profile.size)) ||
                                    (profileEnd & 1 && !t.WriteAll(&zero, 1)) || !t.WriteAll(fresh, written)))
            status = ERR_FILE_WRITE;
    }
    KT_FREE(old);
    KT_FREE(fresh);
    return status;
}

}  // namespace kt::storage
