// Grid lookups against the rules restated literally: every byte triple
// through both 33-node grids in both orders, the CMYK grid on edge values
// and random pixels, padding and a null grid, and the built-in grids'
// contents.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "colormodels/builtin_data.h"
#include "colormodels/emulation_lookup.h"
#include "colormodels/kernels.h"
#include "ktclr/convert.h"
#include "ktclr/embedded.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Bytes;
using color::EmulateCmykToRgb;
using color::EmulateLabToRgb;
using color::EmulateRgbToLab;

// Node n of a step-s axis stands for n x s, the last one for 255. The entry
// of the upper or lower node around v (n axes), and whether v is a node.
std::size_t Corner(const int* v, int n, int step, bool upper) {
    std::size_t at = 0;
    for (int i = 0; i < n; ++i)
        at = at * (256 / step + 1) +
             (upper ? (std::min((v[i] + step - 1) / step * step, 255) + step - 1) / step : v[i] / step);
    return at * 3;
}
bool OnNodes(const int* v, int n, int step) {
    return std::all_of(v, v + n, [step](int x) { return x % step == 0 || x == 255; });
}

// RGB to Lab: a node only where R and G are multiples of 8 and B equals R;
// a and b are signed means, truncated toward zero.
void RefRgbToLab(const Bytes& g, const int* v, std::uint8_t* out) {
    const std::uint8_t* u = &g[Corner(v, 3, 8, true)];
    const std::uint8_t* l = &g[Corner(v, 3, 8, false)];
    if (v[0] % 8 == 0 && v[1] % 8 == 0 && v[2] == v[0]) return void(std::copy_n(l, 3, out));
    out[0] = static_cast<std::uint8_t>((u[0] + l[0]) / 2);
    for (int c = 1; c < 3; ++c)
        out[c] = static_cast<std::uint8_t>((static_cast<std::int8_t>(u[c]) + static_cast<std::int8_t>(l[c])) / 2);
}

// Lab (a, b offset by 128) to RGB and CMYK to RGB: the upper node where
// every value is a node, else unsigned means.
void RefMean(const Bytes& g, const int* v, int n, int step, std::uint8_t* out) {
    const std::uint8_t* u = &g[Corner(v, n, step, true)];
    const std::uint8_t* l = &g[Corner(v, n, step, false)];
    for (int c = 0; c < 3; ++c) out[c] = OnNodes(v, n, step) ? u[c] : static_cast<std::uint8_t>((u[c] + l[c]) / 2);
}

TEST(EmulationLookup, EveryTriple) {
    using Lookup = KtStatus (*)(const std::uint8_t*, const std::uint8_t*, std::uint8_t*, int, int, int, int, int) noexcept;
    const Bytes g = test::Random(33 * 33 * 33 * 3, 99);
    for (const bool toLab : {true, false}) {
        const Lookup lookup = toLab ? EmulateRgbToLab : EmulateLabToRgb;
        Bytes row(256 * 3), swapped(row.size()), out(row.size()), outSwapped(row.size()), want(row.size()),
            wantSwapped(row.size());
        for (int p = 0; p < 256; ++p)
            for (int q = 0; q < 256; ++q) {
                for (int b = 0; b < 256; ++b) {
                    const int px[3] = {p, q, b}, lab[3] = {p, (q + 128) & 255, (b + 128) & 255};
                    for (int k = 0; k < 3; ++k) row[b * 3 + k] = std::uint8_t(px[k]), swapped[b * 3 + k] = std::uint8_t(px[2 - k]);
                    toLab ? RefRgbToLab(g, px, &want[b * 3]) : RefMean(g, lab, 3, 8, &want[b * 3]);
                    for (int k = 0; k < 3; ++k) wantSwapped[b * 3 + k] = want[b * 3 + (toLab ? k : 2 - k)];
                }
                ASSERT_EQ(lookup(g.data(), row.data(), out.data(), 256, 1, 0, 0, 1), STATUS_OK);
                ASSERT_EQ(lookup(g.data(), toLab ? swapped.data() : row.data(), outSwapped.data(), 256, 1, 0, 0, 0),
                          STATUS_OK);
                ASSERT_EQ(out, want) << toLab << " " << p << " " << q;
                ASSERT_EQ(outSwapped, wantSwapped) << toLab << " " << p << " " << q;
            }
    }
}

