// The library's built-in Lab formulas, restated for the generator so the
// emulation grids can be sampled without building the library. Constants
// marked F are single-precision values widened to double, as the kernels
// use them.
#pragma once

#include <cmath>
#include <cstdint>

namespace gen {

constexpr double F(float v) { return double(v); }

struct Lab8 {
    std::uint8_t l;
    std::int8_t a, b;
};

inline Lab8 RgbToLab(int r8, int g8, int b8) {
    constexpr double kExp = 2.2222222222222223;
    const double r = std::pow(r8 / 255.0, kExp), g = std::pow(g8 / 255.0, kExp), b = std::pow(b8 / 255.0, kExp);
    const double X = F(0.412453f) * r + F(0.35758f) * g + F(0.180423f) * b;
    const double Y = F(0.212671f) * r + F(0.71516f) * g + F(0.072169f) * b;
    const double Z = F(0.019334f) * r + F(0.119193f) * g + F(0.950227f) * b;
    const double x = X * 100.0 / F(95.0166f), y = Y * 100.0 / 100.0, z = Z * 100.0 / F(108.765f);
    auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.7867 * t + 0.13793103448275862; };
    const int L = int(116.0 * f(y) - 16.0);
    const int a = int(500.0 * (f(x) - f(y)));
    const int bb = int(200.0 * (f(y) - f(z)));
    Lab8 out;
    out.l = std::uint8_t(((L & 255) * 255) / 100);
    out.a = std::int8_t(std::uint8_t(a & 255));
    out.b = std::int8_t(std::uint8_t(bb & 255));
    return out;
}

inline void LabToRgb(std::uint8_t l8, std::int8_t a8, std::int8_t b8, std::uint8_t rgb[3]) {
    const double L = l8 / 2.55, a = a8, b = b8;
    const double fy = (L + 16.0) / 116.0, fx = a / 500.0 + fy, fz = fy - b / 200.0;
    auto t = [](double f) {
        double v = f > 0.20689 ? f * f * f : (f - 0.13793103448275862) / 7.7867;
        return v < 0 ? 0.0 : (v > 1 ? 1.0 : v);
    };
    const double X = t(fx) * 0.95, Y = t(fy), Z = t(fz) * 1.088;
    const double lin[3] = {
        F(3.240479f) * X - F(1.53715f) * Y - F(0.498535f) * Z,
        -F(0.969256f) * X + F(1.875992f) * Y + F(0.041556f) * Z,
        F(0.055648f) * X - F(0.204043f) * Y + F(1.057311f) * Z,
    };
    for (int i = 0; i < 3; ++i) {
        double v = lin[i] < 0 ? 0.0 : (lin[i] > 1 ? 1.0 : lin[i]);
        int c = int(std::pow(v, 0.45) * 255.0 + 0.5);
        rgb[i] = std::uint8_t(c < 0 ? 0 : (c > 255 ? 255 : c));
    }
}

}  // namespace gen
