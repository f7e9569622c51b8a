// A minimal ICC version 2 writer for the generator: big-endian tag elements
// and a profile assembler that lets several tags share one element.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace gen {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t Sig(const char (&s)[5]) {
    return (std::uint32_t(std::uint8_t(s[0])) << 24) | (std::uint32_t(std::uint8_t(s[1])) << 16) |
           (std::uint32_t(std::uint8_t(s[2])) << 8) | std::uint32_t(std::uint8_t(s[3]));
}

inline void Put8(Bytes& b, std::uint32_t v) { b.push_back(std::uint8_t(v)); }
inline void Put16(Bytes& b, std::uint32_t v) {
    b.push_back(std::uint8_t(v >> 8));
    b.push_back(std::uint8_t(v));
}
inline void Put32(Bytes& b, std::uint32_t v) {
    Put16(b, v >> 16);
    Put16(b, v & 0xFFFF);
}
inline void PutS15(Bytes& b, double v) { Put32(b, std::uint32_t(std::int32_t(std::lround(v * 65536.0)))); }
inline void PutXyzNumber(Bytes& b, const double xyz[3]) {
    for (int i = 0; i < 3; ++i) PutS15(b, xyz[i]);
}
inline void PutTypeHead(Bytes& b, std::uint32_t type) {
    Put32(b, type);
    Put32(b, 0);
}

inline Bytes TextElement(const std::string& text) {
    Bytes b;
    PutTypeHead(b, Sig("text"));
    b.insert(b.end(), text.begin(), text.end());
    b.push_back(0);
    return b;
}

// textDescriptionType with ASCII only (no Unicode, no ScriptCode text).
inline Bytes DescElement(const std::string& text) {
    Bytes b;
    PutTypeHead(b, Sig("desc"));
    Put32(b, std::uint32_t(text.size() + 1));
    b.insert(b.end(), text.begin(), text.end());
    b.push_back(0);
    Put32(b, 0);  // Unicode language
    Put32(b, 0);  // Unicode count
    Put16(b, 0);  // ScriptCode code
    Put8(b, 0);   // ScriptCode count
    b.insert(b.end(), 67, 0);
    return b;
}

inline Bytes XyzElement(const double xyz[3]) {
    Bytes b;
    PutTypeHead(b, Sig("XYZ "));
    PutXyzNumber(b, xyz);
    return b;
}

inline Bytes CurveElement(const std::vector<std::uint16_t>& entries) {
    Bytes b;
    PutTypeHead(b, Sig("curv"));
    Put32(b, std::uint32_t(entries.size()));
    for (auto e : entries) Put16(b, e);
    return b;
}

inline Bytes SignatureElement(std::uint32_t sig) {
    Bytes b;
    PutTypeHead(b, Sig("sig "));
    Put32(b, sig);
    return b;
}

inline Bytes ViewElement(const double illuminant[3], const double surround[3], std::uint32_t type) {
    Bytes b;
    PutTypeHead(b, Sig("view"));
    PutXyzNumber(b, illuminant);
    PutXyzNumber(b, surround);
    Put32(b, type);
    return b;
}

inline Bytes MeasurementElement(std::uint32_t observer, std::uint32_t geometry, double flare, std::uint32_t illuminant) {
    Bytes b;
    PutTypeHead(b, Sig("meas"));
    Put32(b, observer);
    const double backing[3] = {0, 0, 0};
    PutXyzNumber(b, backing);
    Put32(b, geometry);
    Put32(b, std::uint32_t(std::lround(flare * 65536.0)));  // u16Fixed16
    Put32(b, illuminant);
    return b;
}

inline Bytes UInt8ArrayElement(const Bytes& values) {
    Bytes b;
    PutTypeHead(b, Sig("ui08"));
    b.insert(b.end(), values.begin(), values.end());
    return b;
}

inline void PutIdentityMatrix(Bytes& b) {
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) PutS15(b, r == c ? 1.0 : 0.0);
}

