// Conversion handles: creation, validation and destruction.
#include <cstring>

#include "convert/emulation_setup.h"
#include "colormodels/lab_tables.h"
#include "colormodels/ycck_table.h"
#include "convert/handle_draft.h"
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
    HandleDraft h;
    if (!h.Allocate()) return ERR_ALLOC;
    h->srcSpace = space;
    h->dstSpace = space;
    if (!h.Register()) return ERR_ALLOC;
    return h.Publish(out);
}

KtStatus InitWithoutParams(ClrHandle** out, HandleDraft& h, int src, int dst) {
    h->method = METHOD_BUILTIN;
    h->preparedMethods = METHOD_BUILTIN;
    h->PathKind = (IsRgbSide(src) || IsRgbSide(dst)) ? KTCLR_PATH_ONE_STEP : KTCLR_PATH_TWO_STEP;
    h->srcSpace = src;
    h->dstSpace = dst;
    if (!h.Register()) return ERR_ALLOC;
    h->gammaPercent = kGammaPercent;
    if (Either(src, dst, CS_YCCK) && NewYcckTable(h.get()) != STATUS_OK) return ERR_ALLOC;
    return h.Publish(out);
}

// The option records and the tables they ask for. An unreadable record, or
// a CMYK record of the wrong size, abandons the half-built handle on the
// list (HandleInit.BadOptionRecordsAbandonOrRelease and
// LibraryFrame.UnloadSweepFreesForgottenHandles pin this); every other
// failure releases it.
KtStatus CopyOptions(HandleDraft& h, int src, int dst, const ConversionParams* p) {
    if (Either(src, dst, CS_CMYK) && p->cmykOptions) {
        if (platform::IsBadReadPtr(p->cmykOptions, sizeof(CmykOptions))) return h.Abandon(ERR_BAD_POINTER);
        if (p->cmykOptions->structSize != KTCLR_SIZEOF_CMYK_OPTIONS) return h.Abandon(ERR_BAD_STRUCT_SIZE);
        h->cmykOptions = static_cast<CmykOptions*>(KT_ALLOC(sizeof(CmykOptions)));
        if (!h->cmykOptions) return ERR_ALLOC;
        std::memcpy(h->cmykOptions, p->cmykOptions, sizeof(CmykOptions));
    }
    if (Either(src, dst, CS_YUV) && p->yuvOptions) {
        if (platform::IsBadReadPtr(p->yuvOptions, sizeof(YuvOptions))) return h.Abandon(ERR_BAD_POINTER);
        if (p->yuvOptions->structSize != KTCLR_SIZEOF_YUV_OPTIONS) return ERR_BAD_STRUCT_SIZE;
        h->yuvOptions = static_cast<YuvOptions*>(KT_ALLOC(sizeof(YuvOptions)));
        if (!h->yuvOptions) return ERR_ALLOC;
        std::memcpy(h->yuvOptions, p->yuvOptions, sizeof(YuvOptions));
    }
    if (Either(src, dst, CS_LAB) && p->labOptions) {
        const LabOptions* lab = p->labOptions;
        if (platform::IsBadReadPtr(lab, sizeof(LabOptions))) return h.Abandon(ERR_BAD_POINTER);
        if (lab->structSize != KTCLR_SIZEOF_LAB_OPTIONS) return ERR_BAD_STRUCT_SIZE;
        h->labTable = static_cast<LabTable*>(KT_ALLOC(sizeof(LabTable)));
        if (!h->labTable) return ERR_ALLOC;
        color::SetLabTableHeader(h->labTable, color::kInitWhitePoint, lab->ranges, color::kXyzToRgbMatrix);
        color::FillLabTable(h->labTable, h->gammaPercent);
        h->rgbToLabTable = static_cast<RgbToLabTable*>(KT_ALLOC(sizeof(RgbToLabTable)));
        if (!h->rgbToLabTable) return ERR_ALLOC;
        color::SetRgbToLabTableHeader(h->rgbToLabTable, color::kInitWhitePoint, lab->ranges,
                                      color::kRgbToXyzMatrix);
        color::FillRgbToLabTable(h->rgbToLabTable, h->gammaPercent);
    }
    if (Either(src, dst, CS_YCCK) && NewYcckTable(h.get()) != STATUS_OK) return ERR_ALLOC;
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

    HandleDraft h;
    if (!h.Allocate()) return ERR_ALLOC;
    if (!p) return InitWithoutParams(out, h, src, dst);

    if (p->method == METHOD_BUILTIN_EMULATION && p->emulationMethod != METHOD_BUILTIN_EMULATION)
        return ERR_INVALID_PARAMETER;
    if (!h.Register()) return ERR_ALLOC;
    h->iccOptions = static_cast<IccOptions*>(KT_ALLOC(sizeof(IccOptions)));
    if (!h->iccOptions) return ERR_ALLOC;
    if (p->iccOptions) {
        if (platform::IsBadReadPtr(p->iccOptions, sizeof(IccOptions))) return ERR_BAD_POINTER;
        std::memcpy(h->iccOptions, p->iccOptions, sizeof(IccOptions));
    } else {
        std::memset(h->iccOptions, 0, sizeof(IccOptions));
        h->iccOptions->values[0] = kDefaultIccOption;
    }

    // The automatic choice is written into the caller's record for the
    // call's duration; 32 goes back only on success, so a later failure
    // leaves the chosen bit there (HandleInit.SpacesAndMethods).
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
    if (!(prepare & kKnownMethods) || !(p->method & prepare)) return ERR_BAD_METHOD;

    h->method = p->method;
    h->preparedMethods = prepare;
    h->gammaPercent = kGammaPercent;
    const bool oneStep = src == dst || IsRgbSide(src) || IsRgbSide(dst) || Either(src, dst, CS_LAB) || src == CS_XYZ;
    h->PathKind = oneStep ? KTCLR_PATH_ONE_STEP : KTCLR_PATH_TWO_STEP;

    KtStatus status = STATUS_OK;
    if ((prepare & METHOD_ICC) && h->PathKind == KTCLR_PATH_ONE_STEP) {
        const std::uint32_t flags = p->structSize == KTCLR_SIZEOF_CONVERSION_PARAMS_EX ? p->iccFlags : 0;
        if (!IccFormatFor(src, &h->srcFormat) || !IccFormatFor(dst, &h->dstFormat)) return ERR_BAD_COLOR_SPACE;
        if ((status = BuildBuiltinIccTransform(h.get(), flags)) != STATUS_OK) return status;
    }
    if (h->PathKind == KTCLR_PATH_TWO_STEP) {
        h->srcFormat = static_cast<std::uint32_t>(src);
        h->dstFormat = static_cast<std::uint32_t>(dst);
    }
    if (prepare & METHOD_CUSTOM_ICC) {
        if ((status = SetupCustomIcc(h.get(), src, dst, p)) != STATUS_OK) return status;
        h->PathKind = KTCLR_PATH_ONE_STEP;
    }
    if (prepare & METHOD_BUILTIN_EMULATION) {
        if ((status = SelectEmulationTable(h.get(), src, dst, p, false)) != STATUS_OK) return status;
    }
    if (prepare & METHOD_CUSTOM_EMULATION) {
        if ((status = SelectEmulationTable(h.get(), src, dst, p, true)) != STATUS_OK) return status;
    }
    if ((status = CopyOptions(h, src, dst, p)) != STATUS_OK) return status;

    h->srcSpace = src;
    h->dstSpace = dst;
    if (chose) {
        p->prepareMethods = METHOD_AUTO;
        p->method = METHOD_AUTO;
    }
    return h.Publish(out);
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
    ReleaseHandle(h);
    return STATUS_OK;
}

}  // namespace

void CopyPath(KtChar16* dst, const KtChar16* src) noexcept {
    text::Utf16Copy(dst, KTCLR_HANDLE_PATH_UNITS, src);
}

}  // namespace kt::convert

extern "C" {

KTCLR_API KtStatus Vx_ClrInit(ClrHandle** outHandle, int srcSpace, int dstSpace, ConversionParams* params) {
    return kt::convert::Init(outHandle, srcSpace, dstSpace, params);
}

KTCLR_API KtStatus Vx_ClrFree(ClrHandle* handle) { return kt::convert::Free(handle); }

KTCLR_API KtStatus Vx_ClrIsValid(ClrHandle* handle) { return kt::convert::IsValid(handle); }

}  // extern "C"
