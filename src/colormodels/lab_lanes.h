// The Lab rows' lane loops are written once and compiled three times: for
// the baseline instruction set, for AVX2 and for AVX-512, the best one the
// processor has chosen once per process. Every variant keeps the double
// arithmetic exactly as written: no contraction into fused multiply-adds
// (AVX-512 would otherwise allow them).
#pragma once

#include <bit>
#include <cstdint>

#include "colormodels/kernel_rows.h"

namespace kt::color::lanes {

enum class Isa { baseline, avx2, avx512 };

inline Isa BestIsa() noexcept {
    static const Isa best = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                                    __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")
                                ? Isa::avx512
                            : __builtin_cpu_supports("avx2") ? Isa::avx2
                                                             : Isa::baseline;
    return best;
}

// The variant the processor can run closest to `wanted` (for tests that run
// each variant).
inline Isa Usable(Isa wanted) noexcept {
    const Isa best = BestIsa();
    return static_cast<int>(wanted) < static_cast<int>(best) ? wanted : best;
}

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
