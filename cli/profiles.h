// Profile bytes for the tool, through the library's profile interface.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <ktclr.h>

namespace ktcli {

using Bytes = std::vector<uint8_t>;

// A parsed profile record, released on scope exit.
struct ProfileRecord {
    ICCProfileRecord r{};
    ProfileRecord();
    ~ProfileRecord();
    ProfileRecord(const ProfileRecord&) = delete;
    ProfileRecord& operator=(const ProfileRecord&) = delete;
    // Parses bytes; throws Failure with the library's status.
    void Fill(const Bytes& bytes);
    Bytes Image() const { return Bytes(r.profileData, r.profileData + r.profileSize); }
};

// A built-in profile by selector, its header size made to cover every byte
// handed out (the CMY profile's says less), so other tools accept it.
Bytes BuiltinProfile(int selector);
// The selector of a built-in profile name (rgb, lab, cmyk, cmy), or 0.
int BuiltinSelector(const std::string& name);
// A whole file; throws Failure when it cannot be read.
Bytes ReadFile(const std::string& path);
// A copy of a profile whose header asks for `intent` (0..3).
Bytes WithIntent(const Bytes& profile, uint32_t intent);
// The data color space signature of a profile's header (0 when too short).
uint32_t ProfileColorSpace(const Bytes& profile);
// The path as UTF-16 for the library's file functions.
std::u16string Wide(const std::string& utf8);
// "ICC 'RGB '" for a signature.
std::string SigText(uint32_t sig);

}  // namespace ktcli