// lut8 ('mft1'): identity matrix, the given 256-entry input and output
// curves (null: identity) around a grid of 8-bit entries (outputs innermost,
// first input outermost).
using Curve8 = const std::uint8_t*;
inline Bytes Lut8Element(int in, int out, int grid, const Bytes& clut, const std::vector<Curve8>& inCurves = {},
                         const std::vector<Curve8>& outCurves = {}) {
    Bytes b;
    PutTypeHead(b, Sig("mft1"));
    Put8(b, in);
    Put8(b, out);
    Put8(b, grid);
    Put8(b, 0);
    PutIdentityMatrix(b);
    auto curves = [&](int n, const std::vector<Curve8>& given) {
        for (int c = 0; c < n; ++c) {
            const Curve8 curve = std::size_t(c) < given.size() ? given[std::size_t(c)] : nullptr;
            for (int i = 0; i < 256; ++i) Put8(b, curve ? curve[i] : i);
        }
    };
    curves(in, inCurves);
    b.insert(b.end(), clut.begin(), clut.end());
    curves(out, outCurves);
    return b;
}

// lut16 ('mft2'): identity matrix and identity curves of 256 entries.
inline Bytes Lut16Element(int in, int out, int grid, const std::vector<std::uint16_t>& clut) {
    constexpr int kCurveEntries = 256;
    Bytes b;
    PutTypeHead(b, Sig("mft2"));
    Put8(b, in);
    Put8(b, out);
    Put8(b, grid);
    Put8(b, 0);
    PutIdentityMatrix(b);
    Put16(b, kCurveEntries);
    Put16(b, kCurveEntries);
    auto curves = [&](int n) {
        for (int c = 0; c < n; ++c)
            for (int i = 0; i < kCurveEntries; ++i) Put16(b, std::uint32_t(std::lround(i * 65535.0 / 255.0)));
    };
    curves(in);
    for (auto v : clut) Put16(b, v);
    curves(out);
    return b;
}

struct Header {
    std::uint32_t version;  // e.g. 0x02100000
    std::uint32_t deviceClass, colorSpace, pcs;
};

struct TagRef {
    std::uint32_t sig;
    int element;  // index into the element list; equal indices share bytes
};

// Assembles a profile: the header, the directory in the given order, then
// every element once, each at a 4-byte boundary. Elements listed in
// `trailing` are placed after the declared end (header size), which then
// covers only the elements before them.
struct Assembled {
    Bytes bytes;
    std::uint32_t declaredSize;
};

inline Assembled Assemble(const Header& h, const std::vector<Bytes>& elements, const std::vector<TagRef>& tags,
                          const std::vector<int>& trailing = {}) {
    auto isTrailing = [&](int e) {
        for (int t : trailing)
            if (t == e) return true;
        return false;
    };
    std::vector<std::uint32_t> offsets(elements.size());
    std::uint32_t pos = 128 + 4 + 12 * std::uint32_t(tags.size());
    auto place = [&](bool late) {
        for (std::size_t e = 0; e < elements.size(); ++e) {
            if (isTrailing(int(e)) != late) continue;
            offsets[e] = pos;
            pos += (std::uint32_t(elements[e].size()) + 3) & ~3u;
        }
    };
    place(false);
    const std::uint32_t declared = pos;
    place(true);
    // The block that leaves the library covers a trailing element and eight
    // bytes beyond it.
    const std::uint32_t total = trailing.empty() ? pos : pos + 8;

    Bytes b;
    Put32(b, declared);
    Put32(b, 0);  // CMM
    Put32(b, h.version);
    Put32(b, h.deviceClass);
    Put32(b, h.colorSpace);
    Put32(b, h.pcs);
    const std::uint32_t date[6] = {2024, 1, 1, 0, 0, 0};  // fixed, so output is reproducible
    for (auto d : date) Put16(b, d);
    Put32(b, Sig("acsp"));
    Put32(b, 0);                                  // platform
    Put32(b, 0);                                  // flags
    Put32(b, 0);                                  // manufacturer
    Put32(b, 0);                                  // model
    Put32(b, 0);                                  // attributes
    Put32(b, 0);
    Put32(b, 0);                                  // rendering intent: perceptual
    const double d50[3] = {0.9642, 1.0, 0.8249};
    PutXyzNumber(b, d50);
    Put32(b, 0);  // creator
    b.resize(128, 0);
    Put32(b, std::uint32_t(tags.size()));
    for (const auto& t : tags) {
        Put32(b, t.sig);
        Put32(b, offsets[std::size_t(t.element)]);
        Put32(b, std::uint32_t(elements[std::size_t(t.element)].size()));
    }
    b.resize(total, 0);
    for (std::size_t e = 0; e < elements.size(); ++e)
        std::copy(elements[e].begin(), elements[e].end(), b.begin() + offsets[e]);
    return {b, declared};
}

}  // namespace gen
