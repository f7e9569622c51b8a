// The Lab rows' lane loops are written once and compiled three times: for
// the baseline instruction set, for AVX2 and for AVX-512, the best one the
// processor has chosen once per process. Every variant keeps the double
// arithmetic exactly as written: no contraction into fused multiply-adds
// (AVX-512 would otherwise allow them).
#pragma once

#include <bit>
#include <cstdint>

#include "colormodels/kernel_variants.h"

namespace kt::color::lanes {

// The Lab rows' wide steps need no byte permutes.
inline Variant BestLabVariant() noexcept { return BestVariant(Wide::base); }

// cond ? a : b on the bits. The vectorizer takes it where a choice between
// doubles would stop it (a choice that makes one side a constant invites
// the compiler to branch around the other side).
KT_ROW_INLINE double Select(bool cond, double a, double b) {
    const std::int64_t mask = -static_cast<std::int64_t>(cond);
    return std::bit_cast<double>((std::bit_cast<std::int64_t>(a) & mask) | (std::bit_cast<std::int64_t>(b) & ~mask));
}

}  // namespace kt::color::lanes

#define KT_LANES_PLAIN gnu::optimize("fp-contract=off")
#define KT_LANES_AVX2 gnu::target("avx2"), gnu::optimize("fp-contract=off")
#define KT_LANES_AVX512 gnu::target("avx512f,avx512dq,avx512bw,avx512vl"), gnu::optimize("fp-contract=off")
