// Bitmaps in memory: creation, filling from a device-independent bitmap,
// row access and release.
#include "platform/bitmap.h"

#include <climits>
#include <cstring>

#include "platform/alloc.h"
#include "platform/probe.h"

namespace kt::bitmap {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr std::uint32_t kRowAlign = 4;

std::int64_t RowBytes(int bits, int width) { return (static_cast<std::int64_t>(bits) * width + 7) / 8; }
std::int64_t PaddedRow(int bits, int width) {
    return (static_cast<std::int64_t>(bits) * width + (kRowAlign * 8 - 1)) / (kRowAlign * 8) * kRowAlign;
}

// The record may be written and has the size this library uses.
KtStatus CheckRecord(BitmapHandle* bitmap, std::uint32_t structSize) {
    if (!bitmap) return ERR_INVALID_PARAMETER;
    if (structSize != KTCLR_SIZEOF_BITMAP_HANDLE) return ERR_BAD_STRUCT_SIZE;
    if (platform::IsBadWritePtr(bitmap, sizeof *bitmap)) return ERR_BAD_POINTER;
    return STATUS_OK;
}

// A readable record whose size field is right (before reading any other).
KtStatus CheckExisting(BitmapHandle* bitmap) {
    if (!bitmap) return ERR_INVALID_PARAMETER;
    if (platform::IsBadWritePtr(bitmap, sizeof *bitmap)) return ERR_BAD_POINTER;
    return bitmap->structSize == KTCLR_SIZEOF_BITMAP_HANDLE ? STATUS_OK : ERR_BAD_STRUCT_SIZE;
}

void Empty(BitmapHandle* bitmap) {
    std::memset(bitmap, 0, sizeof *bitmap);
    bitmap->structSize = KTCLR_SIZEOF_BITMAP_HANDLE;
}

// Rows of `bits`, a multiple of 4 apart, copied top row first into new
// pixel data of the record.
KtStatus Take(BitmapHandle* bitmap, const std::uint8_t* bits, int width, int height, int bitsPerPixel,
              bool bottomUp, int order) {
    const std::int64_t stride = PaddedRow(bitsPerPixel, width);
    if (stride > INT32_MAX) return ERR_BAD_SIZE;
    auto* data = static_cast<std::uint8_t*>(
        KT_ALLOC_ZERO(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height)));
    if (!data) return ERR_ALLOC;
    if (bits) {
        const auto row = static_cast<std::size_t>(RowBytes(bitsPerPixel, width));
        for (int y = 0; y < height; ++y)
            std::memcpy(data + static_cast<std::size_t>(stride) * y,
                        bits + static_cast<std::size_t>(stride) * (bottomUp ? height - 1 - y : y), row);
    }
    Empty(bitmap);
    bitmap->width = width;
    bitmap->height = height;
    bitmap->bitsPerPixel = bitsPerPixel;
    bitmap->bytesPerLine = static_cast<std::int32_t>(stride);
    bitmap->colorOrder = order;
    bitmap->flags = VX_BMP_HAS_DATA;
    bitmap->data = data;
    return STATUS_OK;
}

// Row operations: the bitmap is in access and the row inside it.
KtStatus CheckRow(const BitmapHandle* bitmap, int row, std::uint32_t bytes, std::size_t* count) {
    if (!bitmap || bytes == 0) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(bitmap, sizeof *bitmap)) return ERR_BAD_POINTER;
    if (bitmap->structSize != KTCLR_SIZEOF_BITMAP_HANDLE || !(bitmap->flags & VX_BMP_IN_ACCESS) || row < 0 ||
        row >= bitmap->height)
        return ERR_INVALID_PARAMETER;
    *count = bytes < static_cast<std::uint32_t>(bitmap->bytesPerLine) ? bytes
                                                                       : static_cast<std::size_t>(bitmap->bytesPerLine);
    return STATUS_OK;
}

}  // namespace

KtStatus FillFromDib(BitmapHandle* bitmap, std::uint32_t structSize, const Vx_BmpInfoHeader* header,
                     const std::uint8_t* bits, std::size_t length) noexcept {
    KtStatus status = CheckRecord(bitmap, structSize);
    if (status != STATUS_OK) return status;
    if (!header || !bits) return ERR_INVALID_PARAMETER;
    if (platform::IsBadReadPtr(header, KTCLR_BMP_INFO_HEADER_MIN)) return ERR_BAD_POINTER;
    if (header->size < KTCLR_BMP_INFO_HEADER_MIN) return ERR_BAD_STRUCT_SIZE;
    const int bpp = header->bitsPerPixel;
    if (header->planes != 1 || header->compression != 0 || header->colorsUsed != 0 || (bpp != 24 && bpp != 32))
        return ERR_INVALID_PARAMETER;
    if (header->width < 1 || header->height == 0 || header->height == INT32_MIN) return ERR_BAD_SIZE;
    const int height = header->height < 0 ? -header->height : header->height;
    // The last row needs only its pixels, not its padding.
    const std::int64_t stride = PaddedRow(bpp, header->width);
    const auto needed = static_cast<std::uint64_t>(stride) * (height - 1) +
                        static_cast<std::uint64_t>(RowBytes(bpp, header->width));
    if (needed > length) return ERR_BAD_SIZE;
    if (platform::IsBadReadPtr(bits, needed)) return ERR_BAD_POINTER;
    return Take(bitmap, bits, header->width, height, bpp, header->height > 0, VX_BMP_ORDER_DIB);
}

