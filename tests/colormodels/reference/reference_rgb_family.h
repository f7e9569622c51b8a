// Reference formulas of the RGB-family and luminance-chrominance spaces,
// one pixel at a time, written straight from their definitions: doubles
// throughout, no tables, no shortcuts. The production kernels must agree
// with them byte for byte.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace kt::ref {

using Px3 = std::array<std::uint8_t, 3>;
using Px4 = std::array<std::uint8_t, 4>;

// Conversion of a double toward zero as the processor performs it
// (out-of-range and not-a-number give INT32_MIN).
inline int Trunc(double x) { return _mm_cvttsd_si32(_mm_set_sd(x)); }
inline double Clamp(double x, double lo, double hi) { return std::min(std::max(x, lo), hi); }
inline int ClampI(int x, int lo, int hi) { return std::min(std::max(x, lo), hi); }
inline std::uint8_t B(int v) { return static_cast<std::uint8_t>(v); }

inline int MulDiv(int a, int b, int c) {
    const long long p = static_cast<long long>(a) * b;
    const double q = static_cast<double>(p) / c;
    return static_cast<int>(q < 0 ? -std::floor(-q + 0.5) : std::floor(q + 0.5));
}

// ---- CMY, 4-bit RGB ----
inline Px3 RgbToCmy(int r, int g, int b) { return {B(255 - r), B(255 - g), B(255 - b)}; }
inline Px3 CmyToRgb(int c, int m, int y) { return {B(255 - c), B(255 - m), B(255 - y)}; }
inline std::array<std::uint8_t, 2> RgbToRgb444(int r, int g, int b) { return {B(r >> 4), B((g & 0xF0) | (b >> 4))}; }
inline Px3 Rgb444ToRgb(int b0, int b1) { return {B((b0 * 16) & 255), B(b1 & 0xF0), B((b1 * 16) & 255)}; }

// ---- CMYK ----
inline Px4 RgbToCmyk(int r, int g, int b, int p) {
    const double f = p / 1000.0;
    const int c = 255 - r, m = 255 - g, y = 255 - b;
    const int k = std::min({c, m, y});
    const int s = std::min({r, g, b}) + k;
    const int u = Trunc(std::pow(s / 255.0, 2) * (k / 255.0) * std::pow(f, 5) * 255);
    // The subtraction wraps like the 32-bit machine arithmetic it stands
    // for (u is INT_MIN once the product leaves the int range).
    auto sub = [](int a, int b) { return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b)); };
    return {B(sub(c, u)), B(sub(m, u)), B(sub(y, u)), B(Trunc(k * f))};
}

inline std::uint16_t RampEntry(int i) { return static_cast<std::uint16_t>(Trunc(std::pow(i / 255.0, 2) * 256)); }

inline Px3 CmykToRgb(int c, int m, int y, int k, int p) {
    const double f = p / 1000.0;
    const int mx = std::max({c, m, y}), mn = std::min({c, m, y});
    const std::uint32_t t = RampEntry(255 - (mx - mn));
    const std::int16_t w = static_cast<std::int16_t>(Trunc(std::pow(f, 4) * 256));
    const std::uint32_t u = ((t * static_cast<std::uint32_t>(k)) >> 8) * static_cast<std::uint32_t>(w);
    const std::uint32_t v = u <= static_cast<std::uint32_t>(255 - mx) ? (u & 255) : static_cast<std::uint32_t>(255 - mx);
    const int e = 255 - static_cast<int>(v);
    return {B((e - c) & 255), B((e - m) & 255), B((e - y) & 255)};
}

// ---- HSV ----
inline Px3 RgbToHsv(int r, int g, int b) {
    const int mx = std::max({r, g, b}), mn = std::min({r, g, b}), d = mx - mn;
    int h = 0, s = 0;
    if (mx != 0) {
        s = MulDiv(d, 255, mx);
        if (s != 0) {
            int hue;
            if (mx == r) hue = MulDiv(g - b, 60, d);
            else if (mx == g) hue = 120 + MulDiv(b - r, 60, d);
            else hue = 240 + MulDiv(r - g, 60, d);
            if (hue < 0) hue += 360;
            h = (hue * 255) / 360;
        }
    }
    return {B(h), B(s), B(mx)};
}

