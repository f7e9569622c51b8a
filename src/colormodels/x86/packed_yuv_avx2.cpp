// Packed 4:2:2 rows for AVX2: to RGB in steps of eight pixels
// (x86/packed_avx2.h), from RGB the lane loops compiled for AVX2.
#include "colormodels/packed_yuv_rows.h"
#include "colormodels/x86/packed_avx2.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {
namespace {
using packed::kUyvy;
using packed::kYuyv;

template <class O>
void YuyvToRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    packed256::ToRgbRow<kYuyv.y0, kYuyv.u, kYuyv.y1, kYuyv.v, O>(s, d, width);
}
template <class O>
void UyvyToRgb(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    packed256::ToRgbRow<kUyvy.y0, kUyvy.u, kUyvy.y1, kUyvy.v, O>(s, d, width);
}

}  // namespace

const rows::OrderedRows kRgbToYuyvAvx2 = KT_ORDERED_ROWS(packed::RgbTo422Row<kYuyv>);
const rows::OrderedRows kRgbToUyvyAvx2 = KT_ORDERED_ROWS(packed::RgbTo422Row<kUyvy>);
const rows::OrderedRows kYuyvToRgbAvx2 = KT_ORDERED_ROWS(YuyvToRgb);
const rows::OrderedRows kUyvyToRgbAvx2 = KT_ORDERED_ROWS(UyvyToRgb);

}  // namespace kt::color::x86
