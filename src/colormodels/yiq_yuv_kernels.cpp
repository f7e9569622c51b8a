// YUV and YIQ as full-scale bytes. The forward formulas are double sums of
// per-channel products, scaled and clamped; the inverses start from
// truncated per-byte values and finish in integers (YUV) or doubles (YIQ).
#include <array>

#include "colormodels/kernel_rows.h"

namespace kt::color {
namespace {
constexpr rows::Shape kRgbToRgb{rows::kBits24, rows::kBits24};
constexpr double kFull = 255.0;

// YUV chroma spans: U over 223 around 112, V over 275 around 138.
constexpr double kUSpan = 223.0, kUOffset = 112.0;
constexpr double kVSpan = 275.0, kVOffset = 138.0;
// YIQ spans: Y over 263, I over 303 around 152, Q over 267 around 134.
constexpr double kYiqYSpan = 263.0;
constexpr double kISpan = 303.0, kIOffset = 152.0;
constexpr double kQSpan = 267.0, kQOffset = 134.0;

// Every row runs its formula lane by lane over chunks of pixels; the vector
// arithmetic rounds exactly as the scalar one does, and divisions stay
// divisions.
template <class O>
KT_ROW_INLINE void RgbToYuvRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
    for (int i = 0; i < rows::kChunk; ++i) {
        const double r = in[O::r][i], g = in[O::g][i], b = in[O::b][i];
        const double y = 0.299 * r + 0.587 * g + 0.114 * b;
        const double u = (0.434 * b - 0.146 * r - 0.288 * g + kUOffset) / kUSpan * kFull + 0.5;
        const double v = (0.617 * r - 0.517 * g - 0.1 * b + kVOffset) / kVSpan * kFull + 0.5;
        out[0][i] = static_cast<int>(rows::Clamp(y, 0.0, kFull));
        out[1][i] = static_cast<int>(rows::Clamp(u, 0.0, kFull));
        out[2][i] = static_cast<int>(rows::Clamp(v, 0.0, kFull));
    }
    });
}

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
        const double y = (0.299 * r + 0.587 * g + 0.114 * b) / kYiqYSpan * kFull + 0.5;
        const double i = (0.596 * r - 0.274 * g - 0.322 * b + kIOffset) / kISpan * kFull + 0.5;
        const double q = (0.212 * r - 0.523 * g + 0.311 * b + kQOffset) / kQSpan * kFull + 0.5;
        out[0][k] = static_cast<int>(rows::Clamp(y, 0.0, kFull));
        out[1][k] = static_cast<int>(rows::Clamp(i, 0.0, kFull));
        out[2][k] = static_cast<int>(rows::Clamp(q, 0.0, kFull));
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
}  // namespace

KT_KERNEL(RgbToYuv) {
    (void)black;
    return rows::WalkFast(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE { RgbToYuvRow(o, s, d, w); });
}

KT_KERNEL(YuvToRgb) {
    (void)black;
    return rows::WalkFast(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE { YuvToRgbRow(o, s, d, w); });
}

KT_KERNEL(RgbToYiq) {
    (void)black;
    return rows::WalkFast(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE { RgbToYiqRow(o, s, d, w); });
}

KT_KERNEL(YiqToRgb) {
    (void)black;
    return rows::Walk(kRgbToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { YiqToRgbRow(o, s, d, w); });
}

}  // namespace kt::color
