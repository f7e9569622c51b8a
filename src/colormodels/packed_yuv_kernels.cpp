// Packed YUV: 4:2:2 in two byte orders (two pixels share U and V) and 4:1:1
// (four pixels share them, eight pixels in 12 bytes).
#include "colormodels/kernel_rows.h"
#include "colormodels/packed_yuv_math.h"

namespace kt::color {
namespace {
constexpr int kPairPixels = 2;
constexpr int kOctetPixels = 8;
constexpr rows::Shape kRgbTo422{rows::kBits24, rows::kBits16, kPairPixels};
constexpr rows::Shape k422ToRgb{rows::kBits16, rows::kBits24, kPairPixels};
constexpr rows::Shape kRgbTo411{rows::kBits24, rows::kBits12, kOctetPixels};
constexpr rows::Shape k411ToRgb{rows::kBits12, rows::kBits24, kOctetPixels};

// Byte positions of Y0, U, Y1, V inside a 4-byte group.
struct Layout422 {
    int y0, u, y1, v;
};
constexpr Layout422 kYuyv{0, 1, 2, 3};
constexpr Layout422 kUyvy{1, 0, 3, 2};

template <class O>
void RgbTo422Row(O o, Layout422 at, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; x += kPairPixels, s += 6, d += 4) {
        const yuv::Sample a = yuv::FromRgb(o, s), b = yuv::FromRgb(o, s + 3);
        d[at.y0] = static_cast<std::uint8_t>(a.y);
        d[at.u] = static_cast<std::uint8_t>(((a.u & 255) + (b.u & 255)) >> 1);
        d[at.y1] = static_cast<std::uint8_t>(b.y);
        d[at.v] = static_cast<std::uint8_t>(((a.v & 255) + (b.v & 255)) >> 1);
    }
}

template <class O>
void Yuv422ToRgbRow(O o, Layout422 at, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; x += kPairPixels, s += 4, d += 6) {
        const int u = s[at.u], v = s[at.v];
        yuv::ToRgb(o, s[at.y0], u, v, d);
        yuv::ToRgb(o, s[at.y1], u, v, d + 3);
    }
}

// 4:1:1 group: U(0-3), Y0, V(0-3), Y1, U(4-7), Y2, V(4-7), Y3, Y4..Y7.
constexpr int kLuma411[kOctetPixels] = {1, 3, 5, 7, 8, 9, 10, 11};
constexpr int kU411[2] = {0, 4};
constexpr int kV411[2] = {2, 6};
constexpr int kQuadPixels = 4;

template <class O>
void RgbTo411Row(O o, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; x += kOctetPixels, s += 24, d += 12) {
        for (int quad = 0; quad < 2; ++quad) {
            int su = 0, sv = 0;
            for (int k = 0; k < kQuadPixels; ++k) {
                const int p = quad * kQuadPixels + k;
                const yuv::Sample c = yuv::FromRgb(o, s + 3 * p);
                d[kLuma411[p]] = static_cast<std::uint8_t>(c.y);
                su += c.u & 255;
                sv += c.v & 255;
            }
            d[kU411[quad]] = static_cast<std::uint8_t>(su >> 2);
            d[kV411[quad]] = static_cast<std::uint8_t>(sv >> 2);
        }
    }
}

template <class O>
void Yuv411ToRgbRow(O o, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    for (int x = 0; x < width; x += kOctetPixels, s += 12, d += 24) {
        for (int p = 0; p < kOctetPixels; ++p) {
            const int quad = p / kQuadPixels;
            yuv::ToRgb(o, s[kLuma411[p]], s[kU411[quad]], s[kV411[quad]], d + 3 * p);
        }
    }
}
}  // namespace

KT_KERNEL(RgbToYuyv) {
    (void)black;
    return rows::Walk(kRgbTo422, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { RgbTo422Row(o, kYuyv, s, d, w); });
}

KT_KERNEL(YuyvToRgb) {
    (void)black;
    return rows::Walk(k422ToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { Yuv422ToRgbRow(o, kYuyv, s, d, w); });
}

KT_KERNEL(RgbToUyvy) {
    (void)black;
    return rows::Walk(kRgbTo422, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { RgbTo422Row(o, kUyvy, s, d, w); });
}

KT_KERNEL(UyvyToRgb) {
    (void)black;
    return rows::Walk(k422ToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { Yuv422ToRgbRow(o, kUyvy, s, d, w); });
}

KT_KERNEL(RgbToYuv411) {
    (void)black;
    return rows::Walk(kRgbTo411, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { RgbTo411Row(o, s, d, w); });
}

KT_KERNEL(Yuv411ToRgb) {
    (void)black;
    return rows::Walk(k411ToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { Yuv411ToRgbRow(o, s, d, w); });
}

}  // namespace kt::color
