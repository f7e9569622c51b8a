// Conversions into and between 24-bit bitmaps: Vx_ClrConvertToBitmap,
// Vx_ClrConvertDirectToBitmap and Vx_ClrConvertBitmap.
#include <algorithm>

#include "colormodels/space_table.h"
#include "convert/handle_internal.h"
#include "platform/alloc.h"
#include "platform/bitmap.h"
#include "platform/probe.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr int kRgbBytes = 3;
constexpr int kBitmapBits = 24;
constexpr int kWidestPixelBytes = 4;  // CMYK and YCCK
constexpr std::size_t kTooLarge = SIZE_MAX;

std::int64_t Pad(int pad) { return pad < 1 ? 0 : pad; }

// rowBytes x height for an allocation or a probe: 0 when a factor is below
// 1 (the conversion then reports the size), kTooLarge when it overflows.
std::size_t Extent(std::int64_t rowBytes, int height) {
    if (rowBytes < 1 || height < 1) return 0;
    std::int64_t bytes = 0;
    if (__builtin_mul_overflow(rowBytes, static_cast<std::int64_t>(height), &bytes)) return kTooLarge;
    return static_cast<std::size_t>(bytes);
}

// A zero-filled block of at least one byte, so that rows read past what a
// conversion wrote are zeros rather than leftovers.
std::uint8_t* Temporary(std::size_t bytes) {
    return static_cast<std::uint8_t*>(KT_ALLOC_ZERO(std::max<std::size_t>(bytes, 1)));
}

// The header handed to the fill: 24-bit rows, top row first.
Vx_BmpInfoHeader DibHeader(int width, int height, std::uint32_t imageSize) {
    Vx_BmpInfoHeader h{};
    h.size = KTCLR_SIZEOF_BMP_INFO_HEADER;
    h.width = width;
    h.height = -height;
    h.planes = 1;
    h.bitsPerPixel = kBitmapBits;
    h.imageSize = imageSize;
    return h;
}

// Replaces the bitmap's pixels with the converted rows in `temp`.
KtStatus Refill(BitmapHandle* bitmap, std::uint32_t structSize, int width, int height, std::uint32_t imageSize,
                const std::uint8_t* temp, std::size_t tempBytes) {
    const Vx_BmpInfoHeader header = DibHeader(width, height, imageSize);
    if (bitmap::HoldsData(bitmap)) Vx_BmpFree(bitmap);
    return bitmap::FillFromDib(bitmap, structSize, &header, temp, tempBytes);
}

bool OrdersMatch(int a, int b) {
    const auto bgr = [](int order) { return order == VX_BMP_ORDER_BGR || order == VX_BMP_ORDER_DIB; };
    return a == b || (bgr(a) && bgr(b));
}

// Converts every row of `src` in place in `row` and writes it to `target`;
// the first result below 1 is returned.
KtStatus ConvertRows(ClrHandle* handle, BitmapHandle* src, BitmapHandle* target, std::uint8_t* row) {
    const auto bytes = static_cast<std::uint32_t>(src->bytesPerLine);
    for (int y = 0; y < src->height; ++y) {
        KtStatus status = Vx_BmpGetRow(src, row, y, bytes);
        if (status < 1) return status;
        if ((status = Vx_ClrConvert(handle, row, row, src->width, 1, 0, 0)) < 1) return status;
        if ((status = Vx_BmpPutRow(target, row, y, bytes)) < 1) return status;
    }
    return STATUS_OK;
}

}  // namespace
}  // namespace kt::convert

using namespace kt::convert;

