// Packed 4:2:2 (both byte orders), packed 4:1:1 and 4 x 4 planar YUV
// against the reference: every RGB input for the luma, structured and
// random chroma, several paddings.
#include <gtest/gtest.h>

#include <random>

#include "colormodels/kernels.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using RgbFamilyPacked = test::AtEveryLevel;

using ref::Px3;
constexpr std::uint8_t kFill = 0xA5;

Px3 ReadRgb(const std::uint8_t* p, int order) { return order ? Px3{p[0], p[1], p[2]} : Px3{p[2], p[1], p[0]}; }

// The reference of one image, in the same layouts the kernels write. A
// packed group holds `pixels` pixels in `bytes` bytes; at(k) is where pixel
// k's luma goes and chroma(q) where quad/pair q's U and V go.
struct PackedLayout {
    int pixels, bytes;
    std::vector<int> luma;      // per pixel
    std::vector<int> u, v;      // per chroma group
    int share;                  // pixels per chroma sample
};
const PackedLayout kYuyv{2, 4, {0, 2}, {1}, {3}, 2};
const PackedLayout kUyvy{2, 4, {1, 3}, {0}, {2}, 2};
const PackedLayout k411{8, 12, {1, 3, 5, 7, 8, 9, 10, 11}, {0, 4}, {2, 6}, 4};

// One packed row from RGB pixels.
void PackRow(const PackedLayout& L, const std::uint8_t* rgb, int width, int order, std::uint8_t* out) {
    for (int x = 0; x < width; x += L.pixels, out += L.bytes) {
        for (int q = 0; q < L.pixels / L.share; ++q) {
            int su = 0, sv = 0;
            for (int k = 0; k < L.share; ++k) {
                const int p = q * L.share + k;
                const Px3 c = ReadRgb(rgb + 3 * (x + p), order);
                const ref::YuvSample s = ref::PackedFromRgb(c[0], c[1], c[2]);
                out[L.luma[p]] = static_cast<std::uint8_t>(s.y);
                su += s.u & 255;
                sv += s.v & 255;
            }
            const int shift = L.share == 2 ? 1 : 2;
            out[L.u[q]] = static_cast<std::uint8_t>(su >> shift);
            out[L.v[q]] = static_cast<std::uint8_t>(sv >> shift);
        }
    }
}

void UnpackRow(const PackedLayout& L, const std::uint8_t* in, int width, int order, std::uint8_t* rgb) {
    for (int x = 0; x < width; x += L.pixels, in += L.bytes) {
        for (int p = 0; p < L.pixels; ++p) {
            const int q = p / L.share;
            const Px3 c = ref::PackedToRgb(in[L.luma[p]], in[L.u[q]], in[L.v[q]]);
            std::uint8_t* d = rgb + 3 * (x + p);
            d[order ? 0 : 2] = c[0];
            d[1] = c[1];
            d[order ? 2 : 0] = c[2];
        }
    }
}

// Converts a padded image both ways and compares with the reference, the
// padding bytes of the destination included (they must stay untouched).
void CheckPacked(const char* name, color::Kernel from, color::Kernel to, const PackedLayout& L,
                 const std::vector<std::uint8_t>& rgbPixels, int width, int height, int srcPad, int dstPad) {
    const std::size_t rgbRow = 3u * width, packedRow = static_cast<std::size_t>(width) / L.pixels * L.bytes;
    for (int order : {1, 0}) {
        // RGB to packed.
        std::vector<std::uint8_t> rgb((rgbRow + srcPad) * height, kFill), got((packedRow + dstPad) * height, kFill);
        std::vector<std::uint8_t> want = got;
        for (int y = 0; y < height; ++y) std::copy_n(&rgbPixels[rgbRow * y], rgbRow, &rgb[(rgbRow + srcPad) * y]);
        ASSERT_EQ(from(rgb.data(), got.data(), width, height, srcPad, dstPad, 0, order), STATUS_OK);
        for (int y = 0; y < height; ++y) PackRow(L, &rgb[(rgbRow + srcPad) * y], width, order, &want[(packedRow + dstPad) * y]);
        EXPECT_TRUE(want == got) << name << " from rgb, order " << order << " pads " << srcPad << "," << dstPad;
        // Packed (the packed bytes just made, with random bytes mixed in) to RGB.
        std::vector<std::uint8_t> packed = got, back((rgbRow + dstPad) * height, kFill);
        std::mt19937 rng(width * 31 + height);
        for (std::size_t i = 0; i < packed.size(); i += 7) packed[i] = static_cast<std::uint8_t>(rng());
        std::vector<std::uint8_t> wantBack = back;
        ASSERT_EQ(to(packed.data(), back.data(), width, height, dstPad, dstPad, 0, order), STATUS_OK);
        for (int y = 0; y < height; ++y) UnpackRow(L, &packed[(packedRow + dstPad) * y], width, order, &wantBack[(rgbRow + dstPad) * y]);
        EXPECT_TRUE(wantBack == back) << name << " to rgb, order " << order << " pad " << dstPad;
    }
}

std::vector<std::uint8_t> RandomBytes(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::vector<std::uint8_t> v(n);
    for (auto& b : v) b = static_cast<std::uint8_t>(rng());
    return v;
}

