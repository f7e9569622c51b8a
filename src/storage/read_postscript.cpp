// PostScript and EPS: the "%%BeginICCProfile:" comment block, whose "% "
// lines carry the profile as hexadecimal pairs, up to "%%EndICCProfile" or
// the end of the file. Lines end at LF, CRLF or a lone CR.
#include <cstring>

#include "storage/block_reader.h"
#include "storage/readers.h"

namespace kt::storage {
namespace {

constexpr char kBegin[] = "%%BeginICCProfile:";
constexpr std::size_t kBeginLength = sizeof kBegin - 1;  // 18
constexpr char kEnd[] = "%%EndICCProfile";
constexpr std::size_t kEndLength = sizeof kEnd - 1;  // 15

int Hex(uint8_t c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Moves behind the keyword. False when the file ends first (a block of
// fewer than 19 bytes ends the search).
bool FindBegin(BlockReader& in) {
    for (;;) {
        if (in.Left() == 0 && (!in.Ensure(kBeginLength + 1) || in.Left() < kBeginLength + 1)) return false;
        const auto* p = static_cast<const uint8_t*>(std::memchr(in.Peek(), '%', in.Left()));
        if (!p) {
            in.Advance(in.Left());
            continue;
        }
        in.Advance(static_cast<std::size_t>(p - in.Peek()));
        if (!in.Ensure(kBeginLength)) return false;
        if (std::memcmp(in.Peek(), kBegin, kBeginLength) == 0) {
            in.Advance(kBeginLength);
            return true;
        }
        in.Advance(1);
    }
}

// Moves behind the line's end. False at the end of the file.
bool SkipLine(BlockReader& in) {
    for (;;) {
        if (!in.Ensure(1)) return false;
        uint8_t c = *in.Peek();
        in.Advance(1);
        if (c == '\n') return true;
        if (c == '\r') {
            if (in.Ensure(1) && *in.Peek() == '\n') in.Advance(1);
            return true;
        }
    }
}

// Decodes the pairs of a "% " line; any other character ends them.
bool DecodePairs(BlockReader& in, Gather& gather) {
    uint8_t bytes[256];
    std::size_t n = 0;
    while (in.Ensure(2)) {
        int hi = Hex(in.Peek()[0]), lo = Hex(in.Peek()[1]);
        if (hi < 0 || lo < 0) break;
        bytes[n++] = static_cast<uint8_t>(hi << 4 | lo);
        in.Advance(2);
        if (n == sizeof bytes) {
            if (!gather.Append(bytes, n)) return false;
            n = 0;
        }
    }
    return gather.Append(bytes, n);
}

}  // namespace

KtStatus ReadPostScriptProfile(file::File& file, Gather& gather) noexcept {
    if (!file.Seek(0)) return ERR_FILE_READ;
    BlockReader in(file);
    if (!in.Ensure(1)) return ERR_FILE_READ;
    if (!FindBegin(in)) return STATUS_OK;
    while (SkipLine(in)) {
        in.Ensure(kEndLength);
        if (in.Left() >= kEndLength && std::memcmp(in.Peek(), kEnd, kEndLength) == 0) break;
        if (in.Left() >= 2 && in.Peek()[0] == '%' && in.Peek()[1] == ' ') {
            in.Advance(2);
            if (!DecodePairs(in, gather)) return ERR_NO_MEMORY;
        }
    }
    return STATUS_OK;
}

}  // namespace kt::storage