extern "C" KTCLR_API KtStatus Vx_ClrConvertToBitmap(ClrHandle* handle, uint8_t* src, BitmapHandle* bitmap,
                                                    uint32_t bitmapStructSize, int width, int height, int srcAlign,
                                                    int dstAlign) {
    if (!src || !bitmap) return ERR_INVALID_PARAMETER;
    if (kt::platform::IsBadReadPtr(handle, KTCLR_SIZEOF_CLR_HANDLE)) return ERR_BAD_POINTER;
    const std::int64_t pad = Pad(dstAlign);
    const int srcBits = std::max(kt::color::BitsPerPixel(handle->srcSpace), 0);
    const std::int64_t srcRow = (static_cast<std::int64_t>(srcBits) * width + 7) / 8 + Pad(srcAlign);
    if (kt::platform::IsBadReadPtr(src, Extent(srcRow, height))) return ERR_BAD_POINTER;
    KtStatus status = Vx_ClrIsValid(handle);
    if (status != STATUS_OK) return status;
    if (!IsRgbSide(handle->dstSpace)) return ERR_BAD_COLOR_SPACE;

    const std::size_t tempBytes = Extent(pad + std::int64_t{kRgbBytes} * width, height);
    std::uint8_t* temp = Temporary(tempBytes);
    if (!temp) return ERR_ALLOC;
    status = Vx_ClrConvert(handle, src, temp, width, height, srcAlign, dstAlign);
    if (status == STATUS_OK) {
        // The header counts the padding once per pixel component, three times
        // what the rows hold; only the header carries it (the fill is bounded
        // by the temporary), and the fill's own status is not reported.
        const auto imageSize = static_cast<std::uint32_t>((pad + width) * height * kRgbBytes);
        Refill(bitmap, bitmapStructSize, width, height, imageSize, temp, tempBytes);
    }
    KT_FREE(temp);
    return status;
}

extern "C" KTCLR_API KtStatus Vx_ClrConvertDirectToBitmap(int srcSpace, int dstSpace, uint8_t* src,
                                                          BitmapHandle* bitmap, uint32_t bitmapStructSize, int width,
                                                          int height, int srcPad, int dstPad) {
    // A destination other than RGB is refused as a parameter here, where the
    // handle form answers ERR_BAD_COLOR_SPACE (bitmap_convert_test pins both).
    if (!src || !bitmap || !IsRgbSide(dstSpace)) return ERR_INVALID_PARAMETER;
    const std::size_t tempBytes = Extent((width + Pad(dstPad)) * kRgbBytes, height);
    std::uint8_t* temp = Temporary(tempBytes);
    if (!temp) return ERR_ALLOC;
    KtStatus status = Vx_ClrConvertDirect(srcSpace, dstSpace, src, temp, width, height, srcPad, dstPad);
    if (status == STATUS_OK)
        status = Refill(bitmap, bitmapStructSize, width, height, static_cast<std::uint32_t>(tempBytes), temp,
                        tempBytes);
    KT_FREE(temp);
    return status;
}

extern "C" KTCLR_API KtStatus Vx_ClrConvertBitmap(ClrHandle* handle, BitmapHandle* srcBitmap, BitmapHandle* dstBitmap) {
    if (!srcBitmap) return ERR_NULL_ARGUMENT;
    BitmapHandle* target = dstBitmap ? dstBitmap : srcBitmap;
    if (kt::platform::IsBadReadPtr(srcBitmap, sizeof *srcBitmap) ||
        kt::platform::IsBadReadPtr(target, sizeof *target))
        return ERR_BAD_POINTER;
    if (target != srcBitmap && (target->width != srcBitmap->width || target->height != srcBitmap->height))
        return ERR_BAD_SIZE;
    if (srcBitmap->bitsPerPixel != kBitmapBits || target->bitsPerPixel != kBitmapBits) return ERR_BAD_SIZE;
    if (!OrdersMatch(srcBitmap->colorOrder, target->colorOrder)) return ERR_INVALID_PARAMETER;

    // Room for the widest row a handle may write in place, whatever its spaces.
    const std::int64_t rowBytes =
        std::max<std::int64_t>(srcBitmap->bytesPerLine, std::int64_t{kWidestPixelBytes} * srcBitmap->width);
    auto* row = static_cast<std::uint8_t*>(KT_ALLOC(static_cast<std::size_t>(std::max<std::int64_t>(rowBytes, 1))));
    if (!row) return ERR_ALLOC;
    KtStatus status = Vx_BmpAccessBegin(srcBitmap);
    if (status == STATUS_OK && target != srcBitmap && (status = Vx_BmpAccessBegin(target)) != STATUS_OK)
        Vx_BmpAccessEnd(srcBitmap);
    if (status == STATUS_OK) {
        status = ConvertRows(handle, srcBitmap, target, row);
        if (target != srcBitmap) Vx_BmpAccessEnd(target);
        Vx_BmpAccessEnd(srcBitmap);
    }
    KT_FREE(row);
    return status;
}
