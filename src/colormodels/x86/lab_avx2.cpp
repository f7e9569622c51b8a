// The Lab lane rows compiled for AVX2.
#include "colormodels/lab_engine.h"
#include "colormodels/lab_forward_rows.h"
#include "colormodels/lab_inverse_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color::x86 {

const rows::OrderedRows kForwardLabAvx2 = KT_ORDERED_ROWS_WITH(lab_forward::ForwardRow, ForwardLab);
const rows::OrderedRows kInverseLabAvx2 = KT_ORDERED_ROWS_WITH(lab_inverse::InverseRow, InverseLanes);

}  // namespace kt::color::x86
