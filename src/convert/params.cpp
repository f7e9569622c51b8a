// Changing a live handle: Vx_ClrSetConversionParams.
#include <cstring>

#include "convert/emulation_setup.h"
#include "colormodels/lab_tables.h"
#include "convert/handle_internal.h"
#include "convert/icc_setup.h"
#include "platform/alloc.h"
#include "platform/probe.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr int kLabRanges = 6;

// Options copies made by this call, freed again when a later step of the
// same call cannot allocate.
struct MadeHere {
    bool cmyk = false;
    bool yuv = false;
};

void Unmake(ClrHandle* h, const MadeHere& made) {
    if (made.cmyk && h->cmykOptions) {
        KT_FREE(h->cmykOptions);
        h->cmykOptions = nullptr;
    }
    if (made.yuv && h->yuvOptions) {
        KT_FREE(h->yuvOptions);
        h->yuvOptions = nullptr;
    }
}

KtStatus ChangeMethod(ClrHandle* h, std::uint32_t method) {
    const bool checked = method == METHOD_BUILTIN || method == METHOD_ICC || method == METHOD_BUILTIN_EMULATION ||
                         method == METHOD_CUSTOM_ICC;
    if (checked && !(h->preparedMethods & method)) return ERR_BAD_METHOD;
    h->method = method;  // other values are taken as they come
    return STATUS_OK;
}

KtStatus ChangeCmyk(ClrHandle* h, const ConversionParams* p, MadeHere& made) {
    if (!Either(h->srcSpace, h->dstSpace, CS_CMYK)) return ERR_BAD_METHOD;
    const CmykOptions* rec = p->cmykOptions;
    if (!rec) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(rec, sizeof(CmykOptions))) return ERR_BAD_POINTER;
    if (!h->cmykOptions) {
        h->cmykOptions = static_cast<CmykOptions*>(KT_ALLOC(sizeof(CmykOptions)));
        if (!h->cmykOptions) return ERR_ALLOC;
        std::memcpy(h->cmykOptions, rec, sizeof(CmykOptions));
        made.cmyk = true;
    } else if (rec->validMask & 1u) {
        h->cmykOptions->value = rec->value;
    }
    return STATUS_OK;
}

KtStatus ApplyYuv(YuvOptions* mine, const YuvOptions* rec) {
    const std::uint32_t mask = rec->validMask;
    for (int i = 0; i < 4; ++i)
        if (mask & (1u << i)) mine->values[i] = rec->values[i];
    if (mask & KTCLR_YUV_BUFFER) {
        // The handle's buffer is the caller's first one; copy into it only
        // what it can hold.
        const std::uint32_t n = rec->byteCount;
        if (n > mine->byteCount) return ERR_INVALID_PARAMETER;
        if (platform::IsBadReadPtr(rec->buffer, n) || platform::IsBadWritePtr(mine->buffer, n)) return ERR_BAD_POINTER;
        if (n) std::memmove(mine->buffer, rec->buffer, n);
    }
    if (mask & KTCLR_YUV_BYTE_COUNT) mine->byteCount = rec->byteCount;
    if (mask & KTCLR_YUV_VALUE5) mine->value5 = rec->value5;
    return STATUS_OK;
}

KtStatus ChangeYuv(ClrHandle* h, const ConversionParams* p, MadeHere& made) {
    if (!Either(h->srcSpace, h->dstSpace, CS_YUV)) return ERR_BAD_METHOD;
    // A change of the YUV options is refused without a CMYK record: the
    // CMYK pointer is the one tested here, deliberately
    // (SetParams.StatusesOfEachBit pins it).
    if (!p->cmykOptions) return ERR_INVALID_PARAMETER;
    const YuvOptions* rec = p->yuvOptions;
    if (!rec) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(rec, sizeof(YuvOptions))) return ERR_BAD_POINTER;
    if (h->yuvOptions) return ApplyYuv(h->yuvOptions, rec);
    h->yuvOptions = static_cast<YuvOptions*>(KT_ALLOC(sizeof(YuvOptions)));
    if (!h->yuvOptions) {
        Unmake(h, MadeHere{made.cmyk, false});
        return ERR_ALLOC;
    }
    std::memcpy(h->yuvOptions, rec, sizeof(YuvOptions));
    made.yuv = true;
    return STATUS_OK;
}

KtStatus ChangeLab(ClrHandle* h, const ConversionParams* p, const MadeHere& made) {
    if (!Either(h->srcSpace, h->dstSpace, CS_LAB)) return ERR_BAD_METHOD;
    const LabOptions* rec = p->labOptions;
    if (!rec) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(rec, sizeof(LabOptions))) return ERR_BAD_POINTER;
    if (h->labTable) {
        for (int i = 0; i < kLabRanges; ++i)
            if (rec->validMask & (1u << i)) h->labTable->ranges[i] = rec->ranges[i];
    } else {
        h->labTable = static_cast<LabTable*>(KT_ALLOC(sizeof(LabTable)));
        if (!h->labTable) {
            Unmake(h, made);
            return ERR_ALLOC;
        }
        // A table first made here takes the second white point and matrix.
        color::SetLabTableHeader(h->labTable, color::kSetParamsWhitePoint, color::kDefaultLabRanges,
                                 color::kSetParamsMatrix);
    }
    color::FillLabTable(h->labTable, h->gammaPercent);
    return STATUS_OK;
}

