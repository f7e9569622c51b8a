// Lab to RGB lane rows (lab_inverse_rows.h) per instruction set.
#include "colormodels/lab_engine.h"
#include "colormodels/lab_inverse_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::OrderedRows kPlain = KT_ORDERED_ROWS_WITH(lab_inverse::InverseRow, InverseLanes);
constexpr rows::IsaRows kRows{&kPlain, KT_X86(kInverseLabAvx2), KT_X86(kInverseLabAvx512)};
}  // namespace

const rows::IsaRows& InverseLabRows() noexcept { return kRows; }

}  // namespace kt::color
