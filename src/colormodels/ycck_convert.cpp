#include "colormodels/ycck_convert.h"

#include "colormodels/space_table.h"

namespace kt::color {
namespace {

constexpr int kMax = 255;

struct Rgb {
    int r, g, b;
};

// Y, Cb, Cr to R, G, B, each limited to 0..255 by the range-limit table.
inline Rgb Decode(const YcckTable& t, int y, int cb, int cr) noexcept {
    const std::uint8_t* limit = t.rangeLimit + t.rangeLimitBase;
    return {limit[y + t.crToR[cr]], limit[y + ((t.cbToG[cb] + t.crToG[cr]) >> kYccScaleBits)],
            limit[y + t.cbToB[cb]]};
}

inline void Encode(const YcckTable& t, int r, int g, int b, std::uint8_t* out) noexcept {
    const std::int32_t* c = t.rgbToYcc;
    auto at = [c](YccTab tab, int i) { return c[YccOffset(tab) + i]; };
    out[0] = static_cast<std::uint8_t>((at(YccTab::rY, r) + at(YccTab::gY, g) + at(YccTab::bY, b)) >> kYccScaleBits);
    out[1] = static_cast<std::uint8_t>((at(YccTab::rCb, r) + at(YccTab::gCb, g) + at(YccTab::bCb, b)) >>
                                       kYccScaleBits);
    out[2] = static_cast<std::uint8_t>((at(YccTab::rCr, r) + at(YccTab::gCr, g) + at(YccTab::bCr, b)) >>
                                       kYccScaleBits);
}

}  // namespace

KT_KERNEL(YcckToRgb) {
    (void)black;
    const YcckTable& t = GlobalYcbcrTables();
    return rows::Walk(ToRgbShape(CS_YCCK), src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&t](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          using O = decltype(o);
                          for (int x = 0; x < w; ++x, s += 4, d += 3) {
                              const Rgb p = Decode(t, s[0], s[1], s[2]);
                              d[O::r] = static_cast<std::uint8_t>(p.r);
                              d[O::g] = static_cast<std::uint8_t>(p.g);
                              d[O::b] = static_cast<std::uint8_t>(p.b);
                          }
                      });
}

KT_KERNEL(RgbToYcck) {
    (void)black;
    const YcckTable& t = GlobalYcbcrTables();
    return rows::Walk(FromRgbShape(CS_YCCK), src, dst, width, height, srcPad, dstPad, rgbOrder,
                      [&t](auto o, const std::uint8_t* s, std::uint8_t* d, int w) {
                          using O = decltype(o);
                          for (int x = 0; x < w; ++x, s += 3, d += 4) {
                              const int r = s[O::r], g = s[O::g], b = s[O::b];
                              Encode(t, r, g, b, d);
                              d[3] = 0;
                          }
                      });
}

void YcckToCmykPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept {
    const std::uint8_t* limit = t.rangeLimit + t.rangeLimitBase;
    for (std::size_t i = 0; i < n; ++i, src += 4, dst += 4) {
        const int y = src[0], cb = src[1], cr = src[2];
        const std::uint8_t k = src[3];
        dst[0] = limit[kMax - (y + t.crToR[cr])];
        dst[1] = limit[kMax - (y + ((t.cbToG[cb] + t.crToG[cr]) >> kYccScaleBits))];
        dst[2] = limit[kMax - (y + t.cbToB[cb])];
        dst[3] = k;
    }
}

void CmykToYcckPixels(const YcckTable& t, const std::uint8_t* src, std::uint8_t* dst, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i, src += 4, dst += 4) {
        const int r = kMax - src[0], g = kMax - src[1], b = kMax - src[2];
        const std::uint8_t k = src[3];
        Encode(t, r, g, b, dst);
        dst[3] = k;
    }
}

}  // namespace kt::color
