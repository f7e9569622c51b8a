// The narrow conversion-parameter record and the twins that take it.
#include "convert/narrow_params.h"

#include <cstring>

#include "platform/narrow_text.h"
#include "platform/probe.h"

namespace kt::convert {

void ParamsFromNarrow(const ConversionParamsA& a, ConversionParams* w) noexcept {
    using text::kNarrowFieldCapacity;
    std::memset(w, 0, sizeof *w);
    w->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    w->method = a.method;
    w->iccOptions = a.iccOptions;
    text::NarrowToWide(a.srcProfilePath, sizeof a.srcProfilePath, w->srcProfilePath, kNarrowFieldCapacity);
    w->srcProfileMemory = a.srcProfileMemory;
    text::NarrowToWide(a.dstProfilePath, sizeof a.dstProfilePath, w->dstProfilePath, kNarrowFieldCapacity);
    w->dstProfileMemory = a.dstProfileMemory;
    text::NarrowToWide(a.emulationTablePath, sizeof a.emulationTablePath, w->emulationTablePath,
                       kNarrowFieldCapacity);
    w->cmykOptions = a.cmykOptions;
    w->yuvOptions = a.yuvOptions;
    w->labOptions = a.labOptions;
    w->prepareMethods = a.prepareMethods;
    w->emulationMethod = a.emulationMethod;
    w->iccFlags = 0;
}

void ParamsToNarrow(const ConversionParams& w, ConversionParamsA* a) noexcept {
    using text::kNarrowFieldCapacity;
    a->method = w.method;
    a->iccOptions = w.iccOptions;
    text::WideToNarrow(w.srcProfilePath, KTCLR_PARAMS_PATH_UNITS, a->srcProfilePath, kNarrowFieldCapacity);
    text::WideToNarrow(w.dstProfilePath, KTCLR_PARAMS_PATH_UNITS, a->dstProfilePath, kNarrowFieldCapacity);
    text::WideToNarrow(w.emulationTablePath, KTCLR_PARAMS_PATH_UNITS, a->emulationTablePath, kNarrowFieldCapacity);
    a->srcProfileMemory = w.srcProfileMemory;
    a->dstProfileMemory = w.dstProfileMemory;
    a->cmykOptions = w.cmykOptions;
    a->yuvOptions = w.yuvOptions;
    a->labOptions = w.labOptions;
    a->prepareMethods = w.prepareMethods;
    a->emulationMethod = w.emulationMethod;
}

}  // namespace kt::convert

namespace {

// Converts a caller's narrow record into `wide`; null stays null.
KtStatus Widen(const ConversionParamsA* narrow, ConversionParams* wide, ConversionParams** out) {
    *out = nullptr;
    if (!narrow) return STATUS_OK;
    if (kt::platform::IsBadReadPtr(narrow, sizeof *narrow)) return ERR_BAD_POINTER;
    kt::convert::ParamsFromNarrow(*narrow, wide);
    *out = wide;
    return STATUS_OK;
}

}  // namespace

extern "C" KTCLR_API KtStatus Vx_ClrInitA(ClrHandle** outHandle, int srcSpace, int dstSpace,
                                          ConversionParamsA* params) {
    ConversionParams wide;
    ConversionParams* p = nullptr;
    const KtStatus status = Widen(params, &wide, &p);
    return status == STATUS_OK ? Vx_ClrInit(outHandle, srcSpace, dstSpace, p) : status;
}

extern "C" KTCLR_API KtStatus Vx_ClrSetConversionParamsA(ClrHandle* handle, ConversionParamsA* params) {
    ConversionParams wide;
    ConversionParams* p = nullptr;
    const KtStatus status = Widen(params, &wide, &p);
    return status == STATUS_OK ? Vx_ClrSetConversionParams(handle, p) : status;
}
