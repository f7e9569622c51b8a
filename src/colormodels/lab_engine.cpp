#include "colormodels/lab_engine.h"

#include <bit>
#include <cmath>

namespace kt::color {
namespace {

constexpr double kLinearLimit = 0.008856;  // f(t) = t^(1/3) above it
constexpr double kSlope = 7.7867;
constexpr double kOffset = 0.13793103448275862;  // 16 / 116
constexpr double kThird = 1.0 / 3.0;

double FExact(double t) { return t > kLinearLimit ? std::pow(t, kThird) : kSlope * t + kOffset; }

// Stores L, a, b from the three f values (the Lab byte encoding).
void StoreLab(double fx, double fy, double fz, std::uint8_t out[3]) {
    const int L = static_cast<int>(116.0 * fy - 16.0);
    const int a = static_cast<int>(500.0 * (fx - fy));
    const int b = static_cast<int>(200.0 * (fy - fz));
    out[0] = static_cast<std::uint8_t>(((L & 255) * 255) / 100);
    out[1] = static_cast<std::uint8_t>(a);
    out[2] = static_cast<std::uint8_t>(b);
}

int CodeOf(double v, double exponent) {
    if (v < 0.0) v = 0.0;
    if (v > 1.0) v = 1.0;
    int c = static_cast<int>(std::pow(v, exponent) * 255.0 + 0.5);
    return c < 0 ? 0 : (c > 255 ? 255 : c);
}

}  // namespace

void BuildForwardLab(ForwardLab* f, double gammaExponent, const double white[3], const double matrix[9]) noexcept {
    for (int i = 0; i < 256; ++i) f->linear[i] = std::pow(i / 255.0, gammaExponent);
    for (int i = 0; i < 9; ++i) f->matrix[i] = matrix[i];
    for (int i = 0; i < 3; ++i) {
        f->white[i] = white[i];
        f->scale[i] = 100.0 / white[i];
    }
    // Non-negative finite terms: each t lies between 0 and the sum of the
    // largest terms (rounding is monotonic), scaled.
    constexpr double kBound = 1.5;
    double most = 0.0;
    bool bounded = true;
    for (int i = 0; i < 256; ++i) {
        bounded = bounded && std::isfinite(f->linear[i]) && f->linear[i] >= 0.0;
        most = f->linear[i] > most ? f->linear[i] : most;
    }
    for (int row = 0; row < 3; ++row) {
        const double* m = f->matrix + 3 * row;
        for (int c = 0; c < 3; ++c) bounded = bounded && std::isfinite(m[c]) && m[c] >= 0.0;
        const double top = ((m[0] * most + m[1] * most) + m[2] * most) * f->scale[row];
        bounded = bounded && std::isfinite(f->scale[row]) && f->scale[row] > 0.0 && top < kBound;
    }
    f->bounded = bounded;
}

void ForwardLabPixel(const ForwardLab& f, int r, int g, int b, std::uint8_t out[3]) noexcept {
    const double lr = f.linear[r], lg = f.linear[g], lb = f.linear[b];
    const double* m = f.matrix;
    const double X = (m[0] * lr + m[1] * lg) + m[2] * lb;
    const double Y = (m[3] * lr + m[4] * lg) + m[5] * lb;
    const double Z = (m[6] * lr + m[7] * lg) + m[8] * lb;
    StoreLab(FExact(X * 100.0 / f.white[0]), FExact(Y * 100.0 / f.white[1]), FExact(Z * 100.0 / f.white[2]), out);
}

int EncodeGammaExact(double v, double exponent) noexcept { return CodeOf(v, exponent); }

void BuildGammaEncoder(GammaEncoder* e, double exponent) noexcept {
    e->exponent = exponent;
    const std::uint64_t one = std::bit_cast<std::uint64_t>(1.0);
    e->threshold[0] = -INFINITY;
    for (int c = 1; c <= 255; ++c) {
        // Smallest non-negative double whose code reaches c (codes rise with v).
        std::uint64_t lo = 0, hi = one;
        while (lo < hi) {
            const std::uint64_t mid = lo + (hi - lo) / 2;
            if (CodeOf(std::bit_cast<double>(mid), exponent) >= c)
                hi = mid;
            else
                lo = mid + 1;
        }
        e->threshold[c] = std::bit_cast<double>(lo);
    }
    e->threshold[256] = INFINITY;
    constexpr std::uint64_t base = static_cast<std::uint64_t>(1023 + GammaEncoder::kFirstBinade)
                                   << GammaEncoder::kSegmentBits;
    for (int i = 0; i <= GammaEncoder::kSegments; ++i) {
        const double lo = std::bit_cast<double>((base + i) << (52 - GammaEncoder::kSegmentBits));
        int c = 0;
        while (c < 255 && e->threshold[c + 1] <= lo) ++c;
        e->start[i] = static_cast<std::uint8_t>(c);
        const std::uint64_t from = (base + i) << (52 - GammaEncoder::kSegmentBits);
        const double next = e->threshold[c + 1];
        const std::uint64_t offset = next < INFINITY ? std::bit_cast<std::uint64_t>(next) - from : GammaEncoder::kSegmentSpan;
        e->lane[i] = (static_cast<std::uint64_t>(c) << GammaEncoder::kLaneCodeShift) |
                     (offset < GammaEncoder::kSegmentSpan ? offset : GammaEncoder::kSegmentSpan);
    }
}

const InverseInputs& InverseLabInputs() noexcept {
    static const InverseInputs inputs = [] {
        InverseInputs in{};
        for (int i = 0; i < 256; ++i) {
            const double L = i / 2.55;
            const int s = static_cast<std::int8_t>(static_cast<std::uint8_t>(i));
            in.fy[i] = (L + 16.0) / 116.0;
            in.aTerm[i] = s / 500.0;
            in.bTerm[i] = s / 200.0;
        }
        return in;
    }();
    return inputs;
}

}  // namespace kt::color
