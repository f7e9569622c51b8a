// What the AVX-512 steps share: the intrinsics, brought in so that GCC 12
// keeps quiet about their undefined pass-through operands, and the 48-byte
// store and row-end masks of sixteen 3-byte pixels. Compiled for AVX-512
// only (files named *_avx512.cpp).
#pragma once

#if !defined(__AVX512VBMI__)
#error "include only from an AVX-512 file (*_avx512.cpp)"
#endif

// GCC 12 takes the AVX-512 intrinsics' undefined pass-through operands for
// uninitialized reads (its bug 105593); the state applies where the
// intrinsics are defined, so this header must bring them in first.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop

#include <cstdint>

namespace kt::color::avx512 {
// Internal to each instruction-set file: no inline function compiled for
// one level may stand in for another's at link time.
namespace {

constexpr int kRegisterBytes = 64;

// The mask of bytes 0..n-1 of a register, for the masked loads and stores
// of a row's last pixels: n < 64 in LowBytes, n <= 64 in UpToAllBytes.
constexpr std::uint64_t LowBytes(int n) { return (std::uint64_t{1} << n) - 1; }
constexpr std::uint64_t UpToAllBytes(int n) { return n >= kRegisterBytes ? ~std::uint64_t{0} : LowBytes(n); }

// Stores the low 48 bytes of a register: sixteen 3-byte pixels.
[[gnu::always_inline]] inline void Store48(std::uint8_t* d, __m512i bytes) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), _mm512_castsi512_si256(bytes));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 32), _mm512_extracti32x4_epi32(bytes, 2));
}

}  // namespace
}  // namespace kt::color::avx512
