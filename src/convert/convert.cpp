// Buffer conversion through a handle: argument checks, the two row strides,
// and the routing of the rows to the method in force.
#include <lcms2.h>

#include <cstring>

#include "colormodels/emulation_lookup.h"
#include "colormodels/kernels.h"
#include "colormodels/space_table.h"
#include "colormodels/ycck_convert.h"
#include "convert/builtin_dispatch.h"
#include "platform/alloc.h"
#include "platform/probe.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr int kLabChromaOffset = 128;

struct Strides {
    std::int64_t src;
    std::int64_t dst;
};

using color::rows::RowBytes;
std::int64_t RoundUp(std::int64_t stride, int align) { return stride + (align - stride % align) % align; }

// Rounded to the alignments only when both are given; one alignment of 0
// leaves both strides unrounded (ConvertChecks.BuffersAreProbedOverTheirStrides).
Strides StridesOf(const ClrHandle* h, int width, int srcAlign, int dstAlign) {
    Strides s{RowBytes(color::BitsPerPixel(h->srcSpace), width), RowBytes(color::BitsPerPixel(h->dstSpace), width)};
    if (srcAlign != 0 && dstAlign != 0) {
        s.src = RoundUp(s.src, srcAlign);
        s.dst = RoundUp(s.dst, dstAlign);
    }
    return s;
}

bool BadExtent(std::int64_t stride, int height) { return stride < 0 || stride > INT64_MAX / height; }

int BlackOf(const ClrHandle* h) {
    return h->cmykOptions ? static_cast<int>(h->cmykOptions->value) : static_cast<int>(KTCLR_DEFAULT_CMYK_BLACK);
}

void CopyRows(const ClrHandle* h, const std::uint8_t* src, std::uint8_t* dst, int width, int height, Strides s) {
    if (s.src == s.dst) {
        std::memmove(dst, src, static_cast<std::size_t>(s.src) * height);
        return;
    }
    const std::size_t row = static_cast<std::size_t>(RowBytes(color::BitsPerPixel(h->srcSpace), width));
    for (int y = 0; y < height; ++y, src += s.src, dst += s.dst) std::memmove(dst, src, row);
}

KtStatus Builtin(const ClrHandle* h, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcAlign,
                 int dstAlign) {
    BuiltinExtras extras;
    extras.black = BlackOf(h);
    extras.labTable = h->labTable;
    extras.rgbToLab = h->rgbToLabTable;
    return ConvertOneStep(h->srcSpace, h->dstSpace, src, dst, width, height, srcAlign, dstAlign, extras);
}

int IccPixelBytes(int space) { return color::FindSpace(space)->iccPixelBytes; }

// One row through the transform, with the YCCK and Lab adjustments around it.
KtStatus IccRow(const ClrHandle* h, cmsHTRANSFORM transform, std::uint8_t* in, std::uint8_t* out, std::size_t n,
                bool inPlace) {
    std::uint8_t* scratch = nullptr;
    const std::uint8_t* from = in;
    if (h->srcSpace == CS_YCCK && h->ycckTable) {
        if (!inPlace) {
            scratch = static_cast<std::uint8_t*>(KT_ALLOC(n * 4));
            if (!scratch) return ERR_ALLOC;  // nothing converted; the caller stops here
            color::YcckToCmykPixels(*h->ycckTable, in, scratch, n);
            from = scratch;
        } else {
            color::YcckToCmykPixels(*h->ycckTable, in, in, n);
        }
    }
    if (!transform) {
        if (scratch) KT_FREE(scratch);
        return ERR_INVALID_PARAMETER;
    }
    cmsDoTransform(transform, from, out, static_cast<cmsUInt32Number>(n));
    if (h->dstSpace == CS_YCCK && h->ycckTable) color::CmykToYcckPixels(*h->ycckTable, out, out, n);
    if (scratch) KT_FREE(scratch);
    if (h->dstSpace == CS_LAB) {
        // The transform writes a and b as signed bytes; Lab bytes here are
        // stored offset by 128.
        for (std::size_t i = 0; i < n; ++i) {
            out[3 * i + 1] = static_cast<std::uint8_t>(out[3 * i + 1] + kLabChromaOffset);
            out[3 * i + 2] = static_cast<std::uint8_t>(out[3 * i + 2] + kLabChromaOffset);
        }
    }
    return STATUS_OK;
}

