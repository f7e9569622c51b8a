#include "convert/icc_format.h"

#include "colormodels/space_table.h"

namespace kt::convert {

bool IccFormatFor(int space, std::uint32_t* format) noexcept {
    const color::SpaceInfo* info = color::FindSpace(space);
    if (!info || info->iccFormat == 0) return false;
    *format = info->iccFormat;
    return true;
}

}  // namespace kt::convert
