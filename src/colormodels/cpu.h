// The instruction sets the kernels' rows are written for, one probe of the
// processor and a process-wide cap that tests lower to run every level.
#pragma once

namespace kt::color {

// Each level includes the ones below it. avx2: AVX2 (with SSSE3); avx512:
// AVX-512 F, BW, VL, DQ and VBMI.
enum class Isa : int { plain = 0, avx2 = 1, avx512 = 2 };
inline constexpr int kIsaLevels = 3;

// The best level the processor runs, at most the cap.
Isa CpuIsa() noexcept;

// Caps the level every kernel uses, process-wide, and returns the previous
// cap (Isa::avx512, no cap, at start). For tests, which run each kernel at
// every level the processor has; not exported.
Isa SetIsaCap(Isa cap) noexcept;

}  // namespace kt::color
