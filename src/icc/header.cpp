// Vx_InitICCHeader and the header setters. Each setter validates its value
// against its accepted set, stores it and rebuilds the file image.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "icc/big_endian.h"
#include "icc/header_codec.h"
#include "icc/signature_sets.h"
#include "ktclr/icc.h"
#include "platform/alloc.h"

namespace {

constexpr auto kModule = kt::mem::Module::iccprofile;

using kt::icc::Sig;

constexpr uint32_t kDefaultVersion = 0x04200000;  // 4.2
// D50, converted at run time so that the header carries exactly what the
// fixed-point converter makes of these numbers.
constexpr double kD50X = 0.9642;
constexpr double kD50Y = 1.0;
constexpr double kD50Z = 0.8249;

constexpr uint32_t kFlagsMask = 3;
constexpr uint32_t kAttributesMask = 15;
constexpr uint32_t kLastRenderingIntent = 3;

constexpr uint32_t kDeviceClasses[] = {Sig("scnr"), Sig("mntr"), Sig("prtr"), Sig("link"),
                                       Sig("spac"), Sig("abst"), Sig("nmcl")};
constexpr uint32_t kPlatforms[] = {0, Sig("APPL"), Sig("MSFT"), Sig("SGI "), Sig("SUNW")};
constexpr uint32_t kConnectionSpaces[] = {Sig("XYZ "), Sig("Lab ")};

template <std::size_t N>
bool OneOf(const uint32_t (&set)[N], uint32_t value) {
    return std::find(std::begin(set), std::end(set), value) != std::end(set);
}

bool HasHeader(const ICCProfileRecord* record) { return record && record->header; }

// The common path of every setter: check, store, rebuild.
template <class Store>
KtStatus SetField(ICCProfileRecord* record, bool accepted, Store store) {
    if (!HasHeader(record) || !accepted) return ERR_INVALID_PARAMETER;
    store(*record->header);
    return kt::icc::RebuildProfileImage(record);
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_InitICCHeader(ICCProfileRecord* record) {
    if (!record) return ERR_INVALID_PARAMETER;
    if (!record->header) {
        record->header = static_cast<ICCHeader*>(KT_ALLOC_ZERO(sizeof(ICCHeader)));
        if (!record->header) return ERR_NO_MEMORY;
    }
    ICCHeader* h = record->header;
    std::memset(h, 0, sizeof *h);
    h->version = kDefaultVersion;
    h->magic = Sig("acsp");
    h->illuminant.X = static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(kD50X));
    h->illuminant.Y = static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(kD50Y));
    h->illuminant.Z = static_cast<int32_t>(Vx_DoubleTo2bFixed2bNumber(kD50Z));
    h->size = kt::icc::kDirectoryStart;
    return STATUS_OK;
}

// No identifier is computed: the field is only cleared.
extern "C" KTCLR_API KtStatus Vx_SetICCProfileId(ICCProfileRecord* record) {
    return SetField(record, true, [](ICCHeader& h) { std::memset(h.profileId, 0, sizeof h.profileId); });
}

extern "C" KTCLR_API KtStatus Vx_SetICCCMMType(ICCProfileRecord* record, uint32_t cmmType) {
    return SetField(record, true, [=](ICCHeader& h) { h.cmmType = cmmType; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCDeviceClass(ICCProfileRecord* record, int32_t deviceClass) {
    const auto v = static_cast<uint32_t>(deviceClass);
    return SetField(record, OneOf(kDeviceClasses, v), [=](ICCHeader& h) { h.deviceClass = v; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCColorSpace(ICCProfileRecord* record, int32_t colorSpace) {
    const auto v = static_cast<uint32_t>(colorSpace);
    return SetField(record, kt::icc::IsDataColorSpace(v), [=](ICCHeader& h) { h.colorSpace = v; });
}

// A device link connects two data spaces, so it takes any of them; it also
// returns before rebuilding, which leaves the image with the previous value
// until the next edit.
extern "C" KTCLR_API KtStatus Vx_SetICCConnectionSpace(ICCProfileRecord* record, int32_t connectionSpace) {
    const auto v = static_cast<uint32_t>(connectionSpace);
    if (!HasHeader(record) || record->header->deviceClass == 0) return ERR_INVALID_PARAMETER;
    if (record->header->deviceClass == Sig("link")) {
        if (!kt::icc::IsDataColorSpace(v)) return ERR_INVALID_PARAMETER;
        record->header->connectionSpace = v;
        return STATUS_OK;
    }
    return SetField(record, OneOf(kConnectionSpaces, v), [=](ICCHeader& h) { h.connectionSpace = v; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCPrimaryPlatform(ICCProfileRecord* record, int32_t platform) {
    const auto v = static_cast<uint32_t>(platform);
    return SetField(record, OneOf(kPlatforms, v), [=](ICCHeader& h) { h.platform = v; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCFlags(ICCProfileRecord* record, int32_t flags) {
    return SetField(record, true, [=](ICCHeader& h) { h.flags = static_cast<uint32_t>(flags) & kFlagsMask; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCDevManufacturer(ICCProfileRecord* record, uint32_t manufacturer) {
    return SetField(record, true, [=](ICCHeader& h) { h.manufacturer = manufacturer; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCDevModel(ICCProfileRecord* record, uint32_t model) {
    return SetField(record, true, [=](ICCHeader& h) { h.model = model; });
}

// Only the four defined attribute bits are kept; the high half is always 0
// (the argument is accepted for the interface's sake and ignored).
extern "C" KTCLR_API KtStatus Vx_SetICCDeviceAttributes(ICCProfileRecord* record, int32_t low, uint32_t /*high*/) {
    return SetField(record, true,
                    [=](ICCHeader& h) { h.attributes = static_cast<uint32_t>(low) & kAttributesMask; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCRenderingIntent(ICCProfileRecord* record, uint32_t intent) {
    return SetField(record, intent <= kLastRenderingIntent, [=](ICCHeader& h) { h.renderingIntent = intent; });
}

extern "C" KTCLR_API KtStatus Vx_SetICCCreator(ICCProfileRecord* record, uint32_t creator) {
    return SetField(record, true, [=](ICCHeader& h) { h.creator = creator; });
}

// No range checks on the six values.
extern "C" KTCLR_API KtStatus Vx_SetICCDateTime(ICCProfileRecord* record, const uint16_t* dateTime) {
    return SetField(record, dateTime != nullptr,
                    [=](ICCHeader& h) { std::memcpy(h.dateTime, dateTime, sizeof h.dateTime); });
}
