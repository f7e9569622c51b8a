// ConversionParamsA and ConversionParams, one into the other. Path results
// are not reported: a path that does not convert arrives empty.
#pragma once

#include "ktclr/narrow.h"

namespace kt::convert {

// Fills a zeroed wide record of size KTCLR_SIZEOF_CONVERSION_PARAMS_EX with
// iccFlags 0 from the narrow one.
void ParamsFromNarrow(const ConversionParamsA& narrow, ConversionParams* wide) noexcept;

// Copies a wide record's choices back into the narrow one: method,
// iccOptions, the three paths, both memory pointers and the five trailing
// values (structSize is left as it is).
void ParamsToNarrow(const ConversionParams& wide, ConversionParamsA* narrow) noexcept;

}  // namespace kt::convert
