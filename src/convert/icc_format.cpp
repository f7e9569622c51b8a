#include "convert/icc_format.h"

#include "ktclr/colorspace.h"

namespace kt::convert {

bool IccFormatFor(int space, std::uint32_t* format) noexcept {
    switch (space) {
        case CS_RGB: *format = kTypeRgb8; return true;
        case CS_CMYK:
        case CS_YCCK: *format = kTypeCmyk8; return true;  // YCCK is converted to CMYK around the transform
        case CS_CMY: *format = kTypeCmy8; return true;
        case CS_LAB: *format = kTypeLab8; return true;
        case CS_BGR: *format = kTypeBgr8; return true;
        default: return false;
    }
}

}  // namespace kt::convert
