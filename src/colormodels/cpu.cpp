#include "colormodels/cpu.h"

#include <atomic>

namespace kt::color {
namespace {

Isa Probe() noexcept {
#if defined(__x86_64__)
    __builtin_cpu_init();
    const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512vbmi");
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("ssse3");
    if (avx2 && avx512) return Isa::avx512;
    if (avx2) return Isa::avx2;
#endif
    return Isa::plain;
}

std::atomic<int> cap{static_cast<int>(Isa::avx512)};

}  // namespace

Isa CpuIsa() noexcept {
    static const Isa best = Probe();
    const int capped = cap.load(std::memory_order_relaxed);
    return static_cast<int>(best) < capped ? best : static_cast<Isa>(capped);
}

Isa SetIsaCap(Isa level) noexcept { return static_cast<Isa>(cap.exchange(static_cast<int>(level))); }

}  // namespace kt::color
