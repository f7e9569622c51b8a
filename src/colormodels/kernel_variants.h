// Instruction-set variants of the row functions: plain loops for any
// processor, AVX2 steps and AVX-512 steps. Kernels run the best variant the
// processor has, chosen once per process; their *With forms take the
// variant, so that tests run every one against the reference.
#pragma once

#include <cstdint>

#include "colormodels/kernel_rows.h"

namespace kt::color {

enum class Variant { plain, avx2, avx512 };

// What the wide steps ask of AVX-512: all need F, BW, VL and DQ; those that
// permute bytes across the register need VBMI as well.
enum class Wide { base, vbmi };

inline Variant BestVariant(Wide wide = Wide::vbmi) noexcept {
    static const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                               __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq");
    static const bool vbmi = __builtin_cpu_supports("avx512vbmi");
    static const bool avx2 = __builtin_cpu_supports("avx2");
    if (avx512 && (wide == Wide::base || vbmi)) return Variant::avx512;
    return avx2 ? Variant::avx2 : Variant::plain;
}

// The variant the processor can run closest to `wanted`.
inline Variant Usable(Variant wanted, Wide wide = Wide::vbmi) noexcept {
    const Variant best = BestVariant(wide);
    return static_cast<int>(wanted) < static_cast<int>(best) ? wanted : best;
}

#define KT_KERNEL_WITH(name)                                                                                    \
    KtStatus name(::kt::color::Variant variant, const std::uint8_t* src, std::uint8_t* dst, int width,       \
                  int height, int srcPad, int dstPad, int black, int rgbOrder) noexcept

// Walks rows of the given shape with the row function of the variant the
// processor can run closest to `variant`: wide, narrow or plain.
template <class WideRow, class NarrowRow, class PlainRow>
KtStatus WalkVariant(Variant variant, rows::Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width,
                     int height, int srcPad, int dstPad, int rgbOrder, const WideRow& wide,
                     const NarrowRow& narrow, const PlainRow& plain) noexcept {
    switch (Usable(variant)) {
        case Variant::avx512: return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, wide);
        case Variant::avx2: return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, narrow);
        case Variant::plain: break;
    }
    return rows::Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder, plain);
}

}  // namespace kt::color
