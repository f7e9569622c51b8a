// Builders of small image files byte by byte, for the cases no tool writes.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "storage_files.h"

namespace kt::test {

inline Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}
inline Bytes Be16(uint32_t v) { return {uint8_t(v >> 8), uint8_t(v)}; }
inline Bytes Be32(uint32_t v) { return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)}; }
inline Bytes Le16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }
inline Bytes Le32(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}; }
// `n` bytes counting up from `seed`.
inline Bytes Counting(std::size_t n, uint8_t seed) {
    Bytes b(n);
    for (std::size_t i = 0; i < n; ++i) b[i] = uint8_t(seed + i);
    return b;
}
// Bytes shaped like a profile: the first four hold the size.
inline Bytes Profile(uint32_t n, uint8_t seed) {
    Bytes b = Counting(n, seed);
    Bytes size = Be32(n);
    std::copy(size.begin(), size.end(), b.begin());
    return b;
}

// JPEG: SOI, the segments, a scan, EOI.
inline Bytes Segment(uint8_t code, const Bytes& body) {
    return Cat({{0xFF, code}, Be16(uint32_t(body.size() + 2)), body});
}
inline Bytes IccPiece(uint8_t sequence, uint8_t count, const Bytes& piece) {
    return Segment(0xE2, Cat({Text("ICC_PROFILE"), {0, sequence, count}, piece}));
}
inline Bytes Jpeg(std::initializer_list<Bytes> segments, const Bytes& afterScan = {}) {
    Bytes out = Cat({{0xFF, 0xD8}, Segment(0xE0, Cat({Text("JFIF"), Counting(10, 0)}))});
    for (const Bytes& s : segments) out = Cat({out, s});
    return Cat({out, Segment(0xDA, Counting(10, 1)), Counting(64, 0x10), afterScan, {0xFF, 0xD9}});
}

// WebP: the RIFF head (its size field given or computed) and chunks.
inline Bytes Chunk(const char* id, const Bytes& body) {
    Bytes out = Cat({Text(id), Le32(uint32_t(body.size())), body});
    if (body.size() & 1) out.push_back(0);
    return out;
}
inline Bytes Webp(std::initializer_list<Bytes> chunks, int64_t riffSize = -1) {
    Bytes body = Text("WEBP");
    for (const Bytes& c : chunks) body = Cat({body, c});
    return Cat({Text("RIFF"), Le32(uint32_t(riffSize < 0 ? body.size() : riffSize)), body});
}

// Photoshop: header, colour-mode data (its bytes left out when the size is
// 4,096 or more), image resources, empty layer section.
inline Bytes Resource(const char* signature, uint16_t id, const Bytes& data) {
    Bytes out = Cat({Text(signature), Be16(id), {0, 0}, Be32(uint32_t(data.size())), data});
    if (data.size() & 1) out.push_back(0);
    return out;
}
inline Bytes Psd(std::initializer_list<Bytes> resources, uint32_t colourModeBytes = 0, int64_t sectionSize = -1) {
    Bytes section;
    for (const Bytes& r : resources) section = Cat({section, r});
    return Cat({Text("8BPS"), {0, 1}, Counting(6, 0), {0, 3}, Be32(2), Be32(2), {0, 8}, {0, 3}, Be32(colourModeBytes),
                Counting(colourModeBytes < 4096 ? colourModeBytes : 0, 0), Be32(uint32_t(sectionSize < 0 ? section.size() : sectionSize)), section,
                Be32(0)});
}

// Classic little-endian TIFF whose first directory holds one tag 34675 entry
// of type 7: its count and its value field as given (offset or inline bytes).
inline Bytes Tiff(uint32_t count, const Bytes& valueField, const Bytes& tail = {}, uint32_t ifd = 8) {
    return Cat({Text("II"), Le16(42), Le32(ifd), Le16(1), Le16(34675), Le16(7), Le32(count), valueField, Le32(0), tail});
}

}  // namespace kt::test
