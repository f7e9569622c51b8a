// The Lab rows' lane loops are written once (lab_forward_rows.h,
// lab_inverse_rows.h) and compiled for each instruction set (x86/lab_*.cpp).
// Every level keeps the double arithmetic exactly as written: the library
// is compiled without contraction into fused multiply-adds.
#pragma once

#include <bit>
#include <cstdint>

#include "colormodels/kernel_rows.h"

namespace kt::color::lanes {

// cond ? a : b on the bits. The vectorizer takes it where a choice between
// doubles would stop it (a choice that makes one side a constant invites
// the compiler to branch around the other side).
KT_ROW_INLINE double Select(bool cond, double a, double b) {
    const std::int64_t mask = -static_cast<std::int64_t>(cond);
    return std::bit_cast<double>((std::bit_cast<std::int64_t>(a) & mask) | (std::bit_cast<std::int64_t>(b) & ~mask));
}

}  // namespace kt::color::lanes
