// Format 56: segments introduced by a byte 0xE0, a 16-bit big-endian length L
// and a 32-bit big-endian type: types 0 and 1 carry L - 4 profile bytes, type
// 2 closes the profile, anything else is not a segment and the scan goes on
// behind its 0xE0. A failed or short read, the end of the file included,
// ends the scan with ERR_PROFILE_SEGMENT_READ.
#include "platform/alloc.h"
#include "storage/block_reader.h"
#include "storage/readers.h"

namespace kt::storage {
namespace {

constexpr auto kModule = mem::Module::iccload;
constexpr std::size_t kScratch = 32767;

// Status of one scan, the scratch buffer already allocated.
KtStatus Scan(BlockReader& in, uint8_t* scratch, Gather& gather) {
    for (;;) {
        if (!in.Ensure(1)) return ERR_PROFILE_SEGMENT_READ;
        uint8_t c = *in.Peek();
        in.Advance(1);
        if (c != 0xE0) continue;
        if (!in.Ensure(6)) return ERR_PROFILE_SEGMENT_READ;
        const uint8_t* h = in.Peek();
        uint32_t length = static_cast<uint32_t>(h[0] << 8 | h[1]);
        uint32_t type = static_cast<uint32_t>(h[2]) << 24 | h[3] << 16 | h[4] << 8 | h[5];
        if (type == 2) return STATUS_OK;
        // A length below 4 or a body larger than the scratch buffer is no
        // segment of this kind either.
        if (type > 1 || length < 4 || length - 4 > kScratch) continue;
        in.Advance(6);
        for (std::size_t done = 0, body = length - 4; done < body;) {
            if (in.Left() == 0 && !in.Ensure(1)) return ERR_PROFILE_SEGMENT_READ;
            std::size_t take = in.Left() < body - done ? in.Left() : body - done;
            std::memcpy(scratch + done, in.Peek(), take);
            in.Advance(take);
            done += take;
        }
        if (!gather.Append(scratch, length - 4)) return ERR_NO_MEMORY;
    }
}

}  // namespace

KtStatus ReadMarker56Profile(file::File& file, Gather& gather) noexcept {
    if (!file.Seek(0)) return ERR_PROFILE_SEGMENT_READ;
    auto* scratch = static_cast<uint8_t*>(KT_ALLOC(kScratch));
    if (!scratch) return ERR_NO_MEMORY;
    BlockReader in(file);
    KtStatus status = Scan(in, scratch, gather);
    KT_FREE(scratch);
    return status;
}

}  // namespace kt::storage
