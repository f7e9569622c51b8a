// Helpers of the saving tests: sample images made by Debian's tools, saving
// a byte string as a profile, and the independent readers' view of a file.
#pragma once

#include <cstdint>
#include <string>

#include "ktclr/storage.h"
#include "support/support.h"

namespace kt::savetest {

using test::ReadFile;
using test::WriteFile;

// Distinct bytes of any length behind a big-endian size field, as a
// profile begins (a profile for the arithmetic tests).
std::string Pattern(std::size_t size, unsigned seed = 1);
// A profile file of Debian's colour packages.
std::string RealProfile(const char* name);

// Runs a shell command and expects success.
void Sh(const std::string& command);
std::string ShOut(const std::string& command);

KtStatus Save(const std::string& path, const std::string& profile, const Vx_SaveFileOptions* options = nullptr);
// Vx_LoadICCProfile's bytes ("" when it finds none) and exiftool's.
std::string Loaded(const std::string& path);
std::string Exiftool(const std::string& path);
// The pixels as the format's own library decodes them (PPM/PAM text).
std::string Pixels(const std::string& path);

inline uint32_t Le32(const std::string& s, std::size_t at) {
    return uint8_t(s[at]) | uint8_t(s[at + 1]) << 8 | uint8_t(s[at + 2]) << 16 | uint32_t(uint8_t(s[at + 3])) << 24;
}
inline std::string Le32(uint32_t v) {
    return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
}

}  // namespace kt::savetest
