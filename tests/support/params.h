// Building conversion parameters in tests.
#pragma once

#include <cstring>

#include "ktclr/convert.h"

namespace kt::test {

inline ConversionParams Params(std::uint32_t method, std::uint32_t prepare = 0,
                               std::uint32_t size = KTCLR_SIZEOF_CONVERSION_PARAMS_EX) {
    ConversionParams p;
    std::memset(&p, 0, sizeof p);
    p.structSize = size;
    p.method = method;
    p.prepareMethods = prepare ? prepare : method;
    return p;
}

inline CmykOptions Cmyk(std::uint32_t value, std::uint32_t mask = 0) {
    return CmykOptions{KTCLR_SIZEOF_CMYK_OPTIONS, value, mask};
}

inline LabOptions Lab(std::int32_t base, std::uint32_t mask = 0) {
    LabOptions o{KTCLR_SIZEOF_LAB_OPTIONS, mask, {}};
    for (int i = 0; i < 6; ++i) o.ranges[i] = base + i;
    return o;
}

inline YuvOptions Yuv(void* buffer, std::uint32_t count, std::uint32_t mask = 0) {
    YuvOptions o;
    std::memset(&o, 0, sizeof o);
    o.structSize = KTCLR_SIZEOF_YUV_OPTIONS;
    o.validMask = mask;
    o.buffer = buffer;
    o.byteCount = count;
    return o;
}

}  // namespace kt::test
