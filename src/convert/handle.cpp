// Conversion handles: creation, validation and destruction.
#include <cstring>

#include "convert/emulation_setup.h"
#include "colormodels/lab_tables.h"
#include "colormodels/ycck_table.h"
#include "convert/handle_internal.h"
#include "convert/icc_format.h"
#include "convert/icc_setup.h"
#include "convert/registry.h"
#include "platform/alloc.h"
#include "platform/probe.h"
#include "platform/utf16.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr std::int32_t kGammaPercent = 45;
constexpr std::uint32_t kDefaultIccOption = 50;
constexpr std::uint32_t kKnownMethods = METHOD_BUILTIN | METHOD_ICC | METHOD_CUSTOM_ICC |
                                        METHOD_BUILTIN_EMULATION | METHOD_CUSTOM_EMULATION;

void FreeProfileMemory(ProfileMemory*& m) {
    if (!m) return;
    if (m->data) KT_FREE(m->data);
    KT_FREE(m);
    m = nullptr;
}

template <class T>
void FreeField(T*& field) {
    if (field) KT_FREE(field);
    field = nullptr;
}

// Undoes a half-built handle after a failure in the later set-up steps, in
// this order, then frees the block and its list node.
void CleanUp(ClrHandle* h) {
    FreeField(h->rgbToLabTable);
    FreeField(h->labTable);
    FreeField(h->yuvOptions);
    FreeField(h->cmykOptions);
    if (h->customIccTransform) DeleteIccTransform(h->customIccTransform);
    if (h->iccTransform) DeleteIccTransform(h->iccTransform);
    FreeProfileMemory(h->srcProfileMemory);
    FreeProfileMemory(h->dstProfileMemory);
    FreeField(h->iccOptions);
    FreeCustomEmulationTable(h);
    FreeField(h->ycckTable);
    KT_FREE(h);
    registry::Remove(h);
}

KtStatus NewYcckTable(ClrHandle* h) {
    h->ycckTable = static_cast<YcckTable*>(KT_ALLOC(sizeof(YcckTable)));
    if (!h->ycckTable) return ERR_ALLOC;
    color::FillYcckTable(h->ycckTable);
    return STATUS_OK;
}

// The automatic choice between built-in formulas and the ICC method;
// METHOD_AUTO back when no choice is possible.
std::uint32_t ChooseMethod(int src, int dst) {
    if (!IsRgbSide(src) && !IsRgbSide(dst)) return METHOD_BUILTIN;
    if (Either(src, dst, CS_CMYK) || src == CS_YCCK) return METHOD_ICC;
    if (Either(src, dst, CS_LAB)) return METHOD_BUILTIN;
    return METHOD_AUTO;
}

KtStatus InitIdentity(ClrHandle** out, int space) {
    auto* h = static_cast<ClrHandle*>(KT_ALLOC_ZERO(sizeof(ClrHandle)));
    if (!h) return ERR_ALLOC;
    h->structSize = KTCLR_SIZEOF_CLR_HANDLE;
    h->srcSpace = space;
    h->dstSpace = space;
    if (!registry::Append(h)) {
        KT_FREE(h);
        return ERR_ALLOC;
    }
    *out = h;
    return STATUS_OK;
}

KtStatus InitWithoutParams(ClrHandle** out, ClrHandle* h, int src, int dst) {
    h->method = METHOD_BUILTIN;
    h->preparedMethods = METHOD_BUILTIN;
    h->PathKind = (IsRgbSide(src) || IsRgbSide(dst)) ? KTCLR_PATH_ONE_STEP : KTCLR_PATH_TWO_STEP;
    h->srcSpace = src;
    h->dstSpace = dst;
    if (!registry::Append(h)) {
        KT_FREE(h);
        return ERR_ALLOC;
    }
    h->gammaPercent = kGammaPercent;
    if (Either(src, dst, CS_YCCK) && NewYcckTable(h) != STATUS_OK) {
        KT_FREE(h);
        registry::Remove(h);
        return ERR_ALLOC;
    }
    *out = h;
    return STATUS_OK;
}

