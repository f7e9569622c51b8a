// The custom emulation grid reader on any file; the first input byte picks
// three or four samples a pixel.
#include "colormodels/emulation_grid_file.h"
#include "fuzz_input.h"
#include "platform/alloc.h"

namespace {
constexpr auto kModule = kt::mem::Module::ktclr;
const fuzz::ScratchFile file;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input in{data, size};
    const std::uint32_t samples = in.Take(1) & 1 ? 4 : 3;
    file.Write(in.data, in.size);
    std::uint8_t* grid = nullptr;
    const std::uint32_t minBytes = samples == 4 ? 17 * 17 * 17 * 17 * 3 : 33 * 33 * 33 * 3;
    if (kt::color::ReadGridFile(file.wide.c_str(), samples, minBytes, &grid) == STATUS_OK) KT_FREE(grid);
    return 0;
}
