// Shared by the fuzz targets: numbers taken off the front of the input, a
// scratch file holding bytes, profile records that free themselves, and
// property checks that abort so libFuzzer keeps the input.
#pragma once

#include <stdio.h>
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "ktclr.h"

namespace fuzz {

// Reads numbers from the front of the input; zero once it is used up.
struct Input {
    const std::uint8_t* data;
    std::size_t size;
    std::uint32_t Take(int bytes) {
        std::uint32_t v = 0;
        for (int i = 0; i < bytes; ++i, size -= size ? 1 : 0) v = v << 8 | (size ? *data++ : 0);
        return v;
    }
};

inline void Check(bool holds, const char* property) {
    if (holds) return;
    fprintf(stderr, "property failed: %s\n", property);
    abort();
}

// One file in a folder of its own (saves put their temporaries beside it).
struct ScratchFile {
    std::string path;
    std::u16string wide;
    ScratchFile() {
        const char* tmp = getenv("TMPDIR");
        std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/ktclr-fuzz-XXXXXX";
        Check(mkdtemp(dir.data()) != nullptr, "scratch folder made");
        path = dir + "/f";
        wide.assign(path.begin(), path.end());
    }
    void Write(const std::uint8_t* bytes, std::size_t n) const {
        std::ofstream f(path, std::ios::binary);
        Check(f.write(reinterpret_cast<const char*>(bytes), std::streamsize(n)).flush().good(), "scratch written");
    }
    const KtChar16* name() const { return reinterpret_cast<const KtChar16*>(wide.c_str()); }
};

struct Profile {
    ICCProfileRecord r{};
    Profile() { Vx_InitICCProfile(&r, KTCLR_SIZEOF_ICC_PROFILE_RECORD); }
    ~Profile() { Vx_FreeICCProfile(&r); }
    std::vector<std::uint8_t> Image() const { return {r.profileData, r.profileData + (r.profileData ? r.profileSize : 0)}; }
};

}  // namespace fuzz
