// Packed YUV: 4:2:2 in two byte orders (two pixels share U and V) and 4:1:1
// (four pixels share them, eight pixels in 12 bytes).
#include "colormodels/packed_avx512.h"
#include "colormodels/kernel_rows.h"
#include "colormodels/packed_avx2.h"
#include "colormodels/packed_variants.h"
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

// Pairs of pixels go through the lane loops: six RGB bytes in, four packed
// bytes out.
template <class O>
KT_ROW_INLINE void RgbTo422Row(O, Layout422 at, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<6, 4>(s, d, width / kPairPixels, [at](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int r0 = in[O::r][i], g0 = in[O::g][i], b0 = in[O::b][i];
            const int r1 = in[3 + O::r][i], g1 = in[3 + O::g][i], b1 = in[3 + O::b][i];
            out[at.y0][i] = yuv::Luma(r0, g0, b0);
            out[at.y1][i] = yuv::Luma(r1, g1, b1);
            out[at.u][i] = ((yuv::ChromaU(r0, g0, b0) & 255) + (yuv::ChromaU(r1, g1, b1) & 255)) >> 1;
            out[at.v][i] = ((yuv::ChromaV(r0, g0, b0) & 255) + (yuv::ChromaV(r1, g1, b1) & 255)) >> 1;
        }
    });
}

template <class O>
KT_ROW_INLINE void Yuv422ToRgbRow(O, Layout422 at, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<4, 6>(s, d, width / kPairPixels, [at](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int u = in[at.u][i], v = in[at.v][i];
            yuv::ToRgbLanes(in[at.y0][i], u, v, out[O::r][i], out[O::g][i], out[O::b][i]);
            yuv::ToRgbLanes(in[at.y1][i], u, v, out[3 + O::r][i], out[3 + O::g][i], out[3 + O::b][i]);
        }
    });
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

// The AVX2 steps, the row's last pixels through the lane loops.
template <const Layout422& At, class O>
[[gnu::target("avx2")]] void Yuv422ToRgbAvx2(const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    packed256::ToRgbRow<At.y0, At.u, At.y1, At.v, O>(
        s, d, width, [](const std::uint8_t* rs, std::uint8_t* rd, int n) KT_LAMBDA_INLINE {
            Yuv422ToRgbRow(O{}, At, rs, rd, n);
        });
}

// Packed 4:2:2 to RGB in the variant asked for: AVX-512 steps, AVX2 steps,
// or the lane loops.
template <const Layout422& At>
KtStatus Yuv422ToRgb(Variant variant, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                     int srcPad, int dstPad, int rgbOrder) noexcept {
    return WalkVariant(
        variant, k422ToRgb, src, dst, width, height, srcPad, dstPad, rgbOrder,
        [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
            packed512::ToRgbRow<At.y0, At.u, At.y1, At.v, decltype(o)>(s, d, w);
        },
        [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { Yuv422ToRgbAvx2<At, decltype(o)>(s, d, w); },
        [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) { Yuv422ToRgbRow(o, At, s, d, w); });
}

}  // namespace

KT_KERNEL(RgbToYuyv) {
    (void)black;
    return rows::WalkFast(kRgbTo422, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE { RgbTo422Row(o, kYuyv, s, d, w); });
}

KT_KERNEL(RgbToUyvy) {
    (void)black;
    return rows::WalkFast(kRgbTo422, src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [](auto o, const std::uint8_t* s, std::uint8_t* d, int w) KT_LAMBDA_INLINE { RgbTo422Row(o, kUyvy, s, d, w); });
}

KT_KERNEL_WITH(packed::YuyvToRgbWith) {
    (void)black;
    return Yuv422ToRgb<kYuyv>(variant, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL_WITH(packed::UyvyToRgbWith) {
    (void)black;
    return Yuv422ToRgb<kUyvy>(variant, src, dst, width, height, srcPad, dstPad, rgbOrder);
}

KT_KERNEL(YuyvToRgb) {
    return packed::YuyvToRgbWith(BestVariant(), src, dst, width, height, srcPad, dstPad, black, rgbOrder);
}

KT_KERNEL(UyvyToRgb) {
    return packed::UyvyToRgbWith(BestVariant(), src, dst, width, height, srcPad, dstPad, black, rgbOrder);
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
