// Packed YUV: 4:2:2 in two byte orders (two pixels share U and V) and 4:1:1
// (four pixels share them, eight pixels in 12 bytes).
#include "colormodels/packed_yuv_rows.h"
#include "colormodels/space_table.h"
#include "colormodels/x86/rows.h"

namespace kt::color {
namespace {
using packed::kPairPixels;
constexpr int kOctetPixels = 8;
constexpr rows::Shape kRgbTo422 = FromRgbShape(CS_YUV422_YUYV);
constexpr rows::Shape k422ToRgb = ToRgbShape(CS_YUV422_YUYV);
constexpr rows::Shape kRgbTo411 = FromRgbShape(CS_YUV411_PACKED);
constexpr rows::Shape k411ToRgb = ToRgbShape(CS_YUV411_PACKED);
static_assert(kRgbTo422.group == kPairPixels && kRgbTo411.group == kOctetPixels);

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

constexpr rows::OrderedRows kRgbToYuyvPlain = KT_ORDERED_ROWS(packed::RgbTo422Row<packed::kYuyv>);
constexpr rows::OrderedRows kRgbToUyvyPlain = KT_ORDERED_ROWS(packed::RgbTo422Row<packed::kUyvy>);
constexpr rows::OrderedRows kYuyvToRgbPlain = KT_ORDERED_ROWS(packed::Yuv422ToRgbRow<packed::kYuyv>);
constexpr rows::OrderedRows kUyvyToRgbPlain = KT_ORDERED_ROWS(packed::Yuv422ToRgbRow<packed::kUyvy>);
constexpr rows::OrderedRows kRgbTo411Plain = KT_ORDERED_ROWS(RgbTo411Row);
constexpr rows::OrderedRows k411ToRgbPlain = KT_ORDERED_ROWS(Yuv411ToRgbRow);
constexpr rows::IsaRows kRgbToYuyv{&kRgbToYuyvPlain, KT_X86(kRgbToYuyvAvx2)};
constexpr rows::IsaRows kRgbToUyvy{&kRgbToUyvyPlain, KT_X86(kRgbToUyvyAvx2)};
constexpr rows::IsaRows kYuyvToRgb{&kYuyvToRgbPlain, KT_X86(kYuyvToRgbAvx2), KT_X86(kYuyvToRgbAvx512)};
constexpr rows::IsaRows kUyvyToRgb{&kUyvyToRgbPlain, KT_X86(kUyvyToRgbAvx2), KT_X86(kUyvyToRgbAvx512)};
constexpr rows::IsaRows kRgbToYuv411{&kRgbTo411Plain};
constexpr rows::IsaRows kYuv411ToRgb{&k411ToRgbPlain};

}  // namespace

#define KT_RUN(shape, rowsOf)                                                                                 \
    (void)black;                                                                                              \
    return rows::Run(shape, rowsOf, nullptr, src, dst, width, height, srcPad, dstPad, rgbOrder)

KT_KERNEL(RgbToYuyv) { KT_RUN(kRgbTo422, kRgbToYuyv); }
KT_KERNEL(RgbToUyvy) { KT_RUN(kRgbTo422, kRgbToUyvy); }
KT_KERNEL(YuyvToRgb) { KT_RUN(k422ToRgb, kYuyvToRgb); }
KT_KERNEL(UyvyToRgb) { KT_RUN(k422ToRgb, kUyvyToRgb); }
KT_KERNEL(RgbToYuv411) { KT_RUN(kRgbTo411, kRgbToYuv411); }
KT_KERNEL(Yuv411ToRgb) { KT_RUN(k411ToRgb, kYuv411ToRgb); }

}  // namespace kt::color
