// WebP: the "ICCP" chunk. Its size is rounded up to even, pad byte included,
// so an odd-sized chunk yields one byte more than it declares (pinned by the
// odd-size test).
#include <cstring>

#include "formats/riff_chunks.h"
#include "platform/error_report.h"
#include "storage/readers.h"

namespace kt::storage {

KtStatus ReadWebpProfile(file::File& file, Gather& gather) noexcept {
    formats::riff::Walker walker(file);
    if (!walker.Begin("WEBP")) return STATUS_OK;
    formats::riff::ChunkHead head;
    for (;;) {
        KtStatus next = walker.Next(&head);
        if (next == 0) return STATUS_OK;
        if (next == ERR_RIFF_SHORT_READ) return report::Error(ERR_RIFF_SHORT_READ);
        if (next != 1) return next;
        if (std::memcmp(head.id, "ICCP", 4) == 0) break;
        if (!walker.Skip(head)) return report::Error(ERR_RIFF_SHORT_READ);
    }
    std::uint64_t size = formats::riff::Padded(head.size);
    uint8_t* data = gather.Take(size);
    if (!data) return ERR_NO_MEMORY;
    if (!file.ReadExact(data, size)) {
        gather.Drop();
        return report::Error(ERR_RIFF_SHORT_READ);
    }
    return STATUS_OK;
}

}  // namespace kt::storage
