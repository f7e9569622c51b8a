// The XYZ lane rows compiled for AVX2.
#include "colormodels/x86/rows.h"
#include "colormodels/xyz_rows.h"

namespace kt::color::x86 {

const rows::OrderedRows kRgbToXyzAvx2 = KT_ORDERED_ROWS(xyz::ToXyzRow);
const rows::OrderedRows kXyzToRgbAvx2 = KT_ORDERED_ROWS(xyz::FromXyzRow);

}  // namespace kt::color::x86
