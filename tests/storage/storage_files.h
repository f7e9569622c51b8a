// Helpers of the storage tests: files written from bytes
// and the profile loader called by UTF-8 path.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ktclr/storage.h"
#include "platform/utf16.h"
#include "support/support.h"

namespace kt::test {

using Bytes = std::vector<uint8_t>;

inline Bytes ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

inline void WriteAll(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()),
                                                static_cast<std::streamsize>(bytes.size()));
}

inline Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }

struct Loaded {
    KtStatus status;
    Bytes bytes;
};

inline Loaded Load(const std::string& path) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    const std::u16string name = Wide(path);
    KtStatus status = Vx_LoadICCProfile(reinterpret_cast<const KtChar16*>(name.c_str()), &record, nullptr);
    Loaded out{status, {}};
    if (record.profileData) out.bytes.assign(record.profileData, record.profileData + record.profileSize);
    Vx_FreeICCProfile(&record);
    return out;
}

}  // namespace kt::test
