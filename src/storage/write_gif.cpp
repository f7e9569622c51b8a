#include <cstring>

#include "ktclr/status.h"
#include "storage/writers.h"

namespace kt::storage {
namespace {
constexpr auto kModule = mem::Module::iccsave;
// Introducer, application label, block size 11, the identifier and the
// authentication code as the byte values 0, 1, 2.
constexpr uint8_t kHead[14] = {0x21, 0xFF, 0x0B, 'I', 'C', 'C', 'R', 'G', 'B', 'G', '1', 0, 1, 2};
constexpr uint8_t kTrailer = 0x3B;
}  // namespace

// The extension replaces the file's last byte (its trailer) and ends with the
// terminator and a new trailer. An earlier profile extension stays.
KtStatus WriteGifProfile(file::SafeReplace& edit, ProfileBytes profile) noexcept {
    const std::size_t blocks = profile.size / 255 + (profile.size % 255 ? 1 : 0);
    const std::size_t total = sizeof kHead + blocks + profile.size + 2;
    auto* out = static_cast<uint8_t*>(KT_ALLOC(total));
    if (!out) return ERR_NO_MEMORY;
    std::memcpy(out, kHead, sizeof kHead);
    uint8_t* p = out + sizeof kHead;
    for (uint32_t done = 0; done < profile.size;) {
        const uint32_t n = profile.size - done < 255 ? profile.size - done : 255;
        *p++ = static_cast<uint8_t>(n);
        std::memcpy(p, profile.data + done, n);
        p += n;
        done += n;
    }
    *p++ = 0;
    *p++ = kTrailer;
    KtStatus status = edit.Copy(0, edit.OriginalSize() - 1);
    if (status == STATUS_OK && !edit.Temp().WriteAll(out, total)) status = ERR_FILE_WRITE;
    KT_FREE(out);
    return status;
}

}  // namespace kt::storage
