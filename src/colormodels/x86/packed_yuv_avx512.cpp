// Packed 4:2:2 to RGB in AVX-512 steps of sixteen pixels
// (x86/packed_avx512.h).
#include "colormodels/packed_yuv_rows.h"
#include "colormodels/x86/packed_avx512.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using packed::kUyvy;
using packed::kYuyv;

template <class O>
void YuyvToRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    packed512::ToRgbRow<kYuyv.y0, kYuyv.u, kYuyv.y1, kYuyv.v, O>(s, d, width);
}
template <class O>
void UyvyToRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    packed512::ToRgbRow<kUyvy.y0, kUyvy.u, kUyvy.y1, kUyvy.v, O>(s, d, width);
}

}  // namespace

const rows::OrderedRows kYuyvToRgbAvx512 = KT_ORDERED_ROWS(YuyvToRgb);
const rows::OrderedRows kUyvyToRgbAvx512 = KT_ORDERED_ROWS(UyvyToRgb);

}  // namespace kt::color::x86
