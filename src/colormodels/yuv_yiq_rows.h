// YUV and YIQ as full-scale bytes. The forward formulas are double sums of
// per-channel products, scaled and clamped; the inverses start from
// truncated per-byte values and finish in integers (YUV) or doubles (YIQ).
// The plain rows, which every instruction set's rows must match.
#pragma once

#include <array>

#include "colormodels/affine_fixed.h"
#include "colormodels/kernel_rows.h"

namespace kt::color::yuv_yiq {
constexpr double kFull = 255.0;

// YUV chroma spans: U over 223 around 112, V over 275 around 138.
constexpr double kUSpan = 223.0, kUOffset = 112.0;
constexpr double kVSpan = 275.0, kVOffset = 138.0;
// YIQ spans: Y over 263, I over 303 around 152, Q over 267 around 134.
constexpr double kYiqYSpan = 263.0;
constexpr double kISpan = 303.0, kIOffset = 152.0;
constexpr double kQSpan = 267.0, kQOffset = 134.0;

// The forward formulas, one output byte each. Every row runs them lane by
// lane over chunks of pixels; the vector arithmetic rounds exactly as the
// scalar one does, and divisions stay divisions. The sums are written once
// for doubles and for the AVX2 lanes that redo the steps near a whole
// number (by reference: no vector crosses a baseline call).
template <class T>
KT_ROW_INLINE void LumaSum(const T& r, const T& g, const T& b, T& sum) {
    sum = 0.299 * r + 0.587 * g + 0.114 * b;
}
template <class T>
KT_ROW_INLINE void YuvUSum(const T& r, const T& g, const T& b, T& sum) {
    sum = (0.434 * b - 0.146 * r - 0.288 * g + kUOffset) / kUSpan * kFull + 0.5;
}
template <class T>
KT_ROW_INLINE void YuvVSum(const T& r, const T& g, const T& b, T& sum) {
    sum = (0.617 * r - 0.517 * g - 0.1 * b + kVOffset) / kVSpan * kFull + 0.5;
}
template <class T>
KT_ROW_INLINE void YiqYSum(const T& r, const T& g, const T& b, T& sum) {
    sum = (0.299 * r + 0.587 * g + 0.114 * b) / kYiqYSpan * kFull + 0.5;
}
template <class T>
KT_ROW_INLINE void YiqISum(const T& r, const T& g, const T& b, T& sum) {
    sum = (0.596 * r - 0.274 * g - 0.322 * b + kIOffset) / kISpan * kFull + 0.5;
}
template <class T>
KT_ROW_INLINE void YiqQSum(const T& r, const T& g, const T& b, T& sum) {
    sum = (0.212 * r - 0.523 * g + 0.311 * b + kQOffset) / kQSpan * kFull + 0.5;
}

// Each sum clamped to a byte and truncated.
using SumOf = void (*)(const double&, const double&, const double&, double&);
template <SumOf Sum>
KT_ROW_INLINE int Truncated(double r, double g, double b) {
    double sum;
    Sum(r, g, b, sum);
    return static_cast<int>(rows::Clamp(sum, 0.0, kFull));
}
KT_ROW_INLINE int Luma(double r, double g, double b) { return Truncated<LumaSum>(r, g, b); }
KT_ROW_INLINE int YuvU(double r, double g, double b) { return Truncated<YuvUSum>(r, g, b); }
KT_ROW_INLINE int YuvV(double r, double g, double b) { return Truncated<YuvVSum>(r, g, b); }
KT_ROW_INLINE int YiqY(double r, double g, double b) { return Truncated<YiqYSum>(r, g, b); }
KT_ROW_INLINE int YiqI(double r, double g, double b) { return Truncated<YiqISum>(r, g, b); }
KT_ROW_INLINE int YiqQ(double r, double g, double b) { return Truncated<YiqQSum>(r, g, b); }

template <class O>
KT_ROW_INLINE void RgbToYuvRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const double r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
            out[0][i] = Luma(r, g, b);
            out[1][i] = YuvU(r, g, b);
            out[2][i] = YuvV(r, g, b);
        }
    });
}