// Steps 17 to 20: option records and tables. Some failures deliberately
// return without clean-up, leaving the half-built handle on the list.
KtStatus CopyOptions(ClrHandle* h, int src, int dst, const ConversionParams* p) {
    if (Either(src, dst, CS_CMYK) && p->cmykOptions) {
        if (platform::IsBadReadPtr(p->cmykOptions, sizeof(CmykOptions))) return ERR_BAD_POINTER;
        if (p->cmykOptions->structSize != KTCLR_SIZEOF_CMYK_OPTIONS) return ERR_BAD_STRUCT_SIZE;
        h->cmykOptions = static_cast<CmykOptions*>(KT_ALLOC(sizeof(CmykOptions)));
        if (!h->cmykOptions) return CleanUp(h), ERR_ALLOC;
        std::memcpy(h->cmykOptions, p->cmykOptions, sizeof(CmykOptions));
    }
    if (Either(src, dst, CS_YUV) && p->yuvOptions) {
        if (platform::IsBadReadPtr(p->yuvOptions, sizeof(YuvOptions))) return ERR_BAD_POINTER;
        if (p->yuvOptions->structSize != KTCLR_SIZEOF_YUV_OPTIONS) return CleanUp(h), ERR_BAD_STRUCT_SIZE;
        h->yuvOptions = static_cast<YuvOptions*>(KT_ALLOC(sizeof(YuvOptions)));
        if (!h->yuvOptions) return CleanUp(h), ERR_ALLOC;
        std::memcpy(h->yuvOptions, p->yuvOptions, sizeof(YuvOptions));
    }
    if (Either(src, dst, CS_LAB) && p->labOptions) {
        const LabOptions* lab = p->labOptions;
        if (platform::IsBadReadPtr(lab, sizeof(LabOptions))) return ERR_BAD_POINTER;
        if (lab->structSize != KTCLR_SIZEOF_LAB_OPTIONS) return CleanUp(h), ERR_BAD_STRUCT_SIZE;
        h->labTable = static_cast<LabTable*>(KT_ALLOC(sizeof(LabTable)));
        if (!h->labTable) return CleanUp(h), ERR_ALLOC;
        color::SetLabTableHeader(h->labTable, color::kInitWhitePoint, lab->ranges, color::kXyzToRgbMatrix);
        color::FillLabTable(h->labTable, h->gammaPercent);
        h->rgbToLabTable = static_cast<RgbToLabTable*>(KT_ALLOC(sizeof(RgbToLabTable)));
        if (!h->rgbToLabTable) return CleanUp(h), ERR_ALLOC;
        color::SetRgbToLabTableHeader(h->rgbToLabTable, color::kInitWhitePoint, lab->ranges,
                                      color::kRgbToXyzMatrix);
        color::FillRgbToLabTable(h->rgbToLabTable, h->gammaPercent);
    }
    if (Either(src, dst, CS_YCCK) && NewYcckTable(h) != STATUS_OK) return CleanUp(h), ERR_ALLOC;
    return STATUS_OK;
}

KtStatus Init(ClrHandle** out, int src, int dst, ConversionParams* p) noexcept {
    if (!out) return ERR_INVALID_PARAMETER;
    if (p) {
        // The size field decides how much of the record exists; a record we
        // cannot even read the size of is a bad pointer.
        if (platform::IsBadReadPtr(p, sizeof p->structSize)) return ERR_BAD_POINTER;
        const std::uint32_t size = p->structSize;
        if (size != KTCLR_SIZEOF_CONVERSION_PARAMS_EX && size != KTCLR_SIZEOF_CONVERSION_PARAMS)
            return ERR_BAD_STRUCT_SIZE;
        const std::size_t bytes = size == KTCLR_SIZEOF_CONVERSION_PARAMS ? kParamsShortBytes : kParamsLongBytes;
        if (platform::IsBadReadPtr(p, bytes)) return ERR_BAD_POINTER;
    }
    // Equal ids take the identity shortcut before the range check, whatever
    // their value.
    if (src == dst && (!p || !(p->prepareMethods & METHOD_CUSTOM_ICC))) return InitIdentity(out, src);
    if (!IsKnownSpace(src) || !IsKnownSpace(dst)) return ERR_UNSUPPORTED_SPACE;

    auto* h = static_cast<ClrHandle*>(KT_ALLOC_ZERO(sizeof(ClrHandle)));
    if (!h) return ERR_ALLOC;
    h->structSize = KTCLR_SIZEOF_CLR_HANDLE;
    if (!p) return InitWithoutParams(out, h, src, dst);

    if (p->method == METHOD_BUILTIN_EMULATION && p->emulationMethod != METHOD_BUILTIN_EMULATION) {
        KT_FREE(h);
        return ERR_INVALID_PARAMETER;
    }
    if (!registry::Append(h)) {
        KT_FREE(h);
        return ERR_ALLOC;
    }
    auto failEarly = [h](KtStatus status) {
        FreeField(h->iccOptions);
        KT_FREE(h);
        registry::Remove(h);
        return status;
    };
    h->iccOptions = static_cast<IccOptions*>(KT_ALLOC(sizeof(IccOptions)));
    if (!h->iccOptions) return failEarly(ERR_ALLOC);
    if (p->iccOptions) {
        if (platform::IsBadReadPtr(p->iccOptions, sizeof(IccOptions))) return failEarly(ERR_BAD_POINTER);
        std::memcpy(h->iccOptions, p->iccOptions, sizeof(IccOptions));
    } else {
        std::memset(h->iccOptions, 0, sizeof(IccOptions));
        h->iccOptions->values[0] = kDefaultIccOption;
    }

    // The automatic choice is written into the caller's record for the
    // call's duration; 32 goes back only on success.
    bool chose = false;
    if (p->prepareMethods == METHOD_AUTO && p->method == METHOD_AUTO) {
        const std::uint32_t choice = ChooseMethod(src, dst);
        if (choice != METHOD_AUTO) {
            p->prepareMethods = choice;
            p->method = choice;
            chose = true;
        }
    }
    const std::uint32_t prepare = p->prepareMethods;
    if (!(prepare & kKnownMethods) || !(p->method & prepare)) return failEarly(ERR_BAD_METHOD);

    h->method = p->method;
    h->preparedMethods = prepare;
    h->gammaPercent = kGammaPercent;
    const bool oneStep = src == dst || IsRgbSide(src) || IsRgbSide(dst) || Either(src, dst, CS_LAB) || src == CS_XYZ;
    h->PathKind = oneStep ? KTCLR_PATH_ONE_STEP : KTCLR_PATH_TWO_STEP;

    KtStatus status = STATUS_OK;
    if ((prepare & METHOD_ICC) && h->PathKind == KTCLR_PATH_ONE_STEP) {
        const std::uint32_t flags = p->structSize == KTCLR_SIZEOF_CONVERSION_PARAMS_EX ? p->iccFlags : 0;
        if (!IccFormatFor(src, &h->srcFormat) || !IccFormatFor(dst, &h->dstFormat)) {
            CleanUp(h);
            return ERR_BAD_COLOR_SPACE;
        }
        status = BuildBuiltinIccTransform(h, flags);
        if (status != STATUS_OK) return CleanUp(h), status;
    }
    if (h->PathKind == KTCLR_PATH_TWO_STEP) {
        h->srcFormat = static_cast<std::uint32_t>(src);
        h->dstFormat = static_cast<std::uint32_t>(dst);
    }
    if (prepare & METHOD_CUSTOM_ICC) {
        status = SetupCustomIcc(h, src, dst, p);
        if (status != STATUS_OK) return CleanUp(h), status;
        h->PathKind = KTCLR_PATH_ONE_STEP;
    }
    if (prepare & METHOD_BUILTIN_EMULATION) {
        status = SelectEmulationTable(h, src, dst, p, false);
        if (status != STATUS_OK) return CleanUp(h), status;
    }
    if (prepare & METHOD_CUSTOM_EMULATION) {
        status = SelectEmulationTable(h, src, dst, p, true);
        if (status > STATUS_OK) status = ERR_FILE_READ;
        if (status != STATUS_OK) return CleanUp(h), status;
    }
    status = CopyOptions(h, src, dst, p);
    if (status != STATUS_OK) return status;

    h->srcSpace = src;
    h->dstSpace = dst;
    if (chose) {
        p->prepareMethods = METHOD_AUTO;
        p->method = METHOD_AUTO;
    }
    *out = h;
    return STATUS_OK;
}

