// Literal scalar reference of the Lab and XYZ formulas, one pixel at a time,
// written the way the formulas read: double precision, single-precision
// constants widened (the `f` literals), truncation toward zero, sums in the
// written order. The production kernels are checked against it.
#pragma once

#include <cmath>
#include <cstdint>

namespace ktref {

struct Rgb {
    std::uint8_t r, g, b;
};
struct Triple {
    std::uint8_t v[3];
};

inline double LabF(double t) { return t > 0.008856 ? std::pow(t, 1.0 / 3.0) : 7.7867 * t + 0.13793103448275862; }

inline Triple StoreLab(double fx, double fy, double fz) {
    const int L = static_cast<int>(116 * fy - 16);
    const int a = static_cast<int>(500 * (fx - fy));
    const int b = static_cast<int>(200 * (fy - fz));
    return {{static_cast<std::uint8_t>(((L & 255) * 255) / 100), static_cast<std::uint8_t>(a & 255),
             static_cast<std::uint8_t>(b & 255)}};
}

// RGB to Lab, as written.
inline Triple RgbToLab(int R, int G, int B) {
    const double r = std::pow(R / 255.0, 2.2222222222222223);
    const double g = std::pow(G / 255.0, 2.2222222222222223);
    const double b = std::pow(B / 255.0, 2.2222222222222223);
    const double X = 0.412453f * r + 0.35758f * g + 0.180423f * b;
    const double Y = 0.212671f * r + 0.71516f * g + 0.072169f * b;
    const double Z = 0.019334f * r + 0.119193f * g + 0.950227f * b;
    const double x = X * 100 / 95.0166f, y = Y * 100 / 100, z = Z * 100 / 108.765f;
    return StoreLab(LabF(x), LabF(y), LabF(z));
}

inline double LabT(double f) {
    double t = f > 0.20689 ? f * f * f : (f - 0.13793103448275862) / 7.7867;
    if (t < 0) t = 0;
    if (t > 1) t = 1;
    return t;
}

inline std::uint8_t Encode(double v, double exponent) {
    if (v < 0) v = 0;
    if (v > 1) v = 1;
    int c = static_cast<int>(std::pow(v, exponent) * 255 + 0.5);
    if (c < 0) c = 0;
    if (c > 255) c = 255;
    return static_cast<std::uint8_t>(c);
}

// Lab to RGB, as written (the inverse white point 0.95, 1, 1.088).
inline Rgb LabToRgb(int l, int a8, int b8) {
    const double L = l / 2.55;
    const int a = static_cast<std::int8_t>(a8), b = static_cast<std::int8_t>(b8);
    const double fy = (L + 16) / 116;
    const double fx = a / 500.0 + fy;
    const double fz = fy - b / 200.0;
    const double X = LabT(fx) * 0.95, Y = LabT(fy), Z = LabT(fz) * 1.088;
    const double R = 3.240479f * X - 1.53715f * Y - 0.498535f * Z;
    const double G = -0.969256f * X + 1.875992f * Y + 0.041556f * Z;
    const double Bl = 0.055648f * X - 0.204043f * Y + 1.057311f * Z;
    return {Encode(R, 0.45), Encode(G, 0.45), Encode(Bl, 0.45)};
}

// The same with a table's white point (X = t(fx) x white / 100, ...),
// matrix (rows R, G, B) and encoding power.
inline Rgb LabToRgbWith(int l, int a8, int b8, const double w[3], const double m[9], double exponent) {
    const double L = l / 2.55;
    const int a = static_cast<std::int8_t>(a8), b = static_cast<std::int8_t>(b8);
    const double fy = (L + 16) / 116;
    const double fx = a / 500.0 + fy;
    const double fz = fy - b / 200.0;
    const double X = LabT(fx) * (w[0] / 100), Y = LabT(fy) * (w[1] / 100), Z = LabT(fz) * (w[2] / 100);
    const double R = m[0] * X + m[1] * Y + m[2] * Z;
    const double G = m[3] * X + m[4] * Y + m[5] * Z;
    const double Bl = m[6] * X + m[7] * Y + m[8] * Z;
    return {Encode(R, exponent), Encode(G, exponent), Encode(Bl, exponent)};
}

// RGB to XYZ: each red weight stands in its own row, as written.
inline Triple RgbToXyz(int R, int G, int B) {
    const double r = R, g = G, b = B;
    return {{static_cast<std::uint8_t>(static_cast<int>(0.63267 * r + 0.228457 * g + 0.0 * b)),
             static_cast<std::uint8_t>(static_cast<int>(0.204556 * r + 0.737352 * g + 0.00951424 * b)),
             static_cast<std::uint8_t>(static_cast<int>(0.126995 * r + 0.0341908 * g + 0.815696 * b))}};
}

inline std::uint8_t Limit(int v) { return static_cast<std::uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

inline Rgb XyzToRgb(int X8, int Y8, int Z8) {
    const double X = X8, Y = Y8, Z = Z8;
    return {Limit(static_cast<int>(1.75526 * X - 0.544134 * Y + 0.00634681 * Z)),
            Limit(static_cast<int>(-0.483679 * X + 1.50688 * Y - 0.0175762 * Z)),
            Limit(static_cast<int>(-0.253 * X + 0.0215528 * Y + 1.2257 * Z))};
}

}  // namespace ktref
