// The handle's ICC machinery: built-in transforms, the custom setup from
// the caller's files or memory, and rebuilding after a parameter change.
#include "convert/icc_setup.h"

#include <lcms2.h>

#include <cstring>

#include "convert/caller_path.h"
#include "convert/handle_internal.h"
#include "convert/icc_builder.h"
#include "convert/icc_format.h"
#include "platform/alloc.h"
#include "platform/probe.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;

// Copies a caller's in-memory profile, record and bytes, into the handle.
KtStatus CopyProfileMemory(const ProfileMemory* rec, ProfileMemory** out) {
    if (platform::IsBadReadPtr(rec, sizeof(ProfileMemory))) return ERR_INVALID_PARAMETER;
    const std::uint32_t length = rec->length;
    if (length == 0 || platform::IsBadReadPtr(rec->data, length)) return ERR_INVALID_PARAMETER;
    auto* copy = static_cast<ProfileMemory*>(KT_ALLOC(sizeof(ProfileMemory)));
    if (!copy) return ERR_ALLOC;
    *copy = *rec;
    copy->data = KT_ALLOC(length);
    if (!copy->data) {
        KT_FREE(copy);
        return ERR_ALLOC;
    }
    std::memcpy(copy->data, rec->data, length);
    *out = copy;
    return STATUS_OK;
}

// One side: memory wins; an existing file is remembered by name; a name
// that does not exist is ignored.
KtStatus TakeSide(const ProfileMemory* memory, const KtChar16* path, ProfileMemory** keptMemory,
                  KtChar16* keptPath) {
    if (memory) return CopyProfileMemory(memory, keptMemory);
    bool found = false;
    return TakeExistingPath(path, keptPath, &found);
}

IccProfileSource Held(const ProfileMemory* memory, const KtChar16* path) {
    IccProfileSource s;
    if (memory) {
        s.bytes = memory->data;
        s.length = memory->length;
    }
    s.path = path;
    return s;
}

}  // namespace

KtStatus BuildBuiltinIccTransform(ClrHandle* h, std::uint32_t iccFlags) noexcept {
    KtStatus status = STATUS_OK;
    h->iccTransform = BuildIccTransform(h->srcFormat, h->dstFormat, iccFlags, {}, {}, &status);
    return status;
}

KtStatus SetupCustomIcc(ClrHandle* h, int src, int dst, const ConversionParams* p) noexcept {
    if (!h || !p) return ERR_INVALID_PARAMETER;
    h->customIccTransform = nullptr;
    if (!IccFormatFor(src, &h->srcFormat) || !IccFormatFor(dst, &h->dstFormat)) return ERR_NO_ICC_FORMAT;
    const std::uint32_t flags = (p->structSize == KTCLR_SIZEOF_CONVERSION_PARAMS_EX ? p->iccFlags : 0) + kIccFlagCustom;
    KtStatus status = TakeSide(p->srcProfileMemory, p->srcProfilePath, &h->srcProfileMemory, h->srcProfilePath);
    if (status != STATUS_OK) return status;
    status = TakeSide(p->dstProfileMemory, p->dstProfilePath, &h->dstProfileMemory, h->dstProfilePath);
    if (status != STATUS_OK) return status;
    return RebuildCustomIccTransform(h, flags);
}

KtStatus RebuildCustomIccTransform(ClrHandle* h, std::uint32_t iccFlags) noexcept {
    KtStatus status = STATUS_OK;
    h->customIccTransform =
        BuildIccTransform(h->srcFormat, h->dstFormat, iccFlags, Held(h->srcProfileMemory, h->srcProfilePath),
                          Held(h->dstProfileMemory, h->dstProfilePath), &status);
    return status;
}

void DeleteIccTransform(void* transform) noexcept {
    if (transform) cmsDeleteTransform(static_cast<cmsHTRANSFORM>(transform));
}

}  // namespace kt::convert