// Every combination of edge values per channel, then random pixels.
TEST(EmulationLookup, CmykToRgb) {
    const Bytes g = test::Random(17 * 17 * 17 * 17 * 3, 11);
    const int values[] = {0, 1, 15, 16, 17, 128, 239, 240, 241, 254, 255};
    Bytes in;
    for (int c : values)
        for (int m : values)
            for (int y : values)
                for (int k : values) in.insert(in.end(), {std::uint8_t(c), std::uint8_t(m), std::uint8_t(y), std::uint8_t(k)});
    const Bytes random = test::Random(4 * 200000, 3);
    in.insert(in.end(), random.begin(), random.end());
    const int n = static_cast<int>(in.size() / 4);
    Bytes out(static_cast<std::size_t>(n) * 3), outBgr(out.size());
    ASSERT_EQ(EmulateCmykToRgb(g.data(), in.data(), out.data(), n, 1, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(EmulateCmykToRgb(g.data(), in.data(), outBgr.data(), n, 1, 0, 0, 0), STATUS_OK);
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
        const int v[4] = {in[4 * i], in[4 * i + 1], in[4 * i + 2], in[4 * i + 3]};
        std::uint8_t want[3];
        RefMean(g, v, 4, 16, want);
        ASSERT_EQ(0, std::memcmp(&out[3 * i], want, 3)) << i;
        ASSERT_EQ(outBgr[3 * i], want[2]) << i;
    }
}

// Padding bytes are skipped and left alone; a null grid or buffer writes
// nothing; no rows need no buffers; in place works.
TEST(EmulationLookup, ContractPaddingAndNullGrid) {
    const Bytes g = test::Random(33 * 33 * 33 * 3, 1);
    const std::uint8_t src[] = {10, 20, 30, 40, 50, 60, 0xEE, 0xEE, 70, 80, 90, 100, 110, 120, 0xEE, 0xEE};
    std::uint8_t dst[14];
    std::memset(dst, 0xCD, sizeof dst);
    ASSERT_EQ(EmulateRgbToLab(g.data(), src, dst, 2, 2, 2, 1, 1), STATUS_OK);
    for (int px = 0; px < 4; ++px) {
        const std::uint8_t* s = src + px / 2 * 8 + px % 2 * 3;
        const int v[3] = {s[0], s[1], s[2]};
        std::uint8_t want[3];
        RefRgbToLab(g, v, want);
        EXPECT_EQ(0, std::memcmp(dst + px / 2 * 7 + px % 2 * 3, want, 3)) << px;
    }
    EXPECT_EQ(dst[6], 0xCD);
    EXPECT_EQ(dst[13], 0xCD);
    std::uint8_t out[3] = {1, 2, 3};
    EXPECT_EQ(EmulateLabToRgb(nullptr, src, out, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(EmulateCmykToRgb(g.data(), nullptr, out, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(EmulateRgbToLab(g.data(), src, nullptr, 1, 1, 0, 0, 1), ERR_INVALID_PARAMETER);
    EXPECT_EQ(EmulateRgbToLab(g.data(), nullptr, nullptr, 1, 0, 0, 0, 1), STATUS_OK);
    std::uint8_t inPlace[3] = {8, 16, 8};
    ASSERT_EQ(EmulateRgbToLab(g.data(), inPlace, inPlace, 1, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(inPlace, &g[((1 * 33 + 2) * 33 + 1) * 3], 3));
}

// The built-in grids hold the Lab kernels' values at the nodes and the ICC
// method's between the built-in press and display profiles.
TEST(EmulationLookup, BuiltinGridsHoldTheReferenceConversions) {
    const std::uint8_t* labToRgb = color::data::EmulationGrids();
    const std::uint8_t* rgbToLab = labToRgb + color::data::kGridSlot33;
    const std::uint8_t* cmykToRgb = labToRgb + 2 * color::data::kGridSlot33;
    const auto node = [](int i, int step) { return static_cast<std::uint8_t>(std::min(i * step, 255)); };
    Bytes nodesRgb, nodesLab, nodesCmyk;
    for (int i = 0; i < 33 * 33 * 33; ++i) {
        nodesRgb.insert(nodesRgb.end(), {node(i / 1089, 8), node(i / 33 % 33, 8), node(i % 33, 8)});
        nodesLab.insert(nodesLab.end(), {node(i / 1089, 8), std::uint8_t(node(i / 33 % 33, 8) - 128),
                                         std::uint8_t(node(i % 33, 8) - 128)});
    }
    for (int i = 0; i < 17 * 17 * 17 * 17; ++i)
        nodesCmyk.insert(nodesCmyk.end(), {node(i / 4913, 16), node(i / 289 % 17, 16), node(i / 17 % 17, 16), node(i % 17, 16)});
    Bytes lab(nodesRgb.size()), rgb(nodesLab.size()), viaIcc(nodesCmyk.size() / 4 * 3);
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
    ASSERT_EQ(Vx_ClrConvert(h, nodesCmyk.data(), viaIcc.data(), 17 * 17 * 17 * 17, 1, 0, 0), STATUS_OK);
    Vx_ClrFree(h);
    EXPECT_EQ(0, std::memcmp(cmykToRgb, viaIcc.data(), viaIcc.size()));
}

}  // namespace
}  // namespace kt
