// Lifecycle of ICCProfileRecord: preparation and release of its buffers.
#include <cstddef>
#include <cstring>
#include <iterator>

#include "ktclr/icc.h"
#include "platform/alloc.h"

namespace {

constexpr auto kModule = kt::mem::Module::iccprofile;

// Callers count the record in its 32-bit layout: eight fields of four bytes.
// Each entry maps one of those four-byte slots onto the field it stands for.
struct Slot {
    std::size_t offset;
    std::size_t size;
};
constexpr std::size_t kSlotBytes = 4;
constexpr Slot kSlots[] = {
    {offsetof(ICCProfileRecord, structSize), sizeof(uint32_t)},
    {offsetof(ICCProfileRecord, profileSize), sizeof(uint32_t)},
    {offsetof(ICCProfileRecord, tagDataSize), sizeof(uint32_t)},
    {offsetof(ICCProfileRecord, header), sizeof(ICCHeader*)},
    {offsetof(ICCProfileRecord, tagCount), sizeof(int32_t)},
    {offsetof(ICCProfileRecord, tagList), sizeof(ICCTagEntry*)},
    {offsetof(ICCProfileRecord, tagData), sizeof(uint8_t*)},
    {offsetof(ICCProfileRecord, profileData), sizeof(uint8_t*)},
};
static_assert(sizeof(kSlots) / sizeof(kSlots[0]) * kSlotBytes == KTCLR_SIZEOF_ICC_PROFILE_RECORD);

// Zeroes what the first `size` bytes of the 32-bit layout cover: a field
// covered completely is cleared whole, a partly covered one loses its first
// bytes, as the narrow layout would.
void ZeroPrefix(ICCProfileRecord* record, std::uint32_t size) {
    auto* base = reinterpret_cast<unsigned char*>(record);
    for (std::size_t i = 0; i < std::size(kSlots); ++i) {
        const std::size_t start = i * kSlotBytes;
        if (size <= start) break;
        const std::size_t covered = size - start;
        const std::size_t bytes = covered >= kSlotBytes ? kSlots[i].size : covered;
        std::memset(base + kSlots[i].offset, 0, bytes);
    }
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_InitICCProfile(ICCProfileRecord* record, uint32_t size) {
    if (!record || size > KTCLR_SIZEOF_ICC_PROFILE_RECORD) return ERR_INVALID_PARAMETER;
    ZeroPrefix(record, size);
    record->structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    return STATUS_OK;
}

// The tagCount gate matters: deleting the last tag leaves the count at 0,
// and the gate keeps those buffers from being released twice.
extern "C" KTCLR_API void Vx_ClrIntFreeTagList(ICCProfileRecord* record) {
    if (!record || record->tagCount == 0) return;
    if (record->tagList) {
        KT_FREE(record->tagList);
        record->tagList = nullptr;
    }
    if (record->tagData) {
        KT_FREE(record->tagData);
        record->tagData = nullptr;
    }
}

extern "C" KTCLR_API void Vx_ClrIntFreeICCData(ICCProfileRecord* record) {
    if (!record || !record->profileData) return;
    KT_FREE_LARGE(record->profileData);
    record->profileData = nullptr;
}

// Vx_FreeICCProfile answers 0, which is no status at all, whatever it does
// (ProfileRecord.FreeKeepsTheTagCountGate pins it).
constexpr KtStatus kFreeAnswer = static_cast<KtStatus>(0);

extern "C" KTCLR_API KtStatus Vx_FreeICCProfile(ICCProfileRecord* record) {
    if (!record) return kFreeAnswer;
    Vx_ClrIntFreeTagList(record);
    if (record->header) {
        KT_FREE(record->header);
        record->header = nullptr;
    }
    Vx_ClrIntFreeICCData(record);
    return kFreeAnswer;
}