inline Px3 HsvToRgb(int H, int S, int V) {
    if (S == 0) return {B(V), B(V), B(V)};
    const int h = H * 360 < 91800 ? (H * 360) / 255 : 0;
    const int i = h / 60, r = h - 60 * i;
    const int p = V - S * V / 255;
    const int q = V - (S * V * r) / 15300;
    const int t = V - (S * V * (60 - r)) / 15300;
    switch (i) {
        case 0: return {B(V), B(t), B(p)};
        case 1: return {B(q), B(V), B(p)};
        case 2: return {B(p), B(V), B(t)};
        case 3: return {B(p), B(q), B(V)};
        case 4: return {B(t), B(p), B(V)};
        case 5: return {B(V), B(p), B(q)};
        default: return {0, 0, 0};
    }
}

// ---- HLS ----
inline Px3 RgbToHls(int R, int G, int Bl) {
    const int mx = std::max({R, G, Bl}), mn = std::min({R, G, Bl});
    const int sum = mx + mn;
    const int L = ((sum + 1) * 255) / 510;
    if (mx == mn) return {0, B(L), 0};
    const int d = mx - mn;
    const int S = L >= 128 ? (d * 255 + (510 - sum) / 2) / (510 - sum) : (d * 255 + sum / 2) / sum;
    const int h2 = d / 2;
    const int dr = ((mx - R) * 42 + h2) / d, dg = ((mx - G) * 42 + h2) / d, db = ((mx - Bl) * 42 + h2) / d;
    int H;
    if (R == mx) H = db - dg;
    else if (G == mx) H = dr - db + 85;
    else H = dg - dr + 170;
    if (H < 0) H += 255;
    if (H > 255) H -= 255;
    return {B(H), B(L), B(S)};
}

inline int HlsX(int m1, int m2, int h) {
    if (h >= 256) h -= 255;
    int x;
    if (h < 42) x = m1 + ((m2 - m1) * h + 21) / 42;
    else if (h < 127) x = m2;
    else if (h >= 170) x = m1;
    else x = m1 + ((m2 - m1) * (170 - h) + 21) / 42;
    return (x * 255 + 127) / 255;
}

// False for the rejected pixel (S = 0 with a hue).
inline bool HlsToRgb(int H, int L, int S, Px3* out) {
    if (S == 0) {
        if (H != 0) return false;
        *out = {B(L), B(L), B(L)};
        return true;
    }
    const int m2 = L < 128 ? ((S + 255) * L + 127) / 255 : L - (L * S + 127) / 255 + S;
    const int m1 = 2 * L - m2;
    *out = {B(HlsX(m1, m2, H + 85)), B(HlsX(m1, m2, H)), B(HlsX(m1, m2, H - 85))};
    return true;
}

// ---- HSI ----
inline Px3 RgbToHsi(int r8, int g8, int b8) {
    const float R = static_cast<float>(r8), G = static_cast<float>(g8), Bf = static_cast<float>(b8);
    const int I = Trunc((static_cast<double>(R) + G + Bf) / 3);
    const double n = 0.5 * (static_cast<double>(R) - G) + (static_cast<double>(R) - Bf);
    const double d = (static_cast<double>(G) - Bf) * (static_cast<double>(R) - Bf) +
                     (static_cast<double>(R) - G) * (static_cast<double>(R) - G);
    int H = Trunc(std::acos(n / d) * 255 * 0.5);
    if (Bf >= G) H = ~H;
    const double mn = std::min({R, G, Bf});
    const int S = Trunc((1 - mn / I) * 255);
    return {B(I), B(H), B(S)};
}

inline int HsiLimit(int v) { return v > 255 ? 255 : (v < 1 ? 0 : v); }

inline Px3 HsiToRgb(int I8, int H8, int S8) {
    const double h = H8 / 255.0 * 3.1415926535, s = S8 / 255.0, i = I8;
    int R = 0, G = 0, Bl = 0;
    if (0 <= h && h <= 1.0471975511666667) {
        Bl = Trunc((1 - s) * i);
        R = Trunc((1 + s * std::cos(h) / std::cos(1.0471975511666667 - h)) * i);
        G = Trunc(3 * i - (static_cast<std::int16_t>(R) + static_cast<std::int16_t>(Bl)));
    } else if (h <= 2.0943951023333334) {
        const double a2 = h - 2.0943951023333334;
        R = Trunc((1 - s) * i);
        G = Trunc((1 + s * std::cos(a2) / std::cos(3.1415926535 - h)) * i);
        Bl = Trunc(3 * i - (G + R));
    } else if (h <= 6.283185307) {
        const double a3 = h - 1.57079632675;
        G = Trunc((1 - s) * i);
        Bl = Trunc((1 + s * std::cos(a3) / std::cos(2.6179938779166667 - h)) * i);
        R = Trunc(3 * i - (Bl + G));
    }
    return {B(HsiLimit(R)), B(HsiLimit(G)), B(HsiLimit(Bl))};
}

