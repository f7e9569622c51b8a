// 4-bit RGB in AVX-512 steps (x86/rgb444_avx512.h).
#include "colormodels/x86/rgb444_avx512.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {

template <class O>
void FromRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rgb444_512::FromRgbRow<O>(s, d, width);
}
template <class O>
void ToRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rgb444_512::ToRgbRow<O>(s, d, width);
}

}  // namespace

const rows::OrderedRows kRgbToRgb444Avx512 = KT_ORDERED_ROWS(FromRgb);
const rows::OrderedRows kRgb444ToRgbAvx512 = KT_ORDERED_ROWS(ToRgb);

}  // namespace kt::color::x86