bool HoldsData(const BitmapHandle* bitmap) noexcept {
    return bitmap && !platform::IsBadReadPtr(bitmap, sizeof *bitmap) &&
           bitmap->structSize == KTCLR_SIZEOF_BITMAP_HANDLE && (bitmap->flags & VX_BMP_HAS_DATA);
}

}  // namespace kt::bitmap

using namespace kt::bitmap;

extern "C" KTCLR_API KtStatus Vx_BmpInit(BitmapHandle* bitmap, uint32_t structSize) {
    const KtStatus status = CheckRecord(bitmap, structSize);
    if (status == STATUS_OK) Empty(bitmap);
    return status;
}

extern "C" KTCLR_API KtStatus Vx_BmpCreate(BitmapHandle* bitmap, uint32_t structSize, int width, int height,
                                           int bitsPerPixel, int colorOrder) {
    const KtStatus status = CheckRecord(bitmap, structSize);
    if (status != STATUS_OK) return status;
    if (width < 1 || height < 1) return ERR_BAD_SIZE;
    if (bitsPerPixel != 8 && bitsPerPixel != 16 && bitsPerPixel != 24 && bitsPerPixel != 32)
        return ERR_INVALID_PARAMETER;
    return Take(bitmap, nullptr, width, height, bitsPerPixel, false, colorOrder);
}

extern "C" KTCLR_API KtStatus Vx_BmpFree(BitmapHandle* bitmap) {
    const KtStatus status = CheckExisting(bitmap);
    if (status != STATUS_OK) return status;
    if (bitmap->flags & VX_BMP_HAS_DATA) KT_FREE(bitmap->data);
    Empty(bitmap);
    return STATUS_OK;
}

extern "C" KTCLR_API KtStatus Vx_BmpFillFromDib(BitmapHandle* bitmap, uint32_t structSize,
                                                const Vx_BmpInfoHeader* header, const uint8_t* bits) {
    if (header && !kt::platform::IsBadReadPtr(header, KTCLR_BMP_INFO_HEADER_MIN) && header->imageSize != 0)
        return FillFromDib(bitmap, structSize, header, bits, header->imageSize);
    return FillFromDib(bitmap, structSize, header, bits, SIZE_MAX);
}

extern "C" KTCLR_API KtStatus Vx_BmpAccessBegin(BitmapHandle* bitmap) {
    const KtStatus status = CheckExisting(bitmap);
    if (status != STATUS_OK) return status;
    const int bpp = bitmap->bitsPerPixel;
    if (!(bitmap->flags & VX_BMP_HAS_DATA) || !bitmap->data || bitmap->width < 1 || bitmap->height < 1 ||
        (bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32) || bitmap->bytesPerLine < RowBytes(bpp, bitmap->width))
        return ERR_INVALID_PARAMETER;
    const auto bytes = static_cast<std::size_t>(bitmap->bytesPerLine) * static_cast<std::size_t>(bitmap->height);
    if (kt::platform::IsBadWritePtr(bitmap->data, bytes)) return ERR_BAD_POINTER;
    bitmap->flags |= VX_BMP_IN_ACCESS;
    return STATUS_OK;
}

extern "C" KTCLR_API KtStatus Vx_BmpAccessEnd(BitmapHandle* bitmap) {
    const KtStatus status = CheckExisting(bitmap);
    if (status != STATUS_OK) return status;
    if (!(bitmap->flags & VX_BMP_IN_ACCESS)) return ERR_INVALID_PARAMETER;
    bitmap->flags &= ~VX_BMP_IN_ACCESS;
    return STATUS_OK;
}

extern "C" KTCLR_API KtStatus Vx_BmpGetRow(const BitmapHandle* bitmap, uint8_t* buffer, int row, uint32_t bytes) {
    std::size_t count = 0;
    const KtStatus status = CheckRow(bitmap, row, bytes, &count);
    if (status != STATUS_OK) return status;
    if (!buffer) return ERR_INVALID_PARAMETER;
    if (kt::platform::IsBadWritePtr(buffer, count)) return ERR_BAD_POINTER;
    std::memcpy(buffer, bitmap->data + static_cast<std::size_t>(bitmap->bytesPerLine) * row, count);
    return static_cast<KtStatus>(count);
}

extern "C" KTCLR_API KtStatus Vx_BmpPutRow(BitmapHandle* bitmap, const uint8_t* buffer, int row, uint32_t bytes) {
    std::size_t count = 0;
    const KtStatus status = CheckRow(bitmap, row, bytes, &count);
    if (status != STATUS_OK) return status;
    if (!buffer) return ERR_INVALID_PARAMETER;
    if (kt::platform::IsBadReadPtr(buffer, count)) return ERR_BAD_POINTER;
    std::memmove(bitmap->data + static_cast<std::size_t>(bitmap->bytesPerLine) * row, buffer, count);
    return static_cast<KtStatus>(count);
}
