// RGB to Lab rows (lab_forward_rows.h) per instruction set.
#include "colormodels/lab_engine.h"
#include "colormodels/lab_forward_rows.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
constexpr rows::OrderedRows kPlain = KT_ORDERED_ROWS_WITH(lab_forward::ForwardRow, ForwardLab);
constexpr rows::IsaRows kRows{&kPlain, KT_X86(kForwardLabAvx2), KT_X86(kForwardLabAvx512)};
}  // namespace

const rows::IsaRows& ForwardLabRows() noexcept { return kRows; }

}  // namespace kt::color
