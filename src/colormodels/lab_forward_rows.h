// RGB to Lab rows in lane loops, the plain rows and the template of every
// instruction set's rows. Each chunk of pixels goes through the
// formula with the cube root computed without a call; a pixel whose result
// could differ from the literal formula's is then redone by it.
//
// Exactness: x, y and z are the formula's own double sums (scaled by
// 100 / white instead of divided, one rounding apart). The fast cube root is
// within 1.1e-10 of the exact one, relative, for 0.008 <= t < 2 (a seed
// within 3.5%, a third-order step and a second one folded into the root;
// measured against a long-double cube root at both ends of every seed
// bucket), so L, a and b are within 500 x 2 x 1.04 x 1.1e-10 < 2e-7 of the
// formula's values. A value within kTruncMargin of a truncation step, and a
// t within kLimitMargin of the branch point or outside -1 < t < 2, sends its
// pixel to the literal path; tables that keep every t within 0 <= t < 1.5
// skip the range check.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "colormodels/lab_engine.h"
#include "colormodels/lab_lanes.h"

namespace kt::color::lab_forward {

constexpr double kLinearLimit = 0.008856;  // f(t) = t^(1/3) above it
constexpr double kSlope = 7.7867;
constexpr double kOffset = 0.13793103448275862;  // 16 / 116
constexpr double kTruncMargin = 1e-5;
constexpr double kLimitMargin = 1e-9;
constexpr double kRangeMiddle = 0.5;  // the fast range of t: -1 < t < 2
constexpr double kRangeHalf = 1.5;

// The inverse cube root's seed from the upper half of the double's bits:
// sign, exponent and mantissa head divided by three (a 32 x 32-bit product,
// exact for any 32-bit value) and subtracted from a constant; within 3.5%
// for 2^-7 <= t < 2. Then the step r += r (e / 3 + 2 e^2 / 9), e = 1 - t r^3,
// which cubes the relative error (times about 5), and a last step taken on
// the root c = t r^2 itself: c (1 + 2 e / 3 + 5 e^2 / 9), with a remainder
// below 0.5 e^3 relative.
constexpr std::uint64_t kCbrtMagic = 0x553ef100;
constexpr std::uint64_t kDivThree = 0xaaaaaaab;  // x / 3 = (x kDivThree) >> 33
constexpr int kDivThreeShift = 33;
constexpr double kThird = 1.0 / 3.0;
constexpr double kTwoNinths = 2.0 / 9.0;
constexpr double kTwoThirds = 2.0 / 3.0;
constexpr double kFiveNinths = 5.0 / 9.0;

// For 0 <= t < 2 (the root is used only above kLinearLimit; below it, and
// for negative t, the value is meaningless but without traps).
KT_ROW_INLINE double FastCbrt(double t) {
    const std::uint64_t head = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(t) >> 32);
    const std::uint64_t third = (head * kDivThree) >> kDivThreeShift;
    double r = std::bit_cast<double>((kCbrtMagic - third) << 32);
    const double e0 = 1.0 - t * (r * r * r);
    r += r * (e0 * (kThird + e0 * kTwoNinths));
    const double c = t * (r * r);
    const double e = 1.0 - c * r;
    return c + c * (e * (kTwoThirds + e * kFiveNinths));
}

// f(t) without branches: both sides computed.
KT_ROW_INLINE double FastF(double t) {
    const double root = FastCbrt(t);
    const double line = kSlope * t + kOffset;
    return lanes::Select(t > kLinearLimit, root, line);
}

// t the fast path serves: away from the branch point, and, unless the
// tables bound it already, -1 < t < 2 (not-a-number fails).
template <bool Bounded>
KT_ROW_INLINE int InFastRange(double t) {
    const int away = static_cast<int>(std::fabs(t - kLinearLimit) >= kLimitMargin);
    if constexpr (Bounded) return away;
    return static_cast<int>(std::fabs(t - kRangeMiddle) < kRangeHalf) & away;
}

