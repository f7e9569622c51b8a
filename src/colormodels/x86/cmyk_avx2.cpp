// The CMYK lane rows compiled for AVX2.
#include "colormodels/cmyk_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {

const rows::OrderedRows kRgbToCmykAvx2 = KT_ORDERED_ROWS_WITH(cmyk::FromRgbLanes, cmyk::BlackGeneration);
const rows::OrderedRows kCmykToRgbAvx2 = KT_ORDERED_ROWS_WITH(cmyk::ToRgbLanes, std::uint32_t);

}  // namespace kt::color::x86
