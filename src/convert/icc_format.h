// Color space to Little CMS pixel format (the space table's, 8 bits per
// channel).
#pragma once

#include <cstdint>

namespace kt::convert {

// False for a space without an ICC format.
bool IccFormatFor(int space, std::uint32_t* format) noexcept;

}  // namespace kt::convert
