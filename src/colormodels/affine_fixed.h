// Truncated affine combinations of three bytes, eight pixels at a time, in
// 22-bit fixed point. Each coefficient is the formula's exact decimal
// coefficient (with its scaling) rounded to 2^-22, so a sum of three bytes
// errs by at most 3 x 255 x 2^-23 + 2^-23 < 384 x 2^-22 from the exact value
// of the formula, while the double arithmetic errs by far less than 2^-40.
// Where the fixed-point sum lies more than kNear x 2^-22 from a whole number
// both therefore truncate alike; four pixels with a sum closer to one (sums
// that are whole in exact arithmetic among them) are redone with the double
// formula in vector lanes, the same operations in the same order as the
// scalar formula (no contraction: the lanes are compiled without FMA). The
// exhaustive tests prove every kernel built on this.
// This header holds the fixed-point coefficients, which the kernels declare
// with their formulas; x86/affine_avx2.h and x86/affine_avx512.h the steps.
#pragma once

namespace kt::color::affine {

constexpr int kShift = 22;
constexpr double kScale = 1 << kShift;
constexpr int kNear = 512;

// An output byte: trunc(clamp(cr R + cg G + cb B + offset, lo, hi)).
struct Channel {
    double cr, cg, cb, offset;
    int lo, hi;
};

constexpr int Fixed(double c) { return static_cast<int>(c * kScale + (c < 0 ? -0.5 : 0.5)); }

// The three channels of a pixel as fixed-point integers. Every channel spans
// 256 values, lo to lo + 255, and its sum is biased by -lo so that the
// saturating packs clamp it; the bias is flipped back in the stored byte
// (lo is 0 or -128). The window is added to the offset as well: away from
// whole numbers that changes no floor. A channel with negative sums
// truncates to the floor plus one below 0; that is added to the stored
// signed byte, which is exact only while no sum falls below lo (the floor
// is not clamped yet).
struct Fixed3 {
    int c[3][4];
    int bias[3];        // -lo, in whole numbers
    bool negative[3];   // sums below 0 occur: truncation is the floor plus 1
    bool flip = false;  // some channel is stored as a signed byte
    bool bytes = true;  // every channel spans a byte, unsigned or signed, and
                        // a channel with negative sums never falls below lo
    constexpr explicit Fixed3(const Channel (&ch)[3]) : c{}, bias{}, negative{} {
        for (int k = 0; k < 3; ++k) {
            const double co[3] = {ch[k].cr, ch[k].cg, ch[k].cb};
            double least = ch[k].offset;
            for (int j = 0; j < 3; ++j) {
                c[k][j] = Fixed(co[j]);
                if (co[j] < 0) least += 255.0 * co[j];
            }
            bias[k] = -ch[k].lo;
            c[k][3] = Fixed(ch[k].offset) + kNear + (bias[k] << kShift);
            negative[k] = least < 0 && ch[k].lo < 0;
            flip = flip || bias[k] != 0;
            bytes = bytes && ch[k].hi - ch[k].lo == 255 && (bias[k] == 0 || bias[k] == 128) &&
                    (!negative[k] || least >= ch[k].lo);
        }
    }
};

}  // namespace kt::color::affine