// The same formulas as fixed-point affine sums: the exact decimal
// coefficients with the spans and offsets folded in.
constexpr affine::Channel kYuvChannels[3] = {
    {0.299, 0.587, 0.114, 0.0, 0, 255},
    {-0.146 * kFull / kUSpan, -0.288 * kFull / kUSpan, 0.434 * kFull / kUSpan, kUOffset * kFull / kUSpan + 0.5, 0, 255},
    {0.617 * kFull / kVSpan, -0.517 * kFull / kVSpan, -0.1 * kFull / kVSpan, kVOffset * kFull / kVSpan + 0.5, 0, 255},
};
constexpr affine::Fixed3 kYuvFixed{kYuvChannels};
static_assert(kYuvFixed.bytes);
constexpr affine::Channel kYiqChannels[3] = {
    {0.299 * kFull / kYiqYSpan, 0.587 * kFull / kYiqYSpan, 0.114 * kFull / kYiqYSpan, 0.5, 0, 255},
    {0.596 * kFull / kISpan, -0.274 * kFull / kISpan, -0.322 * kFull / kISpan, kIOffset * kFull / kISpan + 0.5, 0, 255},
    {0.212 * kFull / kQSpan, -0.523 * kFull / kQSpan, 0.311 * kFull / kQSpan, kQOffset * kFull / kQSpan + 0.5, 0, 255},
};
constexpr affine::Fixed3 kYiqFixed{kYiqChannels};
static_assert(kYiqFixed.bytes);

// Fixed-point inverse, 15 fractional bits; the constants hold the offsets.
constexpr int kYuvShift = 15;

template <class O>
KT_ROW_INLINE void YuvToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
    for (int i = 0; i < rows::kChunk; ++i) {
        const int y = in[0][i];
        const int u = static_cast<int>(-(in[1][i] / kFull) * kUSpan);
        const int v = static_cast<int>(-(in[2][i] / kFull) * kVSpan);
        const int g = y + ((18940 * v + 12943 * u + 4063336) >> kYuvShift);
        const int r = y + ((29 * u - 37221 * v - 5133250) >> kYuvShift);
        const int b = y + ((33 * v - 66883 * u - 7486342) >> kYuvShift);
        out[O::r][i] = rows::ClampInt(r, 0, 255);
        out[O::g][i] = rows::ClampInt(g, 0, 255);
        out[O::b][i] = rows::ClampInt(b, 0, 255);
    }
    });
}

template <class O>
KT_ROW_INLINE void RgbToYiqRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int k = 0; k < rows::kChunk; ++k) {
            const double r = in[O::r][k], g = in[O::g][k], b = in[O::b][k];
            out[0][k] = YiqY(r, g, b);
            out[1][k] = YiqI(r, g, b);
            out[2][k] = YiqQ(r, g, b);
        }
    });
}

// The truncated y, i, q of each byte, as doubles ready for the sums (three
// divisions per pixel cost more than the lookups save in lanes).
struct YiqInputs {
    std::array<double, 256> y{}, i{}, q{};
    constexpr YiqInputs() {
        for (int k = 0; k < 256; ++k) {
            y[k] = static_cast<int>(k / kFull * kYiqYSpan);
            i[k] = static_cast<int>(k / kFull * kISpan - kIOffset);
            q[k] = static_cast<int>(k / kFull * kQSpan - kQOffset);
        }
    }
};
constexpr YiqInputs kYiqInputs{};

template <class O>
void YiqToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; ++x, s += 3, d += 3) {
        const double y = kYiqInputs.y[s[0]], i = kYiqInputs.i[s[1]], q = kYiqInputs.q[s[2]];
        const double r = y + 0.956 * i + 0.621 * q;
        const double g = y - 0.272 * i - 0.647 * q;
        const double b = y - 1.105 * i + 1.702 * q;
        d[O::r] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(r, 0.0, kFull)));
        d[O::g] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(g, 0.0, kFull)));
        d[O::b] = static_cast<std::uint8_t>(static_cast<int>(rows::Clamp(b, 0.0, kFull)));
    }
}
// The truncated u and v of the inverse as a product's high half: -u =
// floor(U x 223 / 255) and -v = V + floor(V x 20 / 255), checked here for
// every byte.
constexpr int kUMagic = 57312, kVMagic = 5141;
constexpr bool MagicHolds() {
    for (int k = 0; k < 256; ++k) {
        if (-((k * kUMagic) >> 16) != static_cast<int>(-(k / kFull) * kUSpan)) return false;
        if (-(k + ((k * kVMagic) >> 16)) != static_cast<int>(-(k / kFull) * kVSpan)) return false;
    }
    return true;
}
static_assert(MagicHolds());

}  // namespace kt::color::yuv_yiq
