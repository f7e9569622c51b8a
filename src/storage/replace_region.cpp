#include "storage/replace_region.h"

#include <unistd.h>

#include "ktclr/status.h"

namespace kt::storage {
namespace {
constexpr auto kModule = mem::Module::iccsave;

// Moves `count` bytes from `from` to `to` in blocks: front to back when
// moving down, back to front when moving up, so no block overwrites bytes
// still to be moved.
KtStatus Move(file::File& f, std::int64_t from, std::int64_t to, std::int64_t count, uint8_t* buffer,
              std::int64_t block) {
    const bool up = to > from;
    for (std::int64_t done = 0; done < count;) {
        const std::int64_t n = count - done < block ? count - done : block;
        const std::int64_t offset = up ? count - done - n : done;
        if (!f.Seek(from + offset)) return ERR_FILE_SEEK;
        if (!f.ReadExact(buffer, static_cast<std::size_t>(n))) return ERR_FILE_READ;
        if (!f.Seek(to + offset)) return ERR_FILE_SEEK;
        if (!f.WriteAll(buffer, static_cast<std::size_t>(n))) return ERR_FILE_WRITE;
        done += n;
    }
    return STATUS_OK;
}

}  // namespace

KtStatus ReplaceRegion(file::File& f, std::int64_t at, std::uint64_t oldSize, const std::uint8_t* bytes,
                       std::uint64_t newSize) noexcept {
    const std::int64_t size = f.Size();
    if (size < 0 || at < 0 || at > size) return ERR_FILE_SEEK;
    if (oldSize == newSize) {
        if (!f.Seek(at)) return ERR_FILE_SEEK;
        return f.WriteAll(bytes, newSize) ? STATUS_OK : ERR_FILE_WRITE;
    }
    const std::uint64_t room = static_cast<std::uint64_t>(size - at);
    const std::int64_t tailFrom = at + static_cast<std::int64_t>(oldSize < room ? oldSize : room);
    const std::int64_t tail = size - tailFrom, tailTo = at + static_cast<std::int64_t>(newSize);
    std::uint64_t largest = oldSize > newSize ? oldSize : newSize;
    if (largest < 8192) largest = 8192;
    const std::int64_t block = static_cast<std::int64_t>(2 * largest);
    auto* buffer = static_cast<uint8_t*>(KT_ALLOC(static_cast<std::size_t>(block)));
    if (!buffer) return ERR_NO_MEMORY;
    KtStatus status = STATUS_OK;
    if (newSize < oldSize) {
        // The new bytes, then the tail copied down, then the file ends.
        if (!f.Seek(at)) status = ERR_FILE_SEEK;
        else if (!f.WriteAll(bytes, newSize)) status = ERR_FILE_WRITE;
        if (status == STATUS_OK) status = Move(f, tailFrom, tailTo, tail, buffer, block);
        if (status == STATUS_OK && ftruncate(f.fd(), static_cast<off_t>(tailTo + tail)) != 0) status = ERR_FILE_WRITE;
    } else {
        // The tail moved up from the end backwards, then the new bytes.
        status = Move(f, tailFrom, tailTo, tail, buffer, block);
        if (status == STATUS_OK && !f.Seek(at)) status = ERR_FILE_SEEK;
        if (status == STATUS_OK && !f.WriteAll(bytes, newSize)) status = ERR_FILE_WRITE;
    }
    KT_FREE(buffer);
    return status;
}

}  // namespace kt::storage
