// Helpers of the ICC tests: the built-in profiles as bytes, files in a
// scratch directory, caller paths, and reference transforms made directly
// through lcms2.
#pragma once

#include <gtest/gtest.h>
#include <lcms2.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "ktclr/convert.h"
#include "ktclr/embedded.h"

namespace kt::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes BuiltinProfile(std::int32_t selector) {
    std::int32_t size = 0;
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, nullptr, &size), STATUS_OK);
    Bytes b(static_cast<std::size_t>(size));
    EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, b.data(), &size), STATUS_OK);
    return b;
}

// The size field of a profile's header: what the engine hands to lcms2.
inline std::uint32_t DeclaredSize(const Bytes& b) {
    return (std::uint32_t(b[0]) << 24) | (std::uint32_t(b[1]) << 16) | (std::uint32_t(b[2]) << 8) | b[3];
}

class ScratchDir {
public:
    ScratchDir() {
        char name[] = "/tmp/ktclr-icc-XXXXXX";
        path_ = mkdtemp(name);
    }
    ~ScratchDir() { std::system(("rm -rf '" + path_ + "'").c_str()); }
    const std::string& path() const { return path_; }
    std::string Write(const std::string& name, const Bytes& b) const {
        const std::string full = path_ + "/" + name;
        std::ofstream f(full, std::ios::binary);
        f.write(reinterpret_cast<const char*>(b.data()), static_cast<std::streamsize>(b.size()));
        return full;
    }

private:
    std::string path_;
};

inline void SetPath(KtChar16* field, const std::string& path) {
    std::size_t i = 0;
    for (; i < path.size() && i + 1 < KTCLR_PARAMS_PATH_UNITS; ++i) field[i] = static_cast<KtChar16>(path[i]);
    field[i] = 0;
}

// A transform made directly through lcms2 from profile bytes, the way the
// engine is expected to make it.
class Direct {
public:
    Direct(const std::vector<const Bytes*>& profiles, cmsUInt32Number in, cmsUInt32Number out,
           cmsUInt32Number flags = 0) {
        std::vector<cmsHPROFILE> open;
        for (const Bytes* b : profiles) open.push_back(cmsOpenProfileFromMem(b->data(), DeclaredSize(*b)));
        const cmsUInt32Number intent = open.size() == 2 ? cmsGetHeaderRenderingIntent(open[1]) : 0;
        t_ = cmsCreateMultiprofileTransform(open.data(), static_cast<cmsUInt32Number>(open.size()), in, out, intent,
                                            flags);
        for (cmsHPROFILE p : open) cmsCloseProfile(p);
    }
    ~Direct() {
        if (t_) cmsDeleteTransform(t_);
    }
    Direct(const Direct&) = delete;
    Direct& operator=(const Direct&) = delete;
    bool ok() const { return t_ != nullptr; }
    Bytes Run(const Bytes& in, std::size_t pixels, std::size_t outBytes) const {
        Bytes out(pixels * outBytes);
        cmsDoTransform(t_, in.data(), out.data(), static_cast<cmsUInt32Number>(pixels));
        return out;
    }

private:
    cmsHTRANSFORM t_ = nullptr;
};

// Pseudo-random pixels plus the grey ramp and the extremes.
inline Bytes SamplePixels(int bytesPerPixel, std::size_t count, std::uint32_t seed = 12345) {
    Bytes b;
    for (int v = 0; v < 256; ++v)
        for (int c = 0; c < bytesPerPixel; ++c) b.push_back(static_cast<std::uint8_t>(v));
    std::uint32_t x = seed;
    while (b.size() < count * static_cast<std::size_t>(bytesPerPixel)) {
        x = x * 1664525u + 1013904223u;
        b.push_back(static_cast<std::uint8_t>(x >> 24));
    }
    b.resize(count * static_cast<std::size_t>(bytesPerPixel));
    return b;
}

struct Handle {
    ClrHandle* h = nullptr;
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (h) Vx_ClrFree(h);
    }
};

}  // namespace kt::test