KtStatus ChangeIccOptions(ClrHandle* h, const ConversionParams* p, std::uint32_t mask, std::uint32_t flags) {
    const std::uint32_t m = h->method;
    if (m != METHOD_BUILTIN && m != METHOD_BUILTIN_EMULATION && m != METHOD_CUSTOM_ICC && m != METHOD_ICC)
        return STATUS_OK;
    const IccOptions* rec = p->iccOptions;
    if (!rec) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(rec, sizeof(IccOptions))) return ERR_BAD_POINTER;
    if (!h->iccOptions) {
        // Handles made without parameters have no copy yet.
        h->iccOptions = static_cast<IccOptions*>(KT_ALLOC_ZERO(sizeof(IccOptions)));
        if (!h->iccOptions) return ERR_ALLOC;
    }
    h->iccOptions->values[0] = rec->values[0];
    h->iccOptions->values[1] = rec->values[1];
    h->iccOptions->values[3] = rec->values[3];
    if (m == METHOD_CUSTOM_ICC) {
        DeleteIccTransform(h->customIccTransform);
        h->customIccTransform = nullptr;
        if (mask & KTCLR_CHANGE_CUSTOM_PROFILES) {
            CopyPath(h->srcProfilePath, p->srcProfilePath);
            CopyPath(h->dstProfilePath, p->dstProfilePath);
        }
        return RebuildCustomIccTransform(h, flags + kIccFlagCustom);
    }
    if (m == METHOD_ICC) {
        DeleteIccTransform(h->iccTransform);
        h->iccTransform = nullptr;
        return BuildBuiltinIccTransform(h, flags);
    }
    return STATUS_OK;
}

KtStatus ChangeCustomProfiles(ClrHandle* h, const ConversionParams* p, std::uint32_t flags) {
    DeleteIccTransform(h->customIccTransform);
    h->customIccTransform = nullptr;
    CopyPath(h->srcProfilePath, p->srcProfilePath);
    CopyPath(h->dstProfilePath, p->dstProfilePath);
    return RebuildCustomIccTransform(h, flags + kIccFlagCustom);
}

KtStatus ChangeCustomEmulation(ClrHandle* h, const ConversionParams* p) {
    CopyPath(h->emulationTablePath, p->emulationTablePath);
    FreeCustomEmulationTable(h);
    const int src = h->srcSpace, dst = h->dstSpace;
    // Only these two pairs reload, fewer than the conversions that use a
    // custom grid; the loader's status is not reported.
    if ((src == CS_CMYK && IsRgbSide(dst)) || (src == CS_RGB && dst == CS_LAB))
        SelectEmulationTable(h, src, dst, p, true);
    return STATUS_OK;
}

KtStatus SetParams(ClrHandle* h, ConversionParams* p) noexcept {
    if (!p) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(p, sizeof p->structSize)) return ERR_BAD_POINTER;
    const std::uint32_t size = p->structSize;
    if (size != KTCLR_SIZEOF_CONVERSION_PARAMS_EX && size != KTCLR_SIZEOF_CONVERSION_PARAMS)
        return ERR_BAD_STRUCT_SIZE;
    if (!h) return ERR_INVALID_PARAMETER;
    const std::size_t bytes = size == KTCLR_SIZEOF_CONVERSION_PARAMS ? kParamsShortBytes : kParamsLongBytes;
    if (platform::IsBadReadPtr(p, bytes) || platform::IsBadReadPtr(h, sizeof(ClrHandle))) return ERR_BAD_POINTER;
    const KtStatus valid = Vx_ClrIsValid(h);
    if (valid != STATUS_OK) return valid;
    const std::uint32_t flags = size > KTCLR_SIZEOF_CONVERSION_PARAMS ? p->iccFlags : 0;
    const std::uint32_t mask = p->prepareMethods;

    MadeHere made;
    KtStatus s = STATUS_OK;
    if ((mask & KTCLR_CHANGE_METHOD) && (s = ChangeMethod(h, p->method)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_CMYK) && (s = ChangeCmyk(h, p, made)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_YUV) && (s = ChangeYuv(h, p, made)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_LAB) && (s = ChangeLab(h, p, made)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_ICC_OPTIONS) && (s = ChangeIccOptions(h, p, mask, flags)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_CUSTOM_PROFILES) && (s = ChangeCustomProfiles(h, p, flags)) != STATUS_OK) return s;
    if ((mask & KTCLR_CHANGE_CUSTOM_EMULATION) && (s = ChangeCustomEmulation(h, p)) != STATUS_OK) return s;
    return STATUS_OK;
}

}  // namespace
}  // namespace kt::convert

extern "C" KTCLR_API KtStatus Vx_ClrSetConversionParams(ClrHandle* handle, ConversionParams* params) {
    return kt::convert::SetParams(handle, params);
}
