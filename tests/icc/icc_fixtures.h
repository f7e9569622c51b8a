// Helpers shared by the profile-model tests.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "ktclr/icc.h"

namespace icctest {

constexpr uint32_t Sig(const char (&s)[5]) {
    return (uint32_t(uint8_t(s[0])) << 24) | (uint32_t(uint8_t(s[1])) << 16) | (uint32_t(uint8_t(s[2])) << 8) |
           uint32_t(uint8_t(s[3]));
}

inline uint32_t Be32(const uint8_t* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
}
inline void PutBe32(uint8_t* p, uint32_t v) {
    p[0] = uint8_t(v >> 24);
    p[1] = uint8_t(v >> 16);
    p[2] = uint8_t(v >> 8);
    p[3] = uint8_t(v);
}

// A record that is initialized on construction and freed on destruction.
struct Profile {
    ICCProfileRecord r;
    Profile() { Vx_InitICCProfile(&r, KTCLR_SIZEOF_ICC_PROFILE_RECORD); }
    ~Profile() { Vx_FreeICCProfile(&r); }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ICCProfileRecord* operator->() { return &r; }
    ICCProfileRecord* get() { return &r; }
    std::vector<uint8_t> Image() const {
        return r.profileData ? std::vector<uint8_t>(r.profileData, r.profileData + r.profileSize)
                             : std::vector<uint8_t>{};
    }
};

// An XYZ tag record over caller-owned triples.
inline ICCXYZType XyzOf(ICCXYZNumber* values, uint32_t count) {
    ICCXYZType t{};
    t.signature = Sig("XYZ ");
    t.values = values;
    t.count = count;
    return t;
}

inline ICCRawTagType RawOf(uint8_t* bytes, uint32_t count, uint32_t type) {
    ICCRawTagType t{};
    t.typeSignature = type;
    t.bytes = bytes;
    t.byteCount = count;
    return t;
}

inline std::u16string Utf16(const std::string& s) { return std::u16string(s.begin(), s.end()); }

}  // namespace icctest
