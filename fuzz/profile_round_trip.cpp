// Parse, rebuild, parse the rebuilt image and rebuild it again: the second
// image equals the first.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Profile first;
    if (Vx_FillICCProfileStructure(&first.r, data, static_cast<std::uint32_t>(size)) != STATUS_OK ||
        Vx_GenerateICCPointer(&first.r) != STATUS_OK)
        return 0;
    const std::vector<std::uint8_t> image = first.Image();
    fuzz::Profile second;
    fuzz::Check(Vx_FillICCProfileStructure(&second.r, image.data(), static_cast<std::uint32_t>(image.size())) ==
                    STATUS_OK, "a rebuilt image parses");
    fuzz::Check(Vx_GenerateICCPointer(&second.r) == STATUS_OK, "a parsed rebuilt image rebuilds");
    fuzz::Check(second.Image() == image, "rebuilding a rebuilt image changes nothing");
    return 0;
}
