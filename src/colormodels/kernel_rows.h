// What every built-in kernel shares: the buffer probes, the row walk with
// its padding, the RGB byte order, and the integer conversions the formulas
// are written with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "colormodels/kernels.h"
#include "platform/probe.h"

// Row functions and the helpers they call are always inlined: each
// instruction-set file compiles them afresh, and no copy compiled for one
// level may stand in for another's at link time.
#define KT_ROW_INLINE [[gnu::always_inline]] inline
#define KT_LAMBDA_INLINE __attribute__((always_inline))

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

// A kernel's row at one instruction-set level: converts `width` pixels from
// s to d; ctx is the kernel's per-call state. Each level's row comes in
// both RGB orders.
using Row = KtStatus (*)(const void* ctx, const std::uint8_t* s, std::uint8_t* d, int width) noexcept;
struct OrderedRows {
    Row bgr;
    Row rgb;
};

// A kernel's rows per instruction set (cpu.h): plain always, a null entry
// falls back to the next lower level.
struct IsaRows {
    const OrderedRows* plain;
    const OrderedRows* avx2 = nullptr;
    const OrderedRows* avx512 = nullptr;
};

// The rows this process runs: the highest entry at or below CpuIsa().
const OrderedRows& Pick(const IsaRows& rows) noexcept;

// The one dispatcher: probes, then walks the picked rows (see Walk).
KtStatus Run(Shape shape, const IsaRows& rows, const void* ctx, const std::uint8_t* src, std::uint8_t* dst,
             int width, int height, int srcPad, int dstPad, int rgbOrder) noexcept;

template <class F>
KT_ROW_INLINE KtStatus StatusOf(const F& f) {
    if constexpr (std::is_void_v<decltype(f())>) {
        f();
        return STATUS_OK;
    } else {
        return f();
    }
}

}  // namespace kt::color::rows

// Both orders of a row template f(order, s, d, width), or with the context
// f(order, const Ctx&, s, d, width), as OrderedRows.
#define KT_ROW_OF(f, O)                                                                                       \
    [](const void*, const std::uint8_t* s, std::uint8_t* d, int w) noexcept -> KtStatus {                     \
        return ::kt::color::rows::StatusOf([&] { return f(O{}, s, d, w); });                                   \
    }
#define KT_ORDERED_ROWS(f) \
    ::kt::color::rows::OrderedRows { KT_ROW_OF(f, ::kt::color::rows::BgrOrder), KT_ROW_OF(f, ::kt::color::rows::RgbOrder) }
#define KT_ROW_WITH(f, Ctx, O)                                                                                \
    [](const void* c, const std::uint8_t* s, std::uint8_t* d, int w) noexcept -> KtStatus {                   \
        return ::kt::color::rows::StatusOf([&] { return f(O{}, *static_cast<const Ctx*>(c), s, d, w); });      \
    }
#define KT_ORDERED_ROWS_WITH(f, Ctx)                                                                  \
    ::kt::color::rows::OrderedRows {                                                                   \
        KT_ROW_WITH(f, Ctx, ::kt::color::rows::BgrOrder), KT_ROW_WITH(f, Ctx, ::kt::color::rows::RgbOrder) \
    }

namespace kt::color::rows {

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

// Truncation toward zero as x86 does it: a value that does not fit (or a
// not-a-number) becomes INT32_MIN, whose low byte is 0.
[[gnu::always_inline]] constexpr std::int32_t Trunc(double x) noexcept {
    return x > -2147483649.0 && x < 2147483648.0 ? static_cast<std::int32_t>(x) : INT32_MIN;
}

// Quotient of integers |a| < 2^24 and c > 0, truncated toward zero, through
// one single-precision division so that whole chunks vectorize. Exact: both
// convert exactly, a whole quotient is exact, and one that is not lies at
// least 1/c from the next whole number toward infinity while the division
// is off by at most |a|/c x 2^-24 < 1/c.
KT_ROW_INLINE int ExactQuotient(int a, int c) {
    return static_cast<int>(static_cast<float>(a) / static_cast<float>(c));
}

[[gnu::always_inline]] constexpr int Min3(int a, int b, int c) { return a < b ? (a < c ? a : c) : (b < c ? b : c); }
[[gnu::always_inline]] constexpr int Max3(int a, int b, int c) { return a > b ? (a > c ? a : c) : (b > c ? b : c); }

// Clamp a double into [lo, hi] before truncating it.
[[gnu::always_inline]] constexpr double Clamp(double x, double lo, double hi) { return x < lo ? lo : (x > hi ? hi : x); }
[[gnu::always_inline]] constexpr int ClampInt(int x, int lo, int hi) { return x < lo ? lo : (x > hi ? hi : x); }

}  // namespace kt::color::rows
