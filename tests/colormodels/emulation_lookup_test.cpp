// Grid lookups: the node rules (the RGB test compares B with R), the
// two-corner means, 255 as the last node, signed means for a and b, byte
// order, padding and the built-in grids' contents.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "colormodels/builtin_data.h"
#include "colormodels/emulation_lookup.h"
#include "colormodels/kernels.h"
#include "ktclr/convert.h"
#include "ktclr/embedded.h"

namespace kt {
namespace {

using Bytes = std::vector<std::uint8_t>;
using color::EmulateCmykToRgb;
using color::EmulateLabToRgb;
using color::EmulateRgbToLab;

constexpr std::size_t kGrid33 = 33 * 33 * 33 * 3;
constexpr std::size_t kGrid17 = 17 * 17 * 17 * 17 * 3;

Bytes RandomGrid(std::size_t bytes, std::uint32_t seed) {
    Bytes g(bytes);
    for (auto& b : g) {
        seed = seed * 1664525u + 1013904223u;
        b = static_cast<std::uint8_t>(seed >> 24);
    }
    return g;
}

// The rules restated literally: node n of a step-s axis stands for n*s,
// the last one for 255.
int UpperNode(int v, int step) { return (std::min((v + step - 1) / step * step, 255) + step - 1) / step; }
int LowerNode(int v, int step) { return v / step; }
std::size_t At33(int i, int j, int k) { return static_cast<std::size_t>(((i * 33 + j) * 33 + k) * 3); }
std::size_t At17(int c, int m, int y, int k) { return static_cast<std::size_t>((((c * 17 + m) * 17 + y) * 17 + k) * 3); }

void RefRgbToLab(const Bytes& g, int r, int gr, int b, std::uint8_t out[3]) {
    if (r % 8 == 0 && gr % 8 == 0 && b == r / 8 * 8) {
        std::memcpy(out, &g[At33(r / 8, gr / 8, b / 8)], 3);
        return;
    }
    const std::uint8_t* u = &g[At33(UpperNode(r, 8), UpperNode(gr, 8), UpperNode(b, 8))];
    const std::uint8_t* l = &g[At33(LowerNode(r, 8), LowerNode(gr, 8), LowerNode(b, 8))];
    out[0] = static_cast<std::uint8_t>((u[0] + l[0]) / 2);
    for (int c = 1; c < 3; ++c)
        out[c] = static_cast<std::uint8_t>(static_cast<int>((static_cast<std::int8_t>(u[c]) + static_cast<std::int8_t>(l[c])) / 2));
}

bool OnNode(int v, int step) { return v % step == 0 || v == 255; }

void RefLabToRgb(const Bytes& g, int L, int a, int b, std::uint8_t out[3]) {
    const int A = (a + 128) & 255, B = (b + 128) & 255;  // a, b are signed bytes
    const std::uint8_t* u = &g[At33(UpperNode(L, 8), UpperNode(A, 8), UpperNode(B, 8))];
    if (OnNode(L, 8) && OnNode(A, 8) && OnNode(B, 8)) {
        std::memcpy(out, u, 3);
        return;
    }
    const std::uint8_t* l = &g[At33(LowerNode(L, 8), LowerNode(A, 8), LowerNode(B, 8))];
    for (int c = 0; c < 3; ++c) out[c] = static_cast<std::uint8_t>((u[c] + l[c]) / 2);
}

void RefCmykToRgb(const Bytes& g, const std::uint8_t* p, std::uint8_t out[3]) {
    const std::uint8_t* u = &g[At17(UpperNode(p[0], 16), UpperNode(p[1], 16), UpperNode(p[2], 16), UpperNode(p[3], 16))];
    if (OnNode(p[0], 16) && OnNode(p[1], 16) && OnNode(p[2], 16) && OnNode(p[3], 16)) {
        std::memcpy(out, u, 3);
        return;
    }
    const std::uint8_t* l = &g[At17(LowerNode(p[0], 16), LowerNode(p[1], 16), LowerNode(p[2], 16), LowerNode(p[3], 16))];
    for (int c = 0; c < 3; ++c) out[c] = static_cast<std::uint8_t>((u[c] + l[c]) / 2);
}

TEST(EmulationLookup, RgbToLabNodeRule) {
    const Bytes g = RandomGrid(kGrid33, 7);
    std::uint8_t out[3];
    // (8, 16, 8) is a node: its entry unchanged.
    const std::uint8_t onNode[3] = {8, 16, 8};
    ASSERT_EQ(EmulateRgbToLab(g.data(), onNode, out, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(out, &g[At33(1, 2, 1)], 3));
    // (8, 16, 16) lies on a node too, but B differs from R: it takes the
    // two-corner mean, whose corners are both node (1, 2, 2).
    const std::uint8_t blueDiffers[3] = {8, 16, 16};
    ASSERT_EQ(EmulateRgbToLab(g.data(), blueDiffers, out, 1, 1, 0, 0, 1), STATUS_OK);
    const std::uint8_t* e = &g[At33(1, 2, 2)];
    EXPECT_EQ(out[0], e[0]);
    EXPECT_EQ(out[1], e[1]);
    EXPECT_EQ(out[2], e[2]);
    // 255 averages the last two nodes.
    const std::uint8_t white[3] = {255, 255, 255};
    ASSERT_EQ(EmulateRgbToLab(g.data(), white, out, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(out[0], (g[At33(32, 32, 32)] + g[At33(31, 31, 31)]) / 2);
}

TEST(EmulationLookup, SignedMeansTruncateTowardZero) {
    Bytes g(kGrid33, 0);
    g[At33(1, 1, 1) + 1] = static_cast<std::uint8_t>(-3);  // a: -3 and 0 -> -1, not -2
    g[At33(1, 1, 1) + 2] = 0x7F;                           // b: 127 and -128 -> 0
    g[At33(0, 0, 0) + 2] = 0x80;
    g[At33(1, 1, 1)] = 255;  // L: 255 and 0 -> 127
    const std::uint8_t px[3] = {3, 5, 1};
    std::uint8_t out[3];
    ASSERT_EQ(EmulateRgbToLab(g.data(), px, out, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(out[0], 127);
    EXPECT_EQ(static_cast<std::int8_t>(out[1]), -1);
    EXPECT_EQ(static_cast<std::int8_t>(out[2]), 0);
}

// Every byte triple through both 33-node lookups, in both orders, against
// the literal rules.
TEST(EmulationLookup, EveryTriple) {
    using Lookup = KtStatus (*)(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, int, int, int, int, int) noexcept;
    using Ref = void (*)(const Bytes&, int, int, int, std::uint8_t*);
    const Ref labToRgb = [](const Bytes& g, int l, int a, int b, std::uint8_t* out) {
        RefLabToRgb(g, l, static_cast<std::int8_t>(a), static_cast<std::int8_t>(b), out);
    };
    const struct {
        Lookup lookup;
        Ref ref;
        bool rgbIn;  // the RGB side is the input
    } cases[] = {{EmulateRgbToLab, RefRgbToLab, true}, {EmulateLabToRgb, labToRgb, false}};
    const Bytes g = RandomGrid(kGrid33, 99);
    Bytes row(256 * 3), swapped(256 * 3), out(256 * 3), outSwapped(256 * 3), want(256 * 3), wantSwapped(256 * 3);
    for (const auto& c : cases)
        for (int p = 0; p < 256; ++p)
            for (int q = 0; q < 256; ++q) {
                for (int b = 0; b < 256; ++b) {
                    const std::uint8_t px[3] = {std::uint8_t(p), std::uint8_t(q), std::uint8_t(b)};
                    for (int k = 0; k < 3; ++k) row[b * 3 + k] = px[k], swapped[b * 3 + k] = px[2 - k];
                    c.ref(g, p, q, b, &want[b * 3]);
                    for (int k = 0; k < 3; ++k) wantSwapped[b * 3 + k] = c.rgbIn ? want[b * 3 + k] : want[b * 3 + 2 - k];
                }
                ASSERT_EQ(c.lookup(g.data(), row.data(), out.data(), 256, 1, 0, 0, 1), STATUS_OK);
                ASSERT_EQ(c.lookup(g.data(), c.rgbIn ? swapped.data() : row.data(), outSwapped.data(), 256, 1, 0, 0, 0),
                          STATUS_OK);
                ASSERT_EQ(out, want) << p << " " << q;
                ASSERT_EQ(outSwapped, wantSwapped) << p << " " << q;
            }
    // Lab: a = b = 0 is the middle node; 255 is the last node, taken whole.
    std::uint8_t px[3] = {255, 0, 0}, rgb[3];
    ASSERT_EQ(EmulateLabToRgb(g.data(), px, rgb, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(rgb, &g[At33(32, 16, 16)], 3));
}

TEST(EmulationLookup, CmykToRgb) {
    const Bytes g = RandomGrid(kGrid17, 11);
    // Every combination of interesting values per channel, then random ones.
    const int values[] = {0, 1, 15, 16, 17, 128, 239, 240, 241, 254, 255};
    Bytes in;
    for (int c : values)
        for (int m : values)
            for (int y : values)
                for (int k : values)
                    for (int v : {c, m, y, k}) in.push_back(static_cast<std::uint8_t>(v));
    Bytes random = RandomGrid(4 * 200000, 3);
    in.insert(in.end(), random.begin(), random.end());
    const int n = static_cast<int>(in.size() / 4);
    Bytes out(static_cast<std::size_t>(n) * 3), outBgr(out.size());
    ASSERT_EQ(EmulateCmykToRgb(g.data(), in.data(), out.data(), n, 1, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(EmulateCmykToRgb(g.data(), in.data(), outBgr.data(), n, 1, 0, 0, 0), STATUS_OK);
    for (int i = 0; i < n; ++i) {
        std::uint8_t want[3];
        RefCmykToRgb(g, &in[static_cast<std::size_t>(i) * 4], want);
        ASSERT_EQ(0, std::memcmp(&out[static_cast<std::size_t>(i) * 3], want, 3)) << i;
        ASSERT_EQ(outBgr[static_cast<std::size_t>(i) * 3], want[2]);
    }
}

TEST(EmulationLookup, ContractPaddingAndNullGrid) {
    const Bytes g = RandomGrid(kGrid33, 1);
    // Two rows of two pixels, with padding 2 on the source and 1 on the
    // destination; padding bytes are skipped and left alone.
    const std::uint8_t src[] = {10, 20, 30, 40, 50, 60, 0xEE, 0xEE, 70, 80, 90, 100, 110, 120, 0xEE, 0xEE};
    std::uint8_t dst[14];
    std::memset(dst, 0xCD, sizeof dst);
    ASSERT_EQ(EmulateRgbToLab(g.data(), src, dst, 2, 2, 2, 1, 1), STATUS_OK);
    for (int row = 0; row < 2; ++row)
        for (int px = 0; px < 2; ++px) {
            std::uint8_t want[3];
            const std::uint8_t* s = src + row * 8 + px * 3;
            RefRgbToLab(g, s[0], s[1], s[2], want);
            EXPECT_EQ(0, std::memcmp(dst + row * 7 + px * 3, want, 3));
        }
    EXPECT_EQ(dst[6], 0xCD);
    EXPECT_EQ(dst[13], 0xCD);

    std::uint8_t out[3] = {1, 2, 3};
    EXPECT_EQ(EmulateLabToRgb(nullptr, src, out, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(EmulateCmykToRgb(g.data(), nullptr, out, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(EmulateRgbToLab(g.data(), src, nullptr, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(EmulateRgbToLab(g.data(), nullptr, nullptr, 1, 0, 0, 0, 1), STATUS_OK);  // no rows
    // In place, same size.
    std::uint8_t inPlace[3] = {8, 16, 8};
    ASSERT_EQ(EmulateRgbToLab(g.data(), inPlace, inPlace, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(inPlace, &g[At33(1, 2, 1)], 3));
}

// The built-in grids are sampled from the library's own conversions: the
// Lab formulas at the nodes, and the ICC method between the built-in press
// and display profiles.
TEST(EmulationLookup, BuiltinGridsHoldTheReferenceConversions) {
    const std::uint8_t* labToRgb = color::data::EmulationGrids();
    const std::uint8_t* rgbToLab = labToRgb + color::data::kGridSlot33;
    const std::uint8_t* cmykToRgb = labToRgb + 2 * color::data::kGridSlot33;
    Bytes nodesRgb, nodesLab;
    for (int i = 0; i < 33; ++i)
        for (int j = 0; j < 33; ++j)
            for (int k = 0; k < 33; ++k) {
                for (int v : {i, j, k}) nodesRgb.push_back(static_cast<std::uint8_t>(std::min(v * 8, 255)));
                nodesLab.push_back(static_cast<std::uint8_t>(std::min(i * 8, 255)));
                nodesLab.push_back(static_cast<std::uint8_t>(std::min(j * 8, 255) - 128));
                nodesLab.push_back(static_cast<std::uint8_t>(std::min(k * 8, 255) - 128));
            }
    Bytes lab(nodesRgb.size()), rgb(nodesLab.size());
    ASSERT_EQ(color::RgbToLab(nodesRgb.data(), lab.data(), 33 * 33 * 33, 1, 0, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(color::LabToRgb(nodesLab.data(), rgb.data(), 33 * 33 * 33, 1, 0, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(rgbToLab, lab.data(), lab.size()));
    EXPECT_EQ(0, std::memcmp(labToRgb, rgb.data(), rgb.size()));

    ConversionParams p;
    std::memset(&p, 0, sizeof p);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    p.method = p.prepareMethods = METHOD_ICC;
    ClrHandle* h = nullptr;
    ASSERT_EQ(Vx_ClrInit(&h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    Bytes nodesCmyk;
    for (int c = 0; c < 17; ++c)
        for (int m = 0; m < 17; ++m)
            for (int y = 0; y < 17; ++y)
                for (int k = 0; k < 17; ++k)
                    for (int v : {c, m, y, k}) nodesCmyk.push_back(static_cast<std::uint8_t>(std::min(v * 16, 255)));
    Bytes viaIcc(nodesCmyk.size() / 4 * 3);
    ASSERT_EQ(Vx_ClrConvert(h, nodesCmyk.data(), viaIcc.data(), static_cast<int>(nodesCmyk.size() / 4), 1, 0, 0),
              STATUS_OK);
    Vx_ClrFree(h);
    EXPECT_EQ(0, std::memcmp(cmykToRgb, viaIcc.data(), viaIcc.size()));
}

}  // namespace
}  // namespace kt