// trunc(v), and whether a value within kTruncMargin of v may truncate
// differently (then the pixel is redone, so trunc(v + margin) stands for
// trunc(v)).
struct Truncated {
    int value;
    int near;
};
KT_ROW_INLINE Truncated TruncNear(double v) {
    const int lo = static_cast<int>(v - kTruncMargin), hi = static_cast<int>(v + kTruncMargin);
    return {hi, static_cast<int>(lo != hi)};
}

// ((L & 255) x 255) / 100 as a multiply and shift: 255 j / 100 = 51 j / 20,
// and 3277 / 2^16 exceeds 1 / 20 by less than 1 / (20 x 51 x 255).
constexpr int kLCodeFactor = 51 * 3277;
constexpr int kLCodeShift = 16;
constexpr bool LCodeExact() {
    for (int j = 0; j < 256; ++j)
        if (((j * kLCodeFactor) >> kLCodeShift) != (j * 255) / 100) return false;
    return true;
}
static_assert(LCodeExact());

template <int RIndex, bool Bounded>
KT_ROW_INLINE void ForwardChunks(const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width) {
    constexpr int BIndex = 2 - RIndex;
    constexpr int kChunk = rows::kChunk;
    const double* lin = f.linear;
    const double m0 = f.matrix[0], m1 = f.matrix[1], m2 = f.matrix[2], m3 = f.matrix[3], m4 = f.matrix[4],
                 m5 = f.matrix[5], m6 = f.matrix[6], m7 = f.matrix[7], m8 = f.matrix[8];
    const double kx = f.scale[0], ky = f.scale[1], kz = f.scale[2];
    rows::Chunked<3, 3>(src, dst, width, [&](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        alignas(64) std::int32_t bad[kChunk];
        for (int i = 0; i < kChunk; ++i) {
            const double lr = lin[in[RIndex][i]], lg = lin[in[1][i]], lb = lin[in[BIndex][i]];
            double tx = ((m0 * lr + m1 * lg) + m2 * lb) * kx;
            double ty = ((m3 * lr + m4 * lg) + m5 * lb) * ky;
            double tz = ((m6 * lr + m7 * lg) + m8 * lb) * kz;
            const int okx = InFastRange<Bounded>(tx), oky = InFastRange<Bounded>(ty), okz = InFastRange<Bounded>(tz);
            if constexpr (!Bounded) {
                // Rejected lanes (not-a-number included) go on with t = 0,
                // so that every lane's values stay small.
                tx = lanes::Select(okx, tx, 0.0);
                ty = lanes::Select(oky, ty, 0.0);
                tz = lanes::Select(okz, tz, 0.0);
            }
            const double fx = FastF(tx), fy = FastF(ty), fz = FastF(tz);
            const Truncated L = TruncNear(116.0 * fy - 16.0), a = TruncNear(500.0 * (fx - fy)),
                            b = TruncNear(200.0 * (fy - fz));
            bad[i] = ((okx & oky & okz) ^ 1) | L.near | a.near | b.near;
            out[0][i] = ((L.value & 255) * kLCodeFactor) >> kLCodeShift;
            out[1][i] = a.value;
            out[2][i] = b.value;
        }
        int any = 0;
        for (int i = 0; i < kChunk; ++i) any |= bad[i];
        if (any == 0) return;
        for (int i = 0; i < kChunk; ++i) {
            if (!bad[i]) continue;
            std::uint8_t lab[3];
            ForwardLabPixel(f, in[RIndex][i], in[1][i], in[BIndex][i], lab);
            for (int c = 0; c < 3; ++c) out[c][i] = lab[c];
        }
    });
}

// The row of the RGB order O.
template <class O>
KT_ROW_INLINE void ForwardRow(O, const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width) {
    f.bounded ? ForwardChunks<O::r, true>(f, src, dst, width) : ForwardChunks<O::r, false>(f, src, dst, width);
}

}  // namespace kt::color::lab_forward
