// Helpers shared by the profile-model tests: byte spelling, a record that
// frees itself, tag round trips through a profile and bare parses.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "icc/tag_types.h"
#include "ktclr/icc.h"
#include "support/support.h"

namespace icctest {

using kt::test::Bytes;
using kt::test::Wide;

constexpr uint32_t Sig(const char (&s)[5]) {
    return (uint32_t(uint8_t(s[0])) << 24) | (uint32_t(uint8_t(s[1])) << 16) | (uint32_t(uint8_t(s[2])) << 8) |
           uint32_t(uint8_t(s[3]));
}
inline uint32_t Be32(const uint8_t* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
}
inline void PutBe32(uint8_t* p, uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = uint8_t(v >> (24 - 8 * i));
}

inline Bytes Of(const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    return Bytes(b, b + n);
}
// A type head: the four signature characters and a zero reserved word.
inline Bytes Head(const char* type) {
    return {uint8_t(type[0]), uint8_t(type[1]), uint8_t(type[2]), uint8_t(type[3]), 0, 0, 0, 0};
}
inline Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}
inline Bytes Be32s(std::initializer_list<uint32_t> values) {
    Bytes out;
    for (uint32_t v : values)
        for (int shift = 24; shift >= 0; shift -= 8) out.push_back(uint8_t(v >> shift));
    return out;
}
inline Bytes Utf16Be(const std::u16string& s) {
    Bytes out;
    for (char16_t c : s) {
        out.push_back(uint8_t(c >> 8));
        out.push_back(uint8_t(c));
    }
    return out;
}

// A record that is initialized on construction and freed on destruction.
struct Profile {
    ICCProfileRecord r;
    Profile() { Vx_InitICCProfile(&r, KTCLR_SIZEOF_ICC_PROFILE_RECORD); }
    ~Profile() { Vx_FreeICCProfile(&r); }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ICCProfileRecord* operator->() { return &r; }
    ICCProfileRecord* get() { return &r; }
    Bytes Image() const { return r.profileData ? Of(r.profileData, r.profileSize) : Bytes{}; }
};

// Tag records over caller-owned arrays.
inline ICCXYZType XyzOf(ICCXYZNumber* values, uint32_t count) { return {Sig("XYZ "), 0, values, count}; }
inline ICCRawTagType RawOf(uint8_t* bytes, uint32_t count, uint32_t type) { return {type, 0, bytes, count}; }

// Room for any tag record, zeroed.
struct AnyRecord {
    alignas(std::max_align_t) unsigned char bytes[kt::icc::kMaxTagRecordBytes] = {};
    void* get() { return bytes; }
};

// Sets `record` as `tag` into a new profile, writes the image, parses it
// into a second profile and gets the tag back into `out`; `element`
// receives the element the first profile holds.
inline KtStatus RoundTrip(void* record, uint32_t type, uint32_t tag, void* out, Bytes* element = nullptr) {
    Profile p;
    if (Vx_InitICCHeader(p.get()) != STATUS_OK) return ERR_NO_MEMORY;
    const KtStatus set = Vx_SetICCTagData(p.get(), record, tag, type);
    if (set != STATUS_OK && set != WARN_UNKNOWN_TAG_TYPE) return set;
    if (Vx_GenerateICCPointer(p.get()) != STATUS_OK) return ERR_NO_MEMORY;
    if (element && p->tagCount > 0) {
        const ICCTagEntry row = p->tagList[p->tagCount - 1];
        *element = Of(p->profileData + row.offset, row.size);
    }
    Profile q;
    const KtStatus filled = Vx_FillICCProfileStructure(q.get(), p->profileData, p->profileSize);
    return filled != STATUS_OK ? filled : Vx_GetICCTagData(q.get(), out, tag);
}

// The element `record` encodes to as tag 'targ'.
inline Bytes ElementOf(void* record, uint32_t type) {
    Bytes element;
    AnyRecord back;
    RoundTrip(record, type, Sig("targ"), back.get(), &element);
    Vx_FreeICCTagType(back.get(), type);
    return element;
}

// Parses `size` bytes of `element`, copied into a block of exactly that
// size so that a read past it is caught, with the codec of `type`; the
// record is released afterwards.
inline KtStatus ParseBare(const uint8_t* element, uint32_t size, uint32_t type) {
    const kt::icc::TagTypeCodec* codec = kt::icc::FindTagTypeCodec(type);
    if (!codec) codec = &kt::icc::RawTagTypeCodec();
    std::unique_ptr<uint8_t[]> exact(new uint8_t[size ? size : 1]);
    if (size) std::memcpy(exact.get(), element, size);
    AnyRecord record;
    const KtStatus st = codec->parse(exact.get(), size, record.get());
    Vx_FreeICCTagType(record.get(), type);
    return st;
}

// The elements of a flat host-order curve set, each read back through the
// exported re-readers and padded to 4 bytes.
inline Bytes FlatSetElements(const void* flat, uint32_t count) {
    Bytes out;
    const auto* p = static_cast<const uint8_t*>(flat);
    for (uint32_t i = 0; p && i < count; ++i, p += Vx_ClrIntGetLutCurveSize(p, 1, 0, 0)) {
        AnyRecord c;
        const bool para = Vx_ClrIntIsParametricCurveType(p, 0);
        EXPECT_EQ(para ? Vx_ClrIntGetParametricCurveTypeLittleIndian(p, static_cast<ICCParametricCurveType*>(c.get()))
                       : Vx_ClrIntGetCurveTypeLittleIndian(p, static_cast<ICCCurveType*>(c.get())),
                  STATUS_OK);
        const Bytes element = ElementOf(c.get(), para ? Sig("para") : Sig("curv"));
        out.insert(out.end(), element.begin(), element.end());
        out.resize((out.size() + 3) & ~size_t{3});
        Vx_FreeICCTagType(c.get(), para ? Sig("para") : Sig("curv"));
    }
    return out;
}

}  // namespace icctest
