// Helpers for the curve and LUT tag tests: round trips through a profile,
// element bytes, and parsing of bare element bytes through the codec table.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "icc/tag_types.h"
#include "icc_fixtures.h"

namespace icctest {

// Sets `host` as `tag` into a new profile, regenerates the image, parses
// the image into a second profile and gets the tag back into `back`.
template <class Record>
KtStatus RoundTrip(Record* host, uint32_t type, uint32_t tag, Record* back, std::vector<uint8_t>* element = nullptr) {
    Profile p;
    if (Vx_InitICCHeader(p.get()) != STATUS_OK) return ERR_NO_MEMORY;
    const KtStatus set = Vx_SetICCTagData(p.get(), host, tag, type);
    if (set != STATUS_OK) return set;
    if (Vx_GenerateICCPointer(p.get()) != STATUS_OK) return ERR_NO_MEMORY;
    if (element) {
        const ICCTagEntry row = p->tagList[0];
        element->assign(p->profileData + row.offset, p->profileData + row.offset + row.size);
    }
    Profile q;
    const KtStatus filled = Vx_FillICCProfileStructure(q.get(), p->profileData, p->profileSize);
    if (filled != STATUS_OK) return filled;
    return Vx_GetICCTagData(q.get(), back, tag);
}

// The element `host` encodes to, as Vx_SetICCTagData writes it.
template <class Record>
std::vector<uint8_t> ElementOf(Record* host, uint32_t type) {
    std::vector<uint8_t> bytes;
    Record back{};
    EXPECT_EQ(RoundTrip(host, type, Sig("A2B0"), &back, &bytes), STATUS_OK);
    Vx_FreeICCTagType(&back, type);
    return bytes;
}

// A record of any tag type, large enough for every codec.
struct AnyRecord {
    alignas(std::max_align_t) unsigned char bytes[kt::icc::kMaxTagRecordBytes];
};

// Parses `size` bytes of `element` (copied into a block of exactly that
// size, so a read past it is caught) with the codec of `type`; the record
// is released afterwards.
inline KtStatus ParseBare(const uint8_t* element, uint32_t size, uint32_t type) {
    const kt::icc::TagTypeCodec* codec = kt::icc::FindTagTypeCodec(type);
    if (!codec) return ERR_INVALID_PARAMETER;
    std::unique_ptr<uint8_t[]> exact(new uint8_t[size ? size : 1]);
    if (size) std::memcpy(exact.get(), element, size);
    AnyRecord record{};
    const KtStatus st = codec->parse(exact.get(), size, &record);
    Vx_FreeICCTagType(&record, type);
    return st;
}

// Every prefix of a valid element (down to the 8-byte head the directory
// guarantees) is refused with ERR_INVALID_TAG and the whole element parses;
// only the last `optionalTail` bytes (padding inside the element) may be
// missing.
inline void ExpectPrefixesRefused(const std::vector<uint8_t>& element, uint32_t type, uint32_t optionalTail = 0) {
    const uint32_t size = static_cast<uint32_t>(element.size());
    for (uint32_t n = 8; n < size; ++n)
        EXPECT_EQ(ParseBare(element.data(), n, type), n + optionalTail < size ? ERR_INVALID_TAG : STATUS_OK)
            << "prefix of " << n << " bytes";
    EXPECT_EQ(ParseBare(element.data(), size, type), STATUS_OK);
}

inline void PutBe16(uint8_t* p, uint16_t v) {
    p[0] = uint8_t(v >> 8);
    p[1] = uint8_t(v);
}
inline uint16_t Be16(const uint8_t* p) { return uint16_t((p[0] << 8) | p[1]); }

}  // namespace icctest
