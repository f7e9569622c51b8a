// One tag element behind a minimal directory: the first input byte picks
// the element's type, the rest is its body. A decoded element is encoded
// into a fresh profile and decoded from there again, except 'mAB '/'mBA ',
// whose decoded form (flat elements) is not the form the setter takes.
#include <cstring>
#include <iterator>

#include "fuzz_input.h"

namespace {
constexpr char kTypes[][5] = {"XYZ ", "curv", "para", "mft1", "mft2", "mAB ", "mBA ", "sf32", "uf32",
                              "ui08", "ui16", "ui32", "ui64", "sig ", "text", "data", "dtim", "clrt",
                              "clro", "chrm", "meas", "view", "mluc", "ncl2", "pseq", "rcs2", "desc"};
constexpr std::uint32_t kTag = KTCLR_ICC_SIG('A', '2', 'B', '0');
constexpr std::uint32_t kElementAt = KTCLR_ICC_DIRECTORY_START + 12;

void Put32(std::uint8_t* at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(v >> (24 - 8 * i));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input in{data, size};
    const char* t = kTypes[in.Take(1) % std::size(kTypes)];
    const std::uint32_t type = KTCLR_ICC_SIG(t[0], t[1], t[2], t[3]), element = 8 + std::uint32_t(in.size);
    std::vector<std::uint8_t> bytes(kElementAt + element);
    std::uint8_t* b = bytes.data();
    Put32(b, std::uint32_t(bytes.size()));
    Put32(b + 8, 0x04200000);
    Put32(b + 36, KTCLR_ICC_SIG('a', 'c', 's', 'p'));
    Put32(b + 128, 1);
    Put32(b + 132, kTag), Put32(b + 136, kElementAt), Put32(b + 140, element);
    Put32(b + kElementAt, type);
    if (in.size) std::memcpy(b + kElementAt + 8, in.data, in.size);

    fuzz::Profile p, copy;
    alignas(16) std::uint8_t typed[512] = {}, again[512] = {};
    const bool settable = type != KTCLR_ICC_SIG('m', 'A', 'B', ' ') && type != KTCLR_ICC_SIG('m', 'B', 'A', ' ');
    if (Vx_FillICCProfileStructure(&p.r, b, std::uint32_t(bytes.size())) == STATUS_OK &&
        Vx_GetICCTagData(&p.r, typed, kTag) == STATUS_OK && settable && Vx_InitICCHeader(&copy.r) == STATUS_OK &&
        Vx_SetICCTagData(&copy.r, typed, kTag, type) == STATUS_OK)
        Vx_GetICCTagData(&copy.r, again, kTag);
    Vx_FreeICCTagType(typed, type);
    Vx_FreeICCTagType(again, type);
    return 0;
}
