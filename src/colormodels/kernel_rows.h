// What every built-in kernel shares: the buffer probes, the row walk with
// its padding, the RGB byte order, and the integer conversions the formulas
// are written with.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "colormodels/kernels.h"
#include "platform/probe.h"

namespace kt::color::rows {

// Bits per pixel of the layouts the kernels touch.
constexpr int kBits24 = 24;
constexpr int kBits32 = 32;
constexpr int kBits16 = 16;
constexpr int kBits12 = 12;
constexpr int kBits9 = 9;

// Unpadded bytes of one row: bits x width rounded up to whole bytes.
constexpr std::int64_t RowBytes(int bits, int width) { return (static_cast<std::int64_t>(bits) * width + 7) / 8; }

// A padding below 1 counts as none.
constexpr std::int64_t Padding(int pad) { return pad < 1 ? 0 : pad; }

// Bytes a buffer spans: (row + padding) x height, nothing when that is not
// positive.
inline std::size_t Extent(int bits, int width, int height, int pad) {
    const std::int64_t stride = RowBytes(bits, width) + Padding(pad);
    if (stride <= 0 || height <= 0) return 0;
    const long double bytes = static_cast<long double>(stride) * height;
    if (bytes >= static_cast<long double>(SIZE_MAX)) return SIZE_MAX;
    return static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
}

// Source readable and destination writable over everything the call may
// touch; ERR_INVALID_PARAMETER otherwise.
inline KtStatus ProbeBuffers(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                             int dstPad, int srcBits, int dstBits) noexcept {
    if (platform::IsBadReadPtr(src, Extent(srcBits, width, height, srcPad))) return ERR_INVALID_PARAMETER;
    if (platform::IsBadWritePtr(dst, Extent(dstBits, width, height, dstPad))) return ERR_INVALID_PARAMETER;
    return STATUS_OK;
}

// Where R, G and B sit in a pixel of the RGB side.
template <bool RgbFirst>
struct Order {
    static constexpr int r = RgbFirst ? 0 : 2;
    static constexpr int g = 1;
    static constexpr int b = RgbFirst ? 2 : 0;
};
using RgbOrder = Order<true>;
using BgrOrder = Order<false>;

// The shape of a kernel call: bits per pixel on each side and the pixel
// group the width must be a multiple of.
struct Shape {
    int srcBits;
    int dstBits;
    int group = 1;
};
inline constexpr Shape kRgbToRgb{kBits24, kBits24};

// Probes, then hands each row to row(order, src, dst, width) and steps over
// both paddings. A row may return a status; the first one other than
// STATUS_OK ends the walk.
template <class Row>
KtStatus Walk(Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
              int dstPad, int rgbOrder, Row&& row) noexcept {
    const KtStatus probed = ProbeBuffers(src, dst, width, height, srcPad, dstPad, shape.srcBits, shape.dstBits);
    if (probed != STATUS_OK) return probed;
    if (height < 1) return STATUS_OK;
    if (width % shape.group != 0) return ERR_ODD_WIDTH;
    if (width < 1) return STATUS_OK;
    const std::ptrdiff_t srcStride = RowBytes(shape.srcBits, width) + Padding(srcPad);
    const std::ptrdiff_t dstStride = RowBytes(shape.dstBits, width) + Padding(dstPad);
    auto walk = [&](auto order) -> KtStatus {
        for (int y = 0; y < height; ++y, src += srcStride, dst += dstStride) {
            if constexpr (std::is_void_v<decltype(row(order, src, dst, width))>) {
                row(order, src, dst, width);
            } else {
                const KtStatus status = row(order, src, dst, width);
                if (status != STATUS_OK) return status;
            }
        }
        return STATUS_OK;
    };
    return rgbOrder != 0 ? walk(RgbOrder{}) : walk(BgrOrder{});
}

// Row functions are written once as plain loops and inlined into two
// callers: the baseline (SSE2) one and one compiled for AVX2, chosen once per
// process. The plain variant stays the reference drop-in.
#define KT_ROW_INLINE [[gnu::always_inline]] inline
#define KT_LAMBDA_INLINE __attribute__((always_inline))

inline bool HasAvx2() noexcept {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

// Walks with the `vector` rows (AVX2 steps) where the processor has AVX2 and
// with the `plain` rows otherwise.
template <class Vector, class Plain>
KtStatus WalkAvx2Or(Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                    int dstPad, int rgbOrder, const Vector& vector, const Plain& plain) noexcept {
    if (HasAvx2()) return Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, vector);
    return Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, plain);
}

