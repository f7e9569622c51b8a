// Grid lookups. Each pixel takes the mean of two grid entries: the upper
// corner (every coordinate rounded up to a node, 255 being the last node)
// and the lower corner (every coordinate rounded down). A pixel on a node
// takes that node's entry.
#include <array>
#include <cstddef>

#include "colormodels/emulation_lookup.h"
#include "platform/probe.h"

namespace kt::color {
namespace {

constexpr int kNodes33 = 33;
constexpr int kNodes17 = 17;
constexpr int kEntry = 3;

// Per-axis node of the upper and lower corner for a coordinate value.
struct AxisNodes {
    std::array<std::uint8_t, 256> upper{}, lower{};
    std::array<bool, 256> onNode{};
};

constexpr AxisNodes MakeAxis(int step) {
    AxisNodes a;
    for (int v = 0; v < 256; ++v) {
        int up = (v + step - 1) / step * step;
        if (up > 255) up = 255;
        a.upper[v] = static_cast<std::uint8_t>((up + step - 1) / step);
        a.lower[v] = static_cast<std::uint8_t>(v / step);
        a.onNode[v] = v % step == 0 || v == 255;
    }
    return a;
}

constexpr AxisNodes kAxis8 = MakeAxis(8);
constexpr AxisNodes kAxis16 = MakeAxis(16);

constexpr std::size_t Index33(int i, int j, int k) {
    return static_cast<std::size_t>(((i * kNodes33 + j) * kNodes33 + k) * kEntry);
}
constexpr std::size_t Index17(int c, int m, int y, int k) {
    return static_cast<std::size_t>((((c * kNodes17 + m) * kNodes17 + y) * kNodes17 + k) * kEntry);
}

std::size_t Pad(int pad) { return pad < 1 ? 0 : static_cast<std::size_t>(pad); }

// The kernel contract's probes over both extents; false when either fails.
bool Probe(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcBytes, int dstBytes, int srcPad,
           int dstPad, std::size_t* srcStride, std::size_t* dstStride) {
    const std::size_t w = width < 1 ? 0 : static_cast<std::size_t>(width);
    const std::size_t rows = height < 1 ? 0 : static_cast<std::size_t>(height);
    *srcStride = w * static_cast<std::size_t>(srcBytes) + Pad(srcPad);
    *dstStride = w * static_cast<std::size_t>(dstBytes) + Pad(dstPad);
    return !platform::IsBadReadPtr(src, *srcStride * rows) && !platform::IsBadWritePtr(dst, *dstStride * rows);
}

// Runs `pixel` over every pixel, row by row, skipping the padding.
template <int SrcBytes, int DstBytes, class Pixel>
KtStatus ForEachPixel(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                      int srcPad, int dstPad, Pixel pixel) {
    if (!grid) return ERR_INVALID_PARAMETER;
    std::size_t srcStride = 0, dstStride = 0;
    if (!Probe(src, dst, width, height, SrcBytes, DstBytes, srcPad, dstPad, &srcStride, &dstStride))
        return ERR_INVALID_PARAMETER;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* s = src + static_cast<std::size_t>(y) * srcStride;
        std::uint8_t* d = dst + static_cast<std::size_t>(y) * dstStride;
        for (int x = 0; x < width; ++x, s += SrcBytes, d += DstBytes) pixel(s, d);
    }
    return STATUS_OK;
}

inline std::uint8_t Mean(std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>((a + b) >> 1); }
inline std::uint8_t SignedMean(std::uint8_t a, std::uint8_t b) {
    return static_cast<std::uint8_t>((static_cast<std::int8_t>(a) + static_cast<std::int8_t>(b)) / 2);
}

// RGB entries written in the destination's order.
inline void PutRgb(std::uint8_t* d, std::uint8_t r, std::uint8_t g, std::uint8_t b, int ri, int bi) {
    d[ri] = r;
    d[1] = g;
    d[bi] = b;
}

}  // namespace

KtStatus EmulateRgbToLab(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                         int srcPad, int dstPad, int rgbOrder) noexcept {
    const int ri = rgbOrder ? 0 : 2, bi = 2 - ri;
    return ForEachPixel<3, 3>(grid, src, dst, width, height, srcPad, dstPad, [&](const std::uint8_t* s, std::uint8_t* d) {
        const int r = s[ri], g = s[1], b = s[bi];
        // The node test compares B with R's rounding, not with its own.
        if ((r & 7) == 0 && (g & 7) == 0 && b == (r & ~7)) {
            const std::uint8_t* e = grid + Index33(kAxis8.upper[r], kAxis8.upper[g], kAxis8.upper[b]);
            d[0] = e[0], d[1] = e[1], d[2] = e[2];
            return;
        }
        const std::uint8_t* u = grid + Index33(kAxis8.upper[r], kAxis8.upper[g], kAxis8.upper[b]);
        const std::uint8_t* l = grid + Index33(kAxis8.lower[r], kAxis8.lower[g], kAxis8.lower[b]);
        d[0] = Mean(u[0], l[0]);
        d[1] = SignedMean(u[1], l[1]);
        d[2] = SignedMean(u[2], l[2]);
    });
}

KtStatus EmulateLabToRgb(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                         int srcPad, int dstPad, int rgbOrder) noexcept {
    const int ri = rgbOrder ? 0 : 2, bi = 2 - ri;
    constexpr std::uint8_t kOffset = 0x80;  // a and b are signed; their axes start at -128
    return ForEachPixel<3, 3>(grid, src, dst, width, height, srcPad, dstPad, [&](const std::uint8_t* s, std::uint8_t* d) {
        const int L = s[0], a = s[1] ^ kOffset, b = s[2] ^ kOffset;
        const std::uint8_t* u = grid + Index33(kAxis8.upper[L], kAxis8.upper[a], kAxis8.upper[b]);
        if (kAxis8.onNode[L] && kAxis8.onNode[a] && kAxis8.onNode[b]) return PutRgb(d, u[0], u[1], u[2], ri, bi);
        const std::uint8_t* l = grid + Index33(kAxis8.lower[L], kAxis8.lower[a], kAxis8.lower[b]);
        PutRgb(d, Mean(u[0], l[0]), Mean(u[1], l[1]), Mean(u[2], l[2]), ri, bi);
    });
}

KtStatus EmulateCmykToRgb(const std::uint8_t* grid, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                          int srcPad, int dstPad, int rgbOrder) noexcept {
    const int ri = rgbOrder ? 0 : 2, bi = 2 - ri;
    return ForEachPixel<4, 3>(grid, src, dst, width, height, srcPad, dstPad, [&](const std::uint8_t* s, std::uint8_t* d) {
        const int c = s[0], m = s[1], y = s[2], k = s[3];
        const std::uint8_t* u = grid + Index17(kAxis16.upper[c], kAxis16.upper[m], kAxis16.upper[y], kAxis16.upper[k]);
        if (kAxis16.onNode[c] && kAxis16.onNode[m] && kAxis16.onNode[y] && kAxis16.onNode[k])
            return PutRgb(d, u[0], u[1], u[2], ri, bi);
        const std::uint8_t* l = grid + Index17(kAxis16.lower[c], kAxis16.lower[m], kAxis16.lower[y], kAxis16.lower[k]);
        PutRgb(d, Mean(u[0], l[0]), Mean(u[1], l[1]), Mean(u[2], l[2]), ri, bi);
    });
}

}  // namespace kt::color
