// Profile bytes from anywhere: parse, decode every tag, rebuild, delete the
// first tag through its decoded record, free.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Profile p;
    if (Vx_FillICCProfileStructure(&p.r, data, static_cast<std::uint32_t>(size)) != STATUS_OK) return 0;
    fuzz::ReadEveryTag(&p.r);
    if (Vx_GenerateICCPointer(&p.r) != STATUS_OK || p.r.tagCount < 1) return 0;
    alignas(16) std::uint8_t typed[512] = {};
    const std::uint32_t sig = p.r.tagList[0].signature, type = Vx_GetICCTagTypeSig(&p.r, sig);
    Vx_DeleteICCTag(&p.r, sig, typed);
    Vx_FreeICCTagType(typed, type);
    return 0;
}
