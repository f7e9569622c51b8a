// Big-endian loads and stores for profile bytes, and signatures spelled as
// their four characters.
#pragma once

#include <cstdint>

namespace kt::icc {

inline std::uint16_t Load16(const std::uint8_t* p) noexcept {
    return static_cast<std::uint16_t>((p[0] << 8) | p[1]);
}
inline std::uint32_t Load32(const std::uint8_t* p) noexcept {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}
inline std::uint64_t Load64(const std::uint8_t* p) noexcept {
    return (std::uint64_t{Load32(p)} << 32) | Load32(p + 4);
}
inline void Store16(std::uint8_t* p, std::uint16_t v) noexcept {
    p[0] = static_cast<std::uint8_t>(v >> 8);
    p[1] = static_cast<std::uint8_t>(v);
}
inline void Store32(std::uint8_t* p, std::uint32_t v) noexcept {
    p[0] = static_cast<std::uint8_t>(v >> 24);
    p[1] = static_cast<std::uint8_t>(v >> 16);
    p[2] = static_cast<std::uint8_t>(v >> 8);
    p[3] = static_cast<std::uint8_t>(v);
}
inline void Store64(std::uint8_t* p, std::uint64_t v) noexcept {
    Store32(p, static_cast<std::uint32_t>(v >> 32));
    Store32(p + 4, static_cast<std::uint32_t>(v));
}

// The native number whose memory holds the big-endian bytes of `v`: what a
// file-order record keeps in a 32-bit field.
inline std::uint32_t FileOrder32(std::uint32_t v) noexcept { return __builtin_bswap32(v); }
inline std::uint16_t FileOrder16(std::uint16_t v) noexcept { return __builtin_bswap16(v); }

// Sig("mntr") == 0x6D6E7472.
consteval std::uint32_t Sig(const char (&s)[5]) {
    return (std::uint32_t(std::uint8_t(s[0])) << 24) | (std::uint32_t(std::uint8_t(s[1])) << 16) |
           (std::uint32_t(std::uint8_t(s[2])) << 8) | std::uint32_t(std::uint8_t(s[3]));
}

}  // namespace kt::icc
