// The kernel tests' one case table: every kernel with its reference per
// pixel group and its exhaustive inputs, and the instruction-set levels the
// cases run at (every level this processor has, through the cap).
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "colormodels/cpu.h"
#include "colormodels/emulation_lookup.h"
#include "colormodels/kernels.h"
#include "colormodels/lab_tables.h"
#include "colormodels/reference/lab_xyz_reference.h"
#include "colormodels/reference/reference_rgb_family.h"
#include "support/support.h"

namespace kt::test {

inline const char* Name(color::Isa isa) {
    static const char* const names[] = {"plain", "avx2", "avx512"};
    return names[static_cast<int>(isa)];
}

// The levels this processor runs, plain first.
inline std::vector<color::Isa> Levels() {
    std::vector<color::Isa> all;
    for (int l = 0; l <= static_cast<int>(color::CpuIsa()); ++l) all.push_back(static_cast<color::Isa>(l));
    return all;
}

// Caps the kernels' instruction set while it lives.
class IsaCap {
public:
    explicit IsaCap(color::Isa level) : previous_(color::SetIsaCap(level)) {}
    ~IsaCap() { color::SetIsaCap(previous_); }
    IsaCap(const IsaCap&) = delete;
    IsaCap& operator=(const IsaCap&) = delete;

private:
    color::Isa previous_;
};

// Tests run once per level (TEST_P), the kernels capped to it, so that
// every plain row is proven on any processor.
class AtEveryLevel : public ::testing::TestWithParam<color::Isa> {
protected:
    void SetUp() override { previous_ = color::SetIsaCap(GetParam()); }
    void TearDown() override { color::SetIsaCap(previous_); }
    color::Isa previous_{};
};

using ref::Px3;

// An RGB-side pixel in the flag's order (1: R, G, B; 0: B, G, R).
inline Px3 ReadRgb(const std::uint8_t* p, int order) {
    return order ? Px3{p[0], p[1], p[2]} : Px3{p[2], p[1], p[0]};
}
inline void PutRgb(const Px3& c, std::uint8_t* p, int order) {
    p[order ? 0 : 2] = c[0];
    p[1] = c[1];
    p[order ? 2 : 0] = c[2];
}
template <class T>
T AsBytes(const T& t) {
    return t;
}
inline Px3 AsBytes(const ktref::Triple& t) { return {t.v[0], t.v[1], t.v[2]}; }
inline Px3 AsBytes(const ktref::Rgb& p) { return {p.r, p.g, p.b}; }

// The reference of one pixel group: false where the kernel rejects it.
using Ref = bool (*)(const std::uint8_t* in, std::uint8_t* out, int order, int black);

template <auto F>
bool FromRgb(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    const Px3 c = ReadRgb(in, order);
    const auto r = AsBytes(F(c[0], c[1], c[2]));
    std::copy(r.begin(), r.end(), out);
    return true;
}
template <auto F>
bool ToRgb(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    PutRgb(AsBytes(F(in[0], in[1], in[2])), out, order);
    return true;
}
// Only ever called between the two orders: it swaps under either flag.
inline bool Swap(const std::uint8_t* in, std::uint8_t* out, int, int) {
    out[0] = in[2], out[1] = in[1], out[2] = in[0];
    return true;
}
inline bool HlsToRgb(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    Px3 c{};
    if (!ref::HlsToRgb(in[0], in[1], in[2], &c)) return false;
    PutRgb(c, out, order);
    return true;
}
inline bool RgbToCmyk(const std::uint8_t* in, std::uint8_t* out, int order, int black) {
    const Px3 c = ReadRgb(in, order);
    const ref::Px4 k = ref::RgbToCmyk(c[0], c[1], c[2], black);
    std::copy(k.begin(), k.end(), out);
    return true;
}
inline bool CmykToRgb(const std::uint8_t* in, std::uint8_t* out, int order, int black) {
    PutRgb(ref::CmykToRgb(in[0], in[1], in[2], in[3], black), out, order);
    return true;
}
inline bool Rgb444ToRgb(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    PutRgb(ref::Rgb444ToRgb(in[0], in[1]), out, order);
    return true;
}

// Packed YUV groups: per pixel where its luma lies, per chroma sample where
// its U and V lie and how many pixels share it.
struct Packed {
    int pixels, share;
    std::array<int, 8> luma;
    std::array<int, 2> u, v;
};
constexpr Packed kYuyv{2, 2, {0, 2}, {1}, {3}};
constexpr Packed kUyvy{2, 2, {1, 3}, {0}, {2}};
constexpr Packed k411{8, 4, {1, 3, 5, 7, 8, 9, 10, 11}, {0, 4}, {2, 6}};

template <const Packed& L>
bool ToPacked(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    for (int q = 0; q < L.pixels / L.share; ++q) {
        int su = 0, sv = 0;
        for (int k = 0; k < L.share; ++k) {
            const int p = q * L.share + k;
            const Px3 c = ReadRgb(in + 3 * p, order);
            const ref::YuvSample s = ref::PackedFromRgb(c[0], c[1], c[2]);
            out[L.luma[p]] = static_cast<std::uint8_t>(s.y);
            su += s.u & 255;
            sv += s.v & 255;
        }
        out[L.u[q]] = static_cast<std::uint8_t>(su / L.share);
        out[L.v[q]] = static_cast<std::uint8_t>(sv / L.share);
    }
    return true;
}
template <const Packed& L>
bool FromPacked(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    for (int p = 0; p < L.pixels; ++p) {
        const int q = p / L.share;
        PutRgb(ref::PackedToRgb(in[L.luma[p]], in[L.u[q]], in[L.v[q]]), out + 3 * p, order);
    }
    return true;
}

// The handle's Lab tables as kernels: RGB to Lab for the creation white
// point, through the rows that check the range of t (the path of tables
// that do not bound it; the formula kernel takes the other), and Lab to RGB
// for it and for the second one (Which 0 and 1).
inline KtStatus RgbToLabByTable(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad,
                                int dstPad, int, int order) noexcept {
    static const ::RgbToLabTable* const table = [] {
        auto* t = new ::RgbToLabTable;
        color::SetRgbToLabTableHeader(t, color::kInitWhitePoint, color::kDefaultLabRanges, color::kRgbToXyzMatrix);
        color::FillRgbToLabTable(t, 45);
        t->engine.bounded = false;
        return t;
    }();
    return color::RgbToLabThroughTable(table, src, dst, width, height, srcPad, dstPad, order);
}
constexpr const double* kTableWhite[2] = {color::kInitWhitePoint, color::kSetParamsWhitePoint};
constexpr const double* kTableMatrix[2] = {color::kXyzToRgbMatrix, color::kSetParamsMatrix};
template <int Which>
KtStatus LabTableToRgb(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad, int dstPad,
                       int, int order) noexcept {
    static const LabTable* const table = [] {
        auto* t = new LabTable;
        color::SetLabTableHeader(t, kTableWhite[Which], color::kDefaultLabRanges, kTableMatrix[Which]);
        color::FillLabTable(t, 45);
        return t;
    }();
    return color::LabToRgbThroughTable(table, src, dst, width, height, srcPad, dstPad, order);
}
template <int Which>
bool LabTableRef(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    PutRgb(AsBytes(ktref::LabToRgbWith(in[0], in[1], in[2], kTableWhite[Which], kTableMatrix[Which], 0.45)), out,
           order);
    return true;
}

// The grid lookups as kernels over one random grid per size (33 nodes per
// axis for Lab, 17 for CMYK).
inline const std::uint8_t* RandomGrid(int nodes) {
    static const Bytes g33 = Random(33 * 33 * 33 * 3, 99), g17 = Random(17 * 17 * 17 * 17 * 3, 11);
    return nodes == 33 ? g33.data() : g17.data();
}
template <auto Lookup, int Nodes>
KtStatus OnGrid(const std::uint8_t* src, std::uint8_t* dst, int width, int height, int srcPad, int dstPad, int,
                int order) noexcept {
    return Lookup(RandomGrid(Nodes), src, dst, width, height, srcPad, dstPad, order);
}
// Node n of an axis of N nodes stands for n x step, the last one for 255.
// The entry of the upper or lower corner around v (n axes).
inline const std::uint8_t* Corner(int nodes, const int* v, int n, bool upper) {
    const int step = nodes == 33 ? 8 : 16;
    std::size_t at = 0;
    for (int i = 0; i < n; ++i)
        at = at * nodes + (upper ? (std::min((v[i] + step - 1) / step * step, 255) + step - 1) / step : v[i] / step);
    return RandomGrid(nodes) + at * 3;
}
// RGB to Lab: a node only where R and G are multiples of 8 and B equals R;
// a and b are signed means, truncated toward zero.
inline bool GridRgbToLab(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    const Px3 c = ReadRgb(in, order);
    const int v[3] = {c[0], c[1], c[2]};
    const std::uint8_t *u = Corner(33, v, 3, true), *l = Corner(33, v, 3, false);
    if (v[0] % 8 == 0 && v[1] % 8 == 0 && v[2] == v[0]) return std::copy_n(l, 3, out), true;
    out[0] = static_cast<std::uint8_t>((u[0] + l[0]) / 2);
    for (int k = 1; k < 3; ++k)
        out[k] = static_cast<std::uint8_t>((static_cast<std::int8_t>(u[k]) + static_cast<std::int8_t>(l[k])) / 2);
    return true;
}
// Lab (a, b offset by 128) and CMYK to RGB: the upper corner where every
// value is a node, else unsigned means.
template <int N>
bool GridMean(const std::uint8_t* in, std::uint8_t* out, int order, int) {
    constexpr int nodes = N == 3 ? 33 : 17, step = N == 3 ? 8 : 16;
    int v[N];
    for (int k = 0; k < N; ++k) v[k] = N == 3 && k > 0 ? in[k] ^ 128 : in[k];
    const std::uint8_t *u = Corner(nodes, v, N, true), *l = Corner(nodes, v, N, false);
    const bool onNodes = std::all_of(v, v + N, [](int x) { return x % step == 0 || x == 255; });
    Px3 c;
    for (int k = 0; k < 3; ++k) c[k] = onNodes ? u[k] : static_cast<std::uint8_t>((u[k] + l[k]) / 2);
    PutRgb(c, out, order);
    return true;
}

// What the exhaustive test feeds a case.
enum class Inputs {
    triples,  // every 24-bit value once, as one byte stream, then grey and YIQ rows
    codes,    // every 16-bit value once
    yuyv,     // every (Y0, U, V), Y1 the complement of Y0
    uyvy,     // the same in the UYVY layout
    cmyk,     // every (C, M, Y), the key hashed from them
};

struct Case {
    const char* name;
    color::Kernel kernel;
    int srcBytes, dstBytes;  // per group
    int group;               // pixels per group
    Ref ref;
    Inputs inputs;
    int black = 0;
};

// Black values: 175 neither removes nor restores; 350 removes just above
// where the removal truncates to 0 everywhere (only from black), 1000 at
// full strength, 65536 beyond an int and -1000 with a negative strength;
// 600 restores, 1000 at full strength, -5000 from a negative value.
inline const Case kCases[] = {
    {"rgb_bgr", color::RgbToRgbCopy, 3, 3, 1, Swap, Inputs::triples},
    {"rgb_cmy", color::RgbToCmy, 3, 3, 1, FromRgb<ref::RgbToCmy>, Inputs::triples},
    {"cmy_rgb", color::CmyToRgb, 3, 3, 1, ToRgb<ref::CmyToRgb>, Inputs::triples},
    {"rgb_hsv", color::RgbToHsv, 3, 3, 1, FromRgb<ref::RgbToHsv>, Inputs::triples},
    {"hsv_rgb", color::HsvToRgb, 3, 3, 1, ToRgb<ref::HsvToRgb>, Inputs::triples},
    {"rgb_hls", color::RgbToHls, 3, 3, 1, FromRgb<ref::RgbToHls>, Inputs::triples},
    {"hls_rgb", color::HlsToRgb, 3, 3, 1, HlsToRgb, Inputs::triples},
    {"rgb_hsi", color::RgbToHsi, 3, 3, 1, FromRgb<ref::RgbToHsi>, Inputs::triples},
    {"hsi_rgb", color::HsiToRgb, 3, 3, 1, ToRgb<ref::HsiToRgb>, Inputs::triples},
    {"rgb_yuv", color::RgbToYuv, 3, 3, 1, FromRgb<ref::RgbToYuv>, Inputs::triples},
    {"yuv_rgb", color::YuvToRgb, 3, 3, 1, ToRgb<ref::YuvToRgb>, Inputs::triples},
    {"rgb_yiq", color::RgbToYiq, 3, 3, 1, FromRgb<ref::RgbToYiq>, Inputs::triples},
    {"yiq_rgb", color::YiqToRgb, 3, 3, 1, ToRgb<ref::YiqToRgb>, Inputs::triples},
    {"rgb_ycbcr", color::RgbToYcbcr, 3, 3, 1, FromRgb<ref::RgbToYcbcr>, Inputs::triples},
    {"ycbcr_rgb", color::YcbcrToRgb, 3, 3, 1, ToRgb<ref::YcbcrToRgb>, Inputs::triples},
    {"rgb_lab", color::RgbToLab, 3, 3, 1, FromRgb<ktref::RgbToLab>, Inputs::triples},
    {"lab_rgb", color::LabToRgb, 3, 3, 1, ToRgb<ktref::LabToRgb>, Inputs::triples},
    {"rgb_lab_table", RgbToLabByTable, 3, 3, 1, FromRgb<ktref::RgbToLab>, Inputs::triples},
    {"lab_table1_rgb", LabTableToRgb<0>, 3, 3, 1, LabTableRef<0>, Inputs::triples},
    {"lab_table2_rgb", LabTableToRgb<1>, 3, 3, 1, LabTableRef<1>, Inputs::triples},
    {"rgb_xyz", color::RgbToXyz, 3, 3, 1, FromRgb<ktref::RgbToXyz>, Inputs::triples},
    {"xyz_rgb", color::XyzToRgb, 3, 3, 1, ToRgb<ktref::XyzToRgb>, Inputs::triples},
    {"rgb_rgb444", color::RgbToRgb444, 3, 2, 1, FromRgb<ref::RgbToRgb444>, Inputs::triples},
    {"rgb444_rgb", color::Rgb444ToRgb, 2, 3, 1, Rgb444ToRgb, Inputs::codes},
    {"rgb_yuyv", color::RgbToYuyv, 6, 4, 2, ToPacked<kYuyv>, Inputs::triples},
    {"yuyv_rgb", color::YuyvToRgb, 4, 6, 2, FromPacked<kYuyv>, Inputs::yuyv},
    {"rgb_uyvy", color::RgbToUyvy, 6, 4, 2, ToPacked<kUyvy>, Inputs::triples},
    {"uyvy_rgb", color::UyvyToRgb, 4, 6, 2, FromPacked<kUyvy>, Inputs::uyvy},
    {"rgb_yuv411", color::RgbToYuv411, 24, 12, 8, ToPacked<k411>, Inputs::triples},
    {"yuv411_rgb", color::Yuv411ToRgb, 12, 24, 8, FromPacked<k411>, Inputs::triples},
    {"rgb_cmyk175", color::RgbToCmyk, 3, 4, 1, RgbToCmyk, Inputs::triples, 175},
    {"rgb_cmyk350", color::RgbToCmyk, 3, 4, 1, RgbToCmyk, Inputs::triples, 350},
    {"rgb_cmyk1000", color::RgbToCmyk, 3, 4, 1, RgbToCmyk, Inputs::triples, 1000},
    {"rgb_cmyk65536", color::RgbToCmyk, 3, 4, 1, RgbToCmyk, Inputs::triples, 65536},
    {"rgb_cmykm1000", color::RgbToCmyk, 3, 4, 1, RgbToCmyk, Inputs::triples, -1000},
    {"cmyk175_rgb", color::CmykToRgb, 4, 3, 1, CmykToRgb, Inputs::cmyk, 175},
    {"cmyk600_rgb", color::CmykToRgb, 4, 3, 1, CmykToRgb, Inputs::cmyk, 600},
    {"cmyk1000_rgb", color::CmykToRgb, 4, 3, 1, CmykToRgb, Inputs::cmyk, 1000},
    {"cmykm5000_rgb", color::CmykToRgb, 4, 3, 1, CmykToRgb, Inputs::cmyk, -5000},
    {"grid_rgb_lab", OnGrid<color::EmulateRgbToLab, 33>, 3, 3, 1, GridRgbToLab, Inputs::triples},
    {"grid_lab_rgb", OnGrid<color::EmulateLabToRgb, 33>, 3, 3, 1, GridMean<3>, Inputs::triples},
    {"grid_cmyk_rgb", OnGrid<color::EmulateCmykToRgb, 17>, 4, 3, 1, GridMean<4>, Inputs::cmyk},
};
inline constexpr int kCaseCount = sizeof kCases / sizeof kCases[0];

// Instantiates a suite of TEST_P<int> over the case indices, named by case.
#define KT_FOR_EVERY_CASE(Suite)                                                     \
    INSTANTIATE_TEST_SUITE_P(Kernels, Suite, ::testing::Range(0, ::kt::test::kCaseCount), \
                             [](const auto& info) { return std::string(::kt::test::kCases[info.param].name); })

}  // namespace kt::test