TEST_P(RgbFamilyPacked, EveryRgbInputAndPaddings) {
    const std::vector<std::uint8_t> all = test::AllTriples();
    struct Case { const char* name; color::Kernel from, to; const PackedLayout* L; };
    const Case cases[] = {{"yuyv", color::RgbToYuyv, color::YuyvToRgb, &kYuyv},
                          {"uyvy", color::RgbToUyvy, color::UyvyToRgb, &kUyvy},
                          {"411", color::RgbToYuv411, color::Yuv411ToRgb, &k411}};
    for (const Case& c : cases) {
        CheckPacked(c.name, c.from, c.to, *c.L, all, test::kAllSide, test::kAllSide, 0, 0);
        for (int pads : {1, 3, 8}) {
            const int width = 8 * 13;
            CheckPacked(c.name, c.from, c.to, *c.L, RandomBytes(3 * width * 9, pads), width, 9, pads, pads + 2);
            CheckPacked(c.name, c.from, c.to, *c.L, RandomBytes(3 * width * 9, pads), width, 9, 0, pads);
        }
    }
}

// Every (Y, U, V) through the 4:2:2 inverse.
TEST_P(RgbFamilyPacked, EveryYuvTriple) {
    std::vector<std::uint8_t> groups(4u << 24), rgb(6u << 24);
    for (std::uint32_t i = 0; i < (1u << 24); ++i) {
        groups[4 * i] = static_cast<std::uint8_t>(i >> 16);     // Y0
        groups[4 * i + 1] = static_cast<std::uint8_t>(i >> 8);  // U
        groups[4 * i + 2] = static_cast<std::uint8_t>(~i >> 16);
        groups[4 * i + 3] = static_cast<std::uint8_t>(i);       // V
    }
    for (int order : {1, 0}) {
        test::RunSplit(color::YuyvToRgb, groups.data(), rgb.data(), 2 * test::kAllSide, test::kAllSide, 2, 3, 0, order);
        test::CheckAll("yuyv->rgb", 1 << 24, [&](std::int64_t i, test::Mismatches& m) {
            const std::uint8_t* g = &groups[4 * i];
            const Px3 w0 = ref::PackedToRgb(g[0], g[1], g[3]), w1 = ref::PackedToRgb(g[2], g[1], g[3]);
            if (ReadRgb(&rgb[6 * i], order) != w0 || ReadRgb(&rgb[6 * i + 3], order) != w1) m.Add(i, "");
        });
    }
}

// Planar reference: Y plane, then V, then U, each chroma sample the
// average of its block's four row averages.
void PlanarFromRgb(const std::uint8_t* rgb, int stride, int width, int height, int order, std::uint8_t* out) {
    const int bw = width / 4;
    std::uint8_t* v = out + width * height;
    std::uint8_t* u = v + width * height / 16;
    for (int by = 0; by < height / 4; ++by)
        for (int bx = 0; bx < bw; ++bx) {
            int su = 0, sv = 0;
            for (int r = 0; r < 4; ++r) {
                int ru = 0, rv = 0;
                for (int k = 0; k < 4; ++k) {
                    const int x = bx * 4 + k, y = by * 4 + r;
                    const Px3 c = ReadRgb(rgb + y * stride + 3 * x, order);
                    const ref::YuvSample s = ref::PackedFromRgb(c[0], c[1], c[2]);
                    out[y * width + x] = static_cast<std::uint8_t>(s.y);
                    ru += s.u & 255;
                    rv += s.v & 255;
                }
                su += ru >> 2;
                sv += rv >> 2;
            }
            u[by * bw + bx] = static_cast<std::uint8_t>(su >> 2);
            v[by * bw + bx] = static_cast<std::uint8_t>(sv >> 2);
        }
}

TEST_P(RgbFamilyPacked, Planar) {
    struct Size { int w, h; };
    for (Size s : {Size{4, 4}, Size{4, 8}, Size{20, 12}, Size{256, 64}, Size{4096, 4096}}) {
        for (int pad : {0, 1, 5}) {
            if (s.w == 4096 && pad != 0) continue;
            const int stride = 3 * s.w + pad;
            const std::size_t planar = static_cast<std::size_t>(s.w) * s.h * 9 / 8;
            std::vector<std::uint8_t> rgb = s.w == 4096 ? test::AllTriples() : RandomBytes(static_cast<std::size_t>(stride) * s.h, s.w + pad);
            for (int order : {1, 0}) {
                std::vector<std::uint8_t> got(planar + 16, kFill), want(planar + 16, kFill);
                ASSERT_EQ(color::RgbToYuv410(rgb.data(), got.data(), s.w, s.h, pad, 3, 0, order), STATUS_OK);
                PlanarFromRgb(rgb.data(), stride, s.w, s.h, order, want.data());
                EXPECT_TRUE(got == want) << s.w << "x" << s.h << " pad " << pad << " order " << order;
                // Back, with noise in the planes.
                std::mt19937 rng(pad);
                for (std::size_t i = 0; i < planar; i += 5) got[i] = static_cast<std::uint8_t>(rng());
                std::vector<std::uint8_t> back(static_cast<std::size_t>(stride) * s.h, kFill), wantBack = back;
                ASSERT_EQ(color::Yuv410ToRgb(got.data(), back.data(), s.w, s.h, 2, pad, 0, order), STATUS_OK);
                const std::uint8_t* v = got.data() + s.w * s.h;
                const std::uint8_t* u = v + s.w * s.h / 16;
                for (int y = 0; y < s.h; ++y)
                    for (int x = 0; x < s.w; ++x) {
                        const int at = (y / 4) * (s.w / 4) + x / 4;
                        const Px3 c = ref::PackedToRgb(got[y * s.w + x], u[at], v[at]);
                        std::uint8_t* d = &wantBack[y * stride + 3 * x];
                        d[order ? 0 : 2] = c[0];
                        d[1] = c[1];
                        d[order ? 2 : 0] = c[2];
                    }
                EXPECT_TRUE(back == wantBack) << s.w << "x" << s.h << " pad " << pad << " order " << order;
            }
        }
    }
}

KT_AT_EVERY_LEVEL(RgbFamilyPacked);

}  // namespace
}  // namespace kt