template <class Row, class O>
[[gnu::target("avx2")]] auto RowAvx2(const Row& row, O order, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    return row(order, s, d, width);
}

// Walk with the row compiled for the best instruction set the processor has.
// The row lambda must be marked KT_ROW_INLINE-style (always_inline) so that
// its loops are compiled inside each variant.
template <class Row>
KtStatus WalkFast(Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                  int dstPad, int rgbOrder, const Row& row) noexcept {
    if (HasAvx2()) {
        return Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder,
                    [&row](auto order, const std::uint8_t* s, std::uint8_t* d, int w) {
                        return RowAvx2(row, order, s, d, w);
                    });
    }
    return Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, row);
}

// Pixels go through the vectorized formulas a chunk at a time, spread into
// one 32-bit lane array per byte position.
constexpr int kChunk = 32;
using Lanes = std::int32_t[kChunk];

// Converts a row of In-byte pixels to Out-byte pixels: each chunk's bytes
// are spread into lanes, f(in, out) fills the output lanes with loops of a
// fixed trip count, and the lanes are packed back. A short last chunk goes
// through a zeroed scratch copy. Each chunk is read whole before it is
// written, so equal-size rows may be converted in place.
template <int In, int Out, class F>
KT_ROW_INLINE void Chunked(const std::uint8_t* s, std::uint8_t* d, int width, const F& f) noexcept {
    alignas(32) std::int32_t in[In][kChunk];
    alignas(32) std::int32_t out[Out][kChunk];
    for (int x = 0; x < width; x += kChunk) {
        const int n = width - x < kChunk ? width - x : kChunk;
        const std::uint8_t* const src = s + static_cast<std::ptrdiff_t>(In) * x;
        std::uint8_t* const dst = d + static_cast<std::ptrdiff_t>(Out) * x;
        alignas(32) std::uint8_t scratch[(In > Out ? In : Out) * kChunk];
        const std::uint8_t* from = src;
        if (n < kChunk) {
            std::memset(scratch, 0, sizeof scratch);
            std::memcpy(scratch, src, static_cast<std::size_t>(In) * n);
            from = scratch;
        }
        for (int i = 0; i < kChunk; ++i)
#pragma GCC unroll 32
            for (int c = 0; c < In; ++c) in[c][i] = from[In * i + c];
        f(in, out);
        std::uint8_t* to = n < kChunk ? scratch : dst;
        for (int i = 0; i < kChunk; ++i)
#pragma GCC unroll 32
            for (int c = 0; c < Out; ++c) to[Out * i + c] = static_cast<std::uint8_t>(out[c][i]);
        if (n < kChunk) std::memcpy(dst, scratch, static_cast<std::size_t>(Out) * n);
    }
}

// Truncation toward zero as the processor does it: a value that does not fit
// (or a not-a-number) becomes INT32_MIN, whose low byte is 0.
inline std::int32_t Trunc(double x) noexcept { return _mm_cvttsd_si32(_mm_set_sd(x)); }

// a x b / c with a 64-bit product and the quotient rounded half away from
// zero; -1 for a zero divisor.
constexpr std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c) {
    if (c == 0) return -1;
    const std::int64_t p = static_cast<std::int64_t>(a) * b;
    const std::int64_t ap = p < 0 ? -p : p;
    const std::int64_t ac = c < 0 ? -static_cast<std::int64_t>(c) : c;
    const std::int64_t q = (ap + ac / 2) / ac;
    return static_cast<std::int32_t>((p < 0) != (c < 0) ? -q : q);
}

// MulDiv for operands whose product and divisor stay far below 2^31 (the
// 8-bit channel formulas): the same rounding in 32-bit division.
constexpr int MulDivSmall(int a, int b, int c) {
    const int p = a * b;
    const int q = ((p < 0 ? -p : p) + c / 2) / c;  // c > 0
    return p < 0 ? -q : q;
}

constexpr int Min3(int a, int b, int c) { return a < b ? (a < c ? a : c) : (b < c ? b : c); }
constexpr int Max3(int a, int b, int c) { return a > b ? (a > c ? a : c) : (b > c ? b : c); }

// Clamp a double into [lo, hi] before truncating it.
constexpr double Clamp(double x, double lo, double hi) { return x < lo ? lo : (x > hi ? hi : x); }
constexpr int ClampInt(int x, int lo, int hi) { return x < lo ? lo : (x > hi ? hi : x); }

}  // namespace kt::color::rows
