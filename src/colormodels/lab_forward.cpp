// RGB to Lab rows in lane loops. Each chunk of pixels goes through the
// formula with the cube root computed without a call; a pixel whose result
// could differ from the literal formula's is then redone by it.
//
// Exactness: x, y and z are the formula's own double sums (scaled by
// 100 / white instead of divided, one rounding apart). The fast cube root is
// within 1e-9 of the exact one, relative (a seed within 3.5% and two
// third-order steps: 3.5e-2 -> 4e-4 -> 3e-10), so L, a and b are within
// 500 x 2 x 1.26 x 1e-9 < 2e-6 of the formula's values. A value within
// kTruncMargin of a truncation step, and a t within kLimitMargin of the
// branch point or outside -1 < t < 2, sends its pixel to the literal path.
#include <bit>
#include <cmath>
#include <cstdint>

#include "colormodels/lab_engine.h"
#include "colormodels/lab_lanes.h"

namespace kt::color {
namespace {

constexpr double kLinearLimit = 0.008856;  // f(t) = t^(1/3) above it
constexpr double kSlope = 7.7867;
constexpr double kOffset = 0.13793103448275862;  // 16 / 116
constexpr double kTruncMargin = 1e-5;
constexpr double kLimitMargin = 1e-9;
constexpr double kRangeMiddle = 0.5;  // the fast range of t: -1 < t < 2
constexpr double kRangeHalf = 1.5;

// The inverse cube root's seed from the bits of a float: the exponent and
// mantissa divided by three and subtracted from a constant (within 3.5% for
// any normal float); then steps r += r (e / 3 + 2 e^2 / 9), e = 1 - t r^3,
// each cubing the relative error (times about 5).
constexpr std::int32_t kCbrtMagic = 0x54a23400;
constexpr float kThirdFloat = 1.0f / 3.0f;
constexpr double kThird = 1.0 / 3.0;
constexpr double kTwoNinths = 2.0 / 9.0;
constexpr int kCbrtSteps = 2;

// For -1 < t < 2 (the root is used only above kLinearLimit; below it the
// value is meaningless but finite or not-a-number, without traps, and every
// conversion stays in range).
KT_ROW_INLINE double FastCbrt(double t) {
    const float tf = static_cast<float>(t);
    const float third = static_cast<float>(std::bit_cast<std::int32_t>(tf)) * kThirdFloat;
    double r = static_cast<double>(std::bit_cast<float>(kCbrtMagic - static_cast<std::int32_t>(third)));
    for (int k = 0; k < kCbrtSteps; ++k) {
        const double e = 1.0 - t * (r * r * r);
        r += r * (e * (kThird + e * kTwoNinths));
    }
    return t * (r * r);
}

// f(t) without branches: both sides computed.
KT_ROW_INLINE double FastF(double t) {
    const double root = FastCbrt(t);
    const double line = kSlope * t + kOffset;
    return lanes::Select(t > kLinearLimit, root, line);
}

// t the fast path serves (not-a-number fails).
KT_ROW_INLINE int InFastRange(double t) {
    return static_cast<int>(std::fabs(t - kRangeMiddle) < kRangeHalf) &
           static_cast<int>(std::fabs(t - kLinearLimit) >= kLimitMargin);
}

// Whether a value within kTruncMargin of v may truncate differently from v.
KT_ROW_INLINE int NearStep(double v) {
    return static_cast<int>(static_cast<int>(v - kTruncMargin) != static_cast<int>(v + kTruncMargin));
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

template <int RIndex>
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
            const double tx = ((m0 * lr + m1 * lg) + m2 * lb) * kx;
            const double ty = ((m3 * lr + m4 * lg) + m5 * lb) * ky;
            const double tz = ((m6 * lr + m7 * lg) + m8 * lb) * kz;
            const int okx = InFastRange(tx), oky = InFastRange(ty), okz = InFastRange(tz);
            // Rejected lanes (not-a-number included) go on with t = 0, so
            // that every lane's values stay small.
            const double fx = FastF(lanes::Select(okx, tx, 0.0));
            const double fy = FastF(lanes::Select(oky, ty, 0.0));
            const double fz = FastF(lanes::Select(okz, tz, 0.0));
            const double Lv = 116.0 * fy - 16.0, av = 500.0 * (fx - fy), bv = 200.0 * (fy - fz);
            bad[i] = ((okx & oky & okz) ^ 1) | NearStep(Lv) | NearStep(av) | NearStep(bv);
            out[0][i] = ((static_cast<int>(Lv) & 255) * kLCodeFactor) >> kLCodeShift;
            out[1][i] = static_cast<int>(av);
            out[2][i] = static_cast<int>(bv);
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

template <int RIndex>
[[KT_LANES_PLAIN]] void RowPlain(const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width) noexcept {
    ForwardChunks<RIndex>(f, src, dst, width);
}

template <int RIndex>
[[KT_LANES_AVX2]] void RowAvx2(const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width) noexcept {
    ForwardChunks<RIndex>(f, src, dst, width);
}

template <int RIndex>
[[KT_LANES_AVX512]] void RowAvx512(const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst,
                                   int width) noexcept {
    ForwardChunks<RIndex>(f, src, dst, width);
}

template <int RIndex>
void RowWith(lanes::Isa isa, const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width) noexcept {
    switch (lanes::Usable(isa)) {
        case lanes::Isa::avx512: return RowAvx512<RIndex>(f, src, dst, width);
        case lanes::Isa::avx2: return RowAvx2<RIndex>(f, src, dst, width);
        case lanes::Isa::baseline: return RowPlain<RIndex>(f, src, dst, width);
    }
}

}  // namespace

void ForwardLabRowWith(lanes::Isa isa, const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width,
                       int rIndex) noexcept {
    rIndex == 0 ? RowWith<0>(isa, f, src, dst, width) : RowWith<2>(isa, f, src, dst, width);
}

void ForwardLabRow(const ForwardLab& f, const std::uint8_t* src, std::uint8_t* dst, int width, int rIndex) noexcept {
    ForwardLabRowWith(lanes::BestIsa(), f, src, dst, width, rIndex);
}

}  // namespace kt::color
