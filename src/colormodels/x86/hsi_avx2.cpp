// The HSI inverse's lane rows compiled for AVX2.
#include "colormodels/hsi_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {

const rows::OrderedRows kHsiToRgbAvx2 = KT_ORDERED_ROWS_WITH(hsi::ToRgbRow, hsi::SectorTable);

}  // namespace kt::color::x86
