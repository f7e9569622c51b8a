// The Lab arithmetic shared by the formula kernels and the handle's Lab
// tables. Both directions are parameterised by a white point and a matrix,
// so one exact pixel routine and one fast row routine serve both.
//
// Exactness: every fast path computes the same double terms as the written
// formula (per-byte tables of exact values, sums in the written order) and
// replaces only the costly functions: cube roots by a seeded iteration with
// a known error far below the margin it is checked against, and the 0.45
// power by the exact decision thresholds of the final code value. A pixel
// whose result lies within the margin of a truncation step is recomputed by
// the literal formula.
#pragma once

#include <bit>
#include <cstdint>

#include "colormodels/lab_lanes.h"

namespace kt::color {

// RGB to Lab: r = linear[R], X = (m0 r + m1 g) + m2 b, x = X * 100 / white.
struct ForwardLab {
    double linear[256];
    double matrix[9];
    double white[3];
    double scale[3];  // 100 / white, for the fast path only
    // Whether every x, y and z the tables can give is finite with
    // 0 <= t < 2, so that the fast path need not check it.
    bool bounded;
};

// Lab to RGB: X = t(fx) * factor[0], RGB = matrix . XYZ, encoded with the
// power `encodeExponent`.
struct InverseLab {
    double matrix[9];
    double factor[3];
};

// Decision thresholds of trunc(clamp(v, 0, 1)^0.45 x 255 + 0.5): the code of
// v is the number of thresholds at or below it. Exact, found by bisection.
struct GammaEncoder {
    static constexpr int kFirstBinade = -21;  // below 2^-21 every value codes 0
    static constexpr int kSegmentBits = 7;
    static constexpr int kSegments = (-kFirstBinade) << kSegmentBits;
    double threshold[257];  // [c]: smallest v coding to c or more; [256] = inf
    std::uint8_t start[kSegments + 1];  // the last entry: v = 1
    // Per segment, for lane loops: the segment's first code above bit
    // kLaneCodeShift, and below it where the next threshold lies, as an
    // offset in the bits of v from the segment's start (kSegmentSpan when
    // past the segment). Positive doubles order like their bits.
    static constexpr int kLaneCodeShift = 46;
    static constexpr std::uint64_t kSegmentSpan = std::uint64_t{1} << (52 - kSegmentBits);
    std::uint64_t lane[kSegments + 1];
    double exponent;

    int Encode(double v) const noexcept {
        constexpr double kSmall = 0x1p-21;  // threshold[1] lies above it
        constexpr std::uint64_t base = static_cast<std::uint64_t>(1023 + kFirstBinade) << kSegmentBits;
        if (!(v > kSmall)) return 0;
        if (v >= 1.0) return 255;
        int c = start[(std::bit_cast<std::uint64_t>(v) >> (52 - kSegmentBits)) - base];
        // A segment holds at most one threshold; the loop is a safeguard.
        c += v >= threshold[c + 1];
        while (v >= threshold[c + 1]) ++c;
        return c;
    }

    // The same without branches, for lane loops: 2^-21 stands for anything
    // below it (code 0) and 1 for anything above. Over one segment the code
    // rises by at most 255 x 0.45 x 2^-7 < 1, so one comparison with the
    // segment's next threshold suffices; one load per value.
    [[gnu::always_inline]] int EncodeLane(double v) const noexcept { return EncodeLane(lane, v); }

    // The same on the lane table alone (lane loops keep its address in a
    // local, so that the vectorizer sees plain array loads).
    [[gnu::always_inline]] static int EncodeLane(const std::uint64_t* lane, double v) noexcept {
        constexpr double kSmall = 0x1p-21;
        constexpr int base = (1023 + kFirstBinade) << kSegmentBits;
        v = lanes::Select(v > kSmall, v, kSmall);
        v = lanes::Select(v < 1.0, v, 1.0);
        const std::uint64_t bits = std::bit_cast<std::uint64_t>(v);
        // A 32-bit index, which the vectorizer can turn into lane loads.
        const std::uint64_t e = lane[static_cast<int>(bits >> (52 - kSegmentBits)) - base];
        return static_cast<int>(e >> kLaneCodeShift) +
               static_cast<int>((bits & (kSegmentSpan - 1)) >= (e & ((std::uint64_t{1} << kLaneCodeShift) - 1)));
    }
};

void BuildForwardLab(ForwardLab* f, double gammaExponent, const double white[3], const double matrix[9]) noexcept;
void BuildGammaEncoder(GammaEncoder* e, double exponent) noexcept;

// The literal formulas for one pixel (the fallback of the fast paths).
void ForwardLabPixel(const ForwardLab& f, int r, int g, int b, std::uint8_t out[3]) noexcept;
int EncodeGammaExact(double v, double exponent) noexcept;

// RGB to Lab rows per instruction set, with the ForwardLab as context.
const rows::IsaRows& ForwardLabRows() noexcept;

// Lab to RGB rows, with an encoder choosing the code of each linear value.
template <class Encoder>
void InverseLabRow(const InverseLab& inv, const Encoder& enc, const std::uint8_t* src, std::uint8_t* dst, int width,
                   int rIndex) noexcept;

// Lab to RGB rows in lane loops per instruction set, with an exact threshold
// encoder; the same results as InverseLabRow with that encoder.
struct InverseLanes {
    const InverseLab* inverse;
    const GammaEncoder* encoder;
};
const rows::IsaRows& InverseLabRows() noexcept;

// The per-byte inputs of the inverse formula, the same for every table.
struct InverseInputs {
    double fy[256];    // ((L / 2.55) + 16) / 116
    double aTerm[256]; // a / 500, a the byte read as signed
    double bTerm[256]; // b / 200
};
const InverseInputs& InverseLabInputs() noexcept;

// t(f) of the inverse formula, limited to 0..1.
inline double InverseCompand(double f) noexcept {
    double t = f > 0.20689 ? f * f * f : (f - 0.13793103448275862) / 7.7867;
    if (t < 0.0) t = 0.0;
    if (t > 1.0) t = 1.0;
    return t;
}

template <class Encoder>
void InverseLabRow(const InverseLab& inv, const Encoder& enc, const std::uint8_t* src, std::uint8_t* dst, int width,
                   int rIndex) noexcept {
    const InverseInputs& in = InverseLabInputs();
    const double* m = inv.matrix;
    const int bIndex = 2 - rIndex;
    for (int x = 0; x < width; ++x, src += 3, dst += 3) {
        const double fy = in.fy[src[0]];
        const double fx = in.aTerm[src[1]] + fy;
        const double fz = fy - in.bTerm[src[2]];
        const double X = InverseCompand(fx) * inv.factor[0];
        const double Y = InverseCompand(fy) * inv.factor[1];
        const double Z = InverseCompand(fz) * inv.factor[2];
        const int r = enc.Encode((m[0] * X + m[1] * Y) + m[2] * Z);
        const int g = enc.Encode((m[3] * X + m[4] * Y) + m[5] * Z);
        const int b = enc.Encode((m[6] * X + m[7] * Y) + m[8] * Z);
        dst[rIndex] = static_cast<std::uint8_t>(r);
        dst[1] = static_cast<std::uint8_t>(g);
        dst[bIndex] = static_cast<std::uint8_t>(b);
    }
}

}  // namespace kt::color