// Every validation failure answers the same status, so the order of the
// checks is free: membership comes first and the block is read only once it
// is known to be live. A freed or foreign pointer is never dereferenced.
KtStatus IsValid(ClrHandle* h) noexcept {
    if (!h) return ERR_INVALID_COLOR_HANDLE;
    return registry::Contains(h) ? STATUS_OK : ERR_INVALID_COLOR_HANDLE;
}

KtStatus Free(ClrHandle* h) noexcept {
    if (!h || platform::IsBadReadPtr(h, sizeof(ClrHandle))) return ERR_INVALID_PARAMETER;
    // Validation and removal are one step, so two threads cannot both free
    // one handle.
    if (!registry::Take(h)) return ERR_INVALID_COLOR_HANDLE;
    DestroyHandle(h);
    return STATUS_OK;
}

}  // namespace

void CopyPath(KtChar16* dst, const KtChar16* src) noexcept {
    text::Utf16Copy(dst, KTCLR_HANDLE_PATH_UNITS, src);
}

void DestroyHandle(ClrHandle* h) noexcept {
    FreeField(h->cmykOptions);
    FreeField(h->yuvOptions);
    FreeField(h->labTable);
    FreeField(h->rgbToLabTable);
    FreeField(h->ycckTable);
    FreeField(h->iccOptions);
    if ((h->preparedMethods & METHOD_ICC) && h->iccTransform) DeleteIccTransform(h->iccTransform);
    if ((h->preparedMethods & METHOD_CUSTOM_ICC) && h->customIccTransform)
        DeleteIccTransform(h->customIccTransform);
    FreeCustomEmulationTable(h);
    FreeProfileMemory(h->srcProfileMemory);
    FreeProfileMemory(h->dstProfileMemory);
    KT_FREE(h);
}

}  // namespace kt::convert

extern "C" {

KTCLR_API KtStatus Vx_ClrInit(ClrHandle** outHandle, int srcSpace, int dstSpace, ConversionParams* params) {
    return kt::convert::Init(outHandle, srcSpace, dstSpace, params);
}

KTCLR_API KtStatus Vx_ClrFree(ClrHandle* handle) { return kt::convert::Free(handle); }

KTCLR_API KtStatus Vx_ClrIsValid(ClrHandle* handle) { return kt::convert::IsValid(handle); }

}  // extern "C"
