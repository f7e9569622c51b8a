#include "icc/signature_sets.h"

#include <algorithm>
#include <iterator>

#include "icc/big_endian.h"

namespace kt::icc {
namespace {

constexpr std::uint32_t kDataColorSpaces[] = {
    Sig("XYZ "), Sig("Lab "), Sig("Luv "), Sig("YCbr"), Sig("Yxy "), Sig("RGB "), Sig("GRAY"),
    Sig("HSV "), Sig("HLS "), Sig("CMYK"), Sig("CMY "), Sig("2CLR"), Sig("3CLR"), Sig("4CLR"),
    Sig("5CLR"), Sig("6CLR"), Sig("7CLR"), Sig("8CLR"), Sig("9CLR"), Sig("ACLR"), Sig("BCLR"),
    Sig("CCLR"), Sig("DCLR"), Sig("ECLR"), Sig("FCLR"),
};
static_assert(std::size(kDataColorSpaces) == 25);

constexpr std::uint32_t kKnownTags[] = {
    Sig("A2B0"), Sig("A2B1"), Sig("A2B2"), Sig("B2A0"), Sig("B2A1"), Sig("B2A2"), Sig("bXYZ"), Sig("bTRC"),
    Sig("bkpt"), Sig("calt"), Sig("chad"), Sig("chrm"), Sig("clro"), Sig("clrt"), Sig("clot"), Sig("cprt"),
    Sig("desc"), Sig("dmdd"), Sig("dmnd"), Sig("gTRC"), Sig("gXYZ"), Sig("gamt"), Sig("kTRC"), Sig("lumi"),
    Sig("meas"), Sig("ncl2"), Sig("pre0"), Sig("pre1"), Sig("pre2"), Sig("pseq"), Sig("rTRC"), Sig("rXYZ"),
    Sig("resp"), Sig("targ"), Sig("tech"), Sig("view"), Sig("vued"), Sig("wtpt"),
};
static_assert(std::size(kKnownTags) == 38);

template <std::size_t N>
bool Contains(const std::uint32_t (&set)[N], std::uint32_t v) {
    return std::find(std::begin(set), std::end(set), v) != std::end(set);
}

}  // namespace

bool IsDataColorSpace(std::uint32_t signature) noexcept { return Contains(kDataColorSpaces, signature); }

bool IsUnknownTagSignature(std::uint32_t signature) noexcept { return !Contains(kKnownTags, signature); }

}  // namespace kt::icc