// ---- YUV ----
inline Px3 RgbToYuv(int R, int G, int Bl) {
    const double y = Clamp(0.299 * R + 0.587 * G + 0.114 * Bl, 0, 255);
    const double u = Clamp((0.434 * Bl - 0.146 * R - 0.288 * G + 112) / 223 * 255 + 0.5, 0, 255);
    const double v = Clamp((0.617 * R - 0.517 * G - 0.1 * Bl + 138) / 275 * 255 + 0.5, 0, 255);
    return {B(Trunc(y)), B(Trunc(u)), B(Trunc(v))};
}

inline Px3 YuvToRgb(int Y, int U, int V) {
    const int u = Trunc(-(U / 255.0) * 223), v = Trunc(-(V / 255.0) * 275);
    const int G = Y + ((18940 * v + 12943 * u + 4063336) >> 15);
    const int R = Y + ((29 * u - 37221 * v - 5133250) >> 15);
    const int Bl = Y + ((33 * v - 66883 * u - 7486342) >> 15);
    return {B(ClampI(R, 0, 255)), B(ClampI(G, 0, 255)), B(ClampI(Bl, 0, 255))};
}

// ---- YIQ ----
inline Px3 RgbToYiq(int R, int G, int Bl) {
    const double y = Clamp((0.299 * R + 0.587 * G + 0.114 * Bl) / 263 * 255 + 0.5, 0, 255);
    const double i = Clamp((0.596 * R - 0.274 * G - 0.322 * Bl + 152) / 303 * 255 + 0.5, 0, 255);
    const double q = Clamp((0.212 * R - 0.523 * G + 0.311 * Bl + 134) / 267 * 255 + 0.5, 0, 255);
    return {B(Trunc(y)), B(Trunc(i)), B(Trunc(q))};
}

inline Px3 YiqToRgb(int Y, int I, int Q) {
    const int y = Trunc(Y / 255.0 * 263), i = Trunc(I / 255.0 * 303 - 152), q = Trunc(Q / 255.0 * 267 - 134);
    const double R = Clamp(y + 0.956 * i + 0.621 * q, 0, 255);
    const double G = Clamp(y - 0.272 * i - 0.647 * q, 0, 255);
    const double Bl = Clamp(y - 1.105 * i + 1.702 * q, 0, 255);
    return {B(Trunc(R)), B(Trunc(G)), B(Trunc(Bl))};
}

// ---- YCbCr ----
inline Px3 RgbToYcbcr(int R, int G, int Bl) {
    const double y = Clamp(0.299 * R + 0.587 * G + 0.114 * Bl, 0, 255);
    const double cb = Clamp(-0.16874 * R - 0.33126 * G + 0.5 * Bl, -128, 127);
    const double cr = Clamp(0.5 * R - 0.41869 * G - 0.08131 * Bl, -128, 127);
    return {B(Trunc(y)), B(static_cast<std::int8_t>(Trunc(cb))), B(static_cast<std::int8_t>(Trunc(cr)))};
}

inline Px3 YcbcrToRgb(int Y, int Cb8, int Cr8) {
    const int cb = static_cast<std::int8_t>(Cb8), cr = static_cast<std::int8_t>(Cr8);
    const double R = Clamp(Y + 1.402 * cr, 0, 255);
    const double G = Clamp(Y - 0.3441363 * cb - 0.71413636 * cr, 0, 255);
    const double Bl = Clamp(Y + 1.772 * cb, 0, 255);
    return {B(Trunc(R)), B(Trunc(G)), B(Trunc(Bl))};
}

// ---- packed and planar YUV: one pixel's values, before any averaging ----
struct YuvSample {
    int y, u, v;
};

inline YuvSample PackedFromRgb(int R, int G, int Bl) {
    const double r = R - 0.5, g = G - 0.5, b = Bl - 0.5;
    return {Trunc((263 * r + 516 * g + 100 * b) / 1024 + 16), Trunc((450 * b - 298 * g - 152 * r) / 1024 + 128),
            Trunc((450 * r - 377 * g - 73 * b) / 1024 + 128)};
}

inline Px3 PackedToRgb(int Y, int U, int V) {
    const int R = (1192 * Y + 1634 * V - 227712) / 1024;
    const int G = (1192 * Y - 400 * U - 833 * V + 139264) / 1024;
    const int Bl = (1192 * Y + 2066 * U - 283008) / 1024;
    return {B(ClampI(R, 0, 255)), B(ClampI(G, 0, 255)), B(ClampI(Bl, 0, 255))};
}

}  // namespace kt::ref
