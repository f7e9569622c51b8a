// The row variants of the kernels from RGB to YCbCr, YUV and YIQ: lane
// loops for any processor, AVX2 steps of eight pixels, AVX-512 steps of
// sixteen. The kernels run the best one the processor has, chosen once per
// process; the *With forms take the variant, so that tests run every one.
#pragma once

#include <cstdint>

#include "colormodels/kernels.h"

namespace kt::color::affine {

enum class Variant { plain, avx2, avx512 };

inline Variant BestVariant() noexcept {
    static const Variant best =
        __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
                __builtin_cpu_supports("avx512vbmi")
            ? Variant::avx512
        : __builtin_cpu_supports("avx2") ? Variant::avx2
                                         : Variant::plain;
    return best;
}

// The variant the processor can run closest to `wanted`.
inline Variant Usable(Variant wanted) noexcept {
    const Variant best = BestVariant();
    return static_cast<int>(wanted) < static_cast<int>(best) ? wanted : best;
}

#define KT_KERNEL_WITH(name)                                                                                      \
    KtStatus name(affine::Variant variant, const std::uint8_t* src, std::uint8_t* dst, int width, int height,  \
                  int srcPad, int dstPad, int black, int rgbOrder) noexcept

KT_KERNEL_WITH(RgbToYcbcrWith);
KT_KERNEL_WITH(RgbToYuvWith);
KT_KERNEL_WITH(RgbToYiqWith);

}  // namespace kt::color::affine