KtStatus Icc(const ClrHandle* h, std::uint8_t* src, std::uint8_t* dst, int width, int height, Strides s) {
    const cmsHTRANSFORM transform = h->method == METHOD_ICC ? h->iccTransform : h->customIccTransform;
    if (!transform) return ERR_NULL_ARGUMENT;
    const std::int64_t srcPixel = IccPixelBytes(h->srcSpace), dstPixel = IccPixelBytes(h->dstSpace);
    const bool inPlace = src == dst;
    if (s.src == srcPixel * width && s.dst == dstPixel * width)
        return IccRow(h, transform, src, dst, static_cast<std::size_t>(width) * height, inPlace);
    // In place with widening rows: last row first, so no row overwrites
    // input not yet read.
    const bool backwards = inPlace && s.src < s.dst;
    for (int i = 0; i < height; ++i) {
        const int y = backwards ? height - 1 - i : i;
        const KtStatus status = IccRow(h, transform, src + y * s.src, dst + y * s.dst, width, inPlace);
        if (status != STATUS_OK) return status;
    }
    return STATUS_OK;
}

// The table kernels' statuses are dropped. A missing grid converts nothing.
KtStatus Emulation(const ClrHandle* h, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                   int srcAlign, int dstAlign) {
    const std::uint8_t* grid =
        h->method == METHOD_BUILTIN_EMULATION ? h->builtinEmulationTable : h->customEmulationTable;
    const int from = h->srcSpace, to = h->dstSpace;
    if (IsHub(from) && to == CS_CMYK) {
        // Read as B,G,R whatever the source order
        // (ConvertDispatch.SilentPairsAndStatuses).
        color::RgbToCmyk(src, dst, width, height, srcAlign, dstAlign, BlackOf(h), 0);
        return STATUS_OK;
    }
    if (!grid) return STATUS_OK;
    if (from == CS_CMYK && IsHub(to))
        color::EmulateCmykToRgb(grid, src, dst, width, height, srcAlign, dstAlign, to == CS_RGB ? 1 : 0);
    else if (IsHub(from) && to == CS_LAB)
        color::EmulateRgbToLab(grid, src, dst, width, height, srcAlign, dstAlign, from == CS_RGB ? 1 : 0);
    else if (from == CS_LAB && IsHub(to))
        color::EmulateLabToRgb(grid, src, dst, width, height, srcAlign, dstAlign, to == CS_RGB ? 1 : 0);
    return STATUS_OK;
}

}  // namespace
}  // namespace kt::convert

extern "C" KTCLR_API KtStatus Vx_ClrConvert(ClrHandle* handle, uint8_t* src, uint8_t* dst, int width, int height,
                                            int srcAlign, int dstAlign) {
    using namespace kt::convert;
    if (!src || !handle || !dst) return ERR_NULL_ARGUMENT;
    if (width < 1 || height < 1) return ERR_BAD_SIZE;
    if (srcAlign < 0 || dstAlign < 0) return ERR_INVALID_PARAMETER;
    if (kt::platform::IsBadReadPtr(handle, sizeof(ClrHandle))) return ERR_BAD_POINTER;
    const Strides s = StridesOf(handle, width, srcAlign, dstAlign);
    // An unknown space has no size: its buffers cannot be vouched for.
    if (BadExtent(s.src, height) || BadExtent(s.dst, height)) return ERR_BAD_POINTER;
    if (kt::platform::IsBadReadPtr(src, static_cast<std::size_t>(s.src * height))) return ERR_BAD_POINTER;
    if (kt::platform::IsBadWritePtr(dst, static_cast<std::size_t>(s.dst * height))) return ERR_BAD_POINTER;
    const KtStatus valid = Vx_ClrIsValid(handle);
    if (valid != STATUS_OK) return valid;
    const bool sameSpace = handle->srcSpace == handle->dstSpace;
    if (src == dst && sameSpace && srcAlign != dstAlign) return ERR_SAME_BUFFER;

    if (sameSpace && handle->method != METHOD_CUSTOM_ICC) {
        CopyRows(handle, src, dst, width, height, s);
        return STATUS_OK;
    }
    if (handle->PathKind == KTCLR_PATH_TWO_STEP) {
        // The direct conversion's status is dropped: a two-step pair always
        // answers STATUS_OK (ConvertDispatch.SilentPairsAndStatuses).
        (void)Vx_ClrConvertDirect(handle->srcSpace, handle->dstSpace, src, dst, width, height, srcAlign, dstAlign);
        return STATUS_OK;
    }
    switch (handle->method) {
        case METHOD_BUILTIN:
            return Builtin(handle, src, dst, width, height, srcAlign, dstAlign);
        case METHOD_ICC:
        case METHOD_CUSTOM_ICC:
            return Icc(handle, src, dst, width, height, s);
        case METHOD_BUILTIN_EMULATION:
        case METHOD_CUSTOM_EMULATION:
            return Emulation(handle, src, dst, width, height, srcAlign, dstAlign);
        default:
            return ERR_BAD_METHOD;
    }
}
