// Profile bytes from anywhere: parse, decode every tag, rebuild; the rebuilt
// image parses and rebuilds to itself; then the first tag is deleted
// through its decoded record.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Profile p;
    if (Vx_FillICCProfileStructure(&p.r, data, static_cast<std::uint32_t>(size)) != STATUS_OK) return 0;
    for (std::int32_t i = 0; i < p.r.tagCount && p.r.tagList; ++i) {  // every tag through the typed calls
        alignas(16) std::uint8_t typed[512] = {};
        const std::uint32_t sig = p.r.tagList[i].signature;
        Vx_GetICCTagData(&p.r, typed, sig);
        Vx_FreeICCTagType(typed, Vx_GetICCTagTypeSig(&p.r, sig));
    }
    if (Vx_GenerateICCPointer(&p.r) != STATUS_OK) return 0;
    const std::vector<std::uint8_t> image = p.Image();
    {
        fuzz::Profile again;
        fuzz::Check(Vx_FillICCProfileStructure(&again.r, image.data(), static_cast<std::uint32_t>(image.size())) ==
                        STATUS_OK, "a rebuilt image parses");
        fuzz::Check(Vx_GenerateICCPointer(&again.r) == STATUS_OK, "a parsed rebuilt image rebuilds");
        fuzz::Check(again.Image() == image, "rebuilding a rebuilt image changes nothing");
    }
    if (p.r.tagCount < 1) return 0;
    alignas(16) std::uint8_t typed[512] = {};
    const std::uint32_t sig = p.r.tagList[0].signature, type = Vx_GetICCTagTypeSig(&p.r, sig);
    Vx_DeleteICCTag(&p.r, sig, typed);
    Vx_FreeICCTagType(typed, type);
    return 0;
}
