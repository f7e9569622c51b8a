// 4 x 4 planar YUV: a Y plane of width x height bytes, then the V plane,
// then the U plane, one chroma sample per 4 x 4 block. The planes follow one
// another without padding; the RGB side's rows carry the caller's padding.
// A block's chroma is the average of its four row averages, each row
// average being the sum of four samples (each taken & 255) >> 2.
#include <cstddef>

#include "colormodels/kernel_rows.h"
#include "colormodels/packed_yuv_math.h"

namespace kt::color {
namespace {
constexpr int kBlock = 4;
constexpr int kRgbPixelBytes = 3;

template <class Byte>
struct Planes {
    Byte* y;
    Byte* v;
    Byte* u;
};

template <class Byte>
Planes<Byte> Split(Byte* base, int width, int height) {
    const std::size_t luma = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const std::size_t chroma = luma / (kBlock * kBlock);
    return {base, base + luma, base + luma + chroma};
}

// Probe, then the height, then the block sizes.
KtStatus Check(rows::Shape shape, const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
               int dstPad) noexcept {
    const KtStatus probed = rows::ProbeBuffers(src, dst, width, height, srcPad, dstPad, shape.srcBits, shape.dstBits);
    if (probed != STATUS_OK) return probed;
    if (height < 1) return STATUS_OK;
    if (width % kBlock != 0 || height % kBlock != 0) return ERR_BAD_PLANAR_SIZE;
    return STATUS_OK;
}

template <class O>
void FromRgbBlocks(O o, const std::uint8_t* src, std::ptrdiff_t srcStride, Planes<std::uint8_t> planes, int width,
                   int height) noexcept {
    const int blocksX = width / kBlock;
    for (int by = 0; by < height / kBlock; ++by) {
        for (int bx = 0; bx < blocksX; ++bx) {
            int sumU = 0, sumV = 0;
            for (int row = 0; row < kBlock; ++row) {
                const int y = by * kBlock + row;
                const std::uint8_t* s = src + y * srcStride + bx * kBlock * kRgbPixelBytes;
                std::uint8_t* luma = planes.y + static_cast<std::size_t>(y) * width + bx * kBlock;
                int rowU = 0, rowV = 0;
                for (int k = 0; k < kBlock; ++k, s += kRgbPixelBytes) {
                    const yuv::Sample c = yuv::FromRgb(o, s);
                    luma[k] = static_cast<std::uint8_t>(c.y);
                    rowU += c.u & 255;
                    rowV += c.v & 255;
                }
                sumU += rowU >> 2;
                sumV += rowV >> 2;
            }
            const std::size_t at = static_cast<std::size_t>(by) * blocksX + bx;
            planes.v[at] = static_cast<std::uint8_t>(sumV >> 2);
            planes.u[at] = static_cast<std::uint8_t>(sumU >> 2);
        }
    }
}

template <class O>
void ToRgbBlocks(O o, Planes<const std::uint8_t> planes, std::uint8_t* dst, std::ptrdiff_t dstStride, int width, int height) noexcept {
    const int blocksX = width / kBlock;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* luma = planes.y + static_cast<std::size_t>(y) * width;
        const std::size_t chromaRow = static_cast<std::size_t>(y / kBlock) * blocksX;
        std::uint8_t* d = dst + y * dstStride;
        for (int x = 0; x < width; ++x, d += kRgbPixelBytes) {
            const std::size_t at = chromaRow + x / kBlock;
            yuv::ToRgb(o, luma[x], planes.u[at], planes.v[at], d);
        }
    }
}
}  // namespace

KT_KERNEL(RgbToYuv410) {
    (void)black;
    constexpr rows::Shape shape{rows::kBits24, rows::kBits9};
    const KtStatus checked = Check(shape, src, dst, width, height, srcPad, dstPad);
    if (checked != STATUS_OK || height < 1 || width < 1) return checked;
    (void)dstPad;  // the planes are contiguous
    const std::ptrdiff_t stride = rows::RowBytes(shape.srcBits, width) + rows::Padding(srcPad);
    const Planes<std::uint8_t> planes = Split(dst, width, height);
    if (rgbOrder != 0) {
        FromRgbBlocks(rows::RgbOrder{}, src, stride, planes, width, height);
    } else {
        FromRgbBlocks(rows::BgrOrder{}, src, stride, planes, width, height);
    }
    return STATUS_OK;
}

KT_KERNEL(Yuv410ToRgb) {
    (void)black;
    constexpr rows::Shape shape{rows::kBits9, rows::kBits24};
    const KtStatus checked = Check(shape, src, dst, width, height, srcPad, dstPad);
    if (checked != STATUS_OK || height < 1 || width < 1) return checked;
    const std::ptrdiff_t stride = rows::RowBytes(shape.dstBits, width) + rows::Padding(dstPad);
    const Planes<const std::uint8_t> planes = Split(src, width, height);
    if (rgbOrder != 0) {
        ToRgbBlocks(rows::RgbOrder{}, planes, dst, stride, width, height);
    } else {
        ToRgbBlocks(rows::BgrOrder{}, planes, dst, stride, width, height);
    }
    return STATUS_OK;
}

}  // namespace kt::color
