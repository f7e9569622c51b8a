// CMYK with black generation (from RGB) and under-color restoration (to RGB):
// the plain rows, which every instruction set's rows must match.
#pragma once

#include "colormodels/kernel_rows.h"
#include "colormodels/squared_ramp.h"

namespace kt::color::cmyk {
constexpr double kPerMille = 1000.0;
constexpr double kFull = 255.0;
constexpr double kRampScale = 256.0;
constexpr int kRestoreShift = 8;
// Bound on f^5 x 255 below which every removal converts to an int.
constexpr double kLaneLimit = 1 << 30;

// i / 255 for every i up to 510, the fractions the removal multiplies.
struct Fractions {
    double of[511];
    constexpr Fractions() : of{} {
        for (int i = 0; i < 511; ++i) of[i] = i / kFull;
    }
};
constexpr Fractions kFractions{};

// Per-call constants of black generation.
struct BlackGeneration {
    double f;        // p / 1000
    double f5;       // f^5, the strength of the under-color removal
    bool noRemoval;  // removal truncates to 0 for every pixel
    bool fitsLanes;  // every removal fits an int, so lanes may convert it
    std::uint8_t black[256];  // trunc(k x f) as a byte, per gray component k
};

template <class O>
void FromRgbRow(O, const BlackGeneration& g, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 4) {
        const int r = s[O::r], gr = s[O::g], b = s[O::b];
        const int c = 255 - r, m = 255 - gr, y = 255 - b;
        const int k = rows::Min3(c, m, y);
        int u = 0;
        if (!g.noRemoval) {
            const int sum = rows::Min3(r, gr, b) + k;
            const double t = sum / kFull;
            u = rows::Trunc(t * t * (k / kFull) * g.f5 * kFull);
        }
        d[0] = static_cast<std::uint8_t>(c - u);
        d[1] = static_cast<std::uint8_t>(m - u);
        d[2] = static_cast<std::uint8_t>(y - u);
        d[3] = g.black[k];
    }
}

// The removal in lanes: the fractions looked up, then the same products in
// the same order.
template <class O>
KT_ROW_INLINE void FromRgbLanes(O, const BlackGeneration& g, const std::uint8_t* s, std::uint8_t* d,
                                int width) noexcept {
    rows::Chunked<3, 4>(s, d, width, [&g](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        alignas(32) double t[rows::kChunk], kf[rows::kChunk];
        alignas(32) std::int32_t k[rows::kChunk];
        for (int i = 0; i < rows::kChunk; ++i) {
            const int r = in[O::r][i], gr = in[O::g][i], b = in[O::b][i];
            const int mx = r > gr ? (r > b ? r : b) : (gr > b ? gr : b);
            const int mn = r < gr ? (r < b ? r : b) : (gr < b ? gr : b);
            k[i] = 255 - mx;
            t[i] = kFractions.of[mn + k[i]];
            kf[i] = kFractions.of[k[i]];
        }
        for (int i = 0; i < rows::kChunk; ++i) {
            const int u = static_cast<int>(t[i] * t[i] * kf[i] * g.f5 * kFull);
            out[0][i] = 255 - in[O::r][i] - u;
            out[1][i] = 255 - in[O::g][i] - u;
            out[2][i] = 255 - in[O::b][i] - u;
            out[3][i] = g.black[k[i]];
        }
    });
}

// Under-color restoration in lanes: the ramp looked up, then the unsigned
// 32-bit arithmetic, the comparison a select.
template <class O>
KT_ROW_INLINE void ToRgbLanes(O, std::uint32_t w, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    const std::uint16_t* ramp = SquaredRamp();
    rows::Chunked<4, 3>(s, d, width, [w, ramp](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        alignas(32) std::uint32_t t[rows::kChunk], top[rows::kChunk];
        for (int i = 0; i < rows::kChunk; ++i) {
            const int c = in[0][i], m = in[1][i], y = in[2][i];
            const int mx = c > m ? (c > y ? c : y) : (m > y ? m : y);
            const int mn = c < m ? (c < y ? c : y) : (m < y ? m : y);
            top[i] = static_cast<std::uint32_t>(mx);
            t[i] = ramp[255 - (mx - mn)];
        }
        for (int i = 0; i < rows::kChunk; ++i) {
            const std::uint32_t k = static_cast<std::uint32_t>(in[3][i]);
            const std::uint32_t u = ((t[i] * k) >> kRestoreShift) * w;
            const std::uint32_t room = 255 - top[i];
            const std::uint32_t v = u <= room ? (u & 255) : room;
            const int e = 255 - static_cast<int>(v);
            out[O::r][i] = e - in[0][i];
            out[O::g][i] = e - in[1][i];
            out[O::b][i] = e - in[2][i];
        }
    });
}

// With w = 0 (every p below about 251) the key is ignored: RGB = 255 - CMY.
template <class O>
void ToRgbNoKeyRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 4, d += 3) {
        const std::uint8_t c = s[0], m = s[1], y = s[2];
        d[O::r] = static_cast<std::uint8_t>(255 - c);
        d[O::g] = static_cast<std::uint8_t>(255 - m);
        d[O::b] = static_cast<std::uint8_t>(255 - y);
    }
}
}  // namespace kt::color::cmyk
