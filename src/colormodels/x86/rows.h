// The rows of the instruction-set files, by kernel; kernels name them with
// KT_X86(name), which is null where the files are not built (not x86-64).
#pragma once

#include "colormodels/kernel_rows.h"

#if defined(__x86_64__)
#define KT_X86(name) (&::kt::color::x86::name)

namespace kt::color::x86 {

extern const rows::OrderedRows kRgbToHsvAvx2, kHsvToRgbAvx2;
extern const rows::OrderedRows kRgbToCmykAvx2, kCmykToRgbAvx2;
extern const rows::OrderedRows kHsiToRgbAvx2;
extern const rows::OrderedRows kRgbToHlsAvx2, kHlsToRgbAvx2;
extern const rows::OrderedRows kRgbToYcbcrAvx2, kRgbToYcbcrAvx512, kYcbcrToRgbAvx2;
extern const rows::OrderedRows kRgbToYuvAvx2, kRgbToYuvAvx512, kYuvToRgbAvx2, kRgbToYiqAvx2, kRgbToYiqAvx512;
extern const rows::OrderedRows kSwapAvx2, kInvertAvx2;
extern const rows::OrderedRows kRgbToYuyvAvx2, kRgbToUyvyAvx2, kYuyvToRgbAvx2, kUyvyToRgbAvx2, kYuyvToRgbAvx512,
    kUyvyToRgbAvx512;
extern const rows::OrderedRows kRgbToRgb444Avx2, kRgb444ToRgbAvx2, kRgbToRgb444Avx512, kRgb444ToRgbAvx512;
extern const rows::OrderedRows kRgbToXyzAvx2, kXyzToRgbAvx2;
extern const rows::OrderedRows kForwardLabAvx2, kForwardLabAvx512, kInverseLabAvx2, kInverseLabAvx512;

}  // namespace kt::color::x86
#else
#define KT_X86(name) nullptr
#endif
