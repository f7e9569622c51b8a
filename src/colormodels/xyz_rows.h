// XYZ as bytes: the plain rows, which every instruction set's rows must
// match.
#pragma once

#include "colormodels/kernel_rows.h"

namespace kt::color::xyz {

// The XYZ formulas are sums of per-channel products in the written order;
// rows of the weights: output channel, columns: input channel. Each chunk of
// pixels goes through plain loops the compiler vectorizes, with the same
// double products and sums as the formula.
// X = 0.63267 R + 0.228457 G + 0.0 B, Y = 0.204556 R + 0.737352 G +
// 0.00951424 B, Z = 0.126995 R + 0.0341908 G + 0.815696 B: each red weight
// stands in its own row, as the formula is written.
constexpr double kToXyz[9] = {0.63267, 0.228457, 0.0, 0.204556, 0.737352, 0.00951424, 0.126995, 0.0341908, 0.815696};
constexpr double kFromXyz[9] = {1.75526, -0.544134, 0.00634681, -0.483679, 1.50688, -0.0175762,
                                -0.253,  0.0215528, 1.2257};
constexpr int kMaxByte = 255;

// in/out lanes hold the three bytes in memory order of each side.
template <bool ToXyzSide, class O>
KT_ROW_INLINE void XyzRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    constexpr const double* w = ToXyzSide ? kToXyz : kFromXyz;
    rows::Chunked<3, 3>(s, d, width, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        // The input channels in formula order: R, G, B or X, Y, Z.
        constexpr int a = ToXyzSide ? O::r : 0, b = ToXyzSide ? O::g : 1, c = ToXyzSide ? O::b : 2;
        for (int row = 0; row < 3; ++row) {
            const int to = ToXyzSide ? row : (row == 0 ? O::r : row == 1 ? O::g : O::b);
            for (int i = 0; i < rows::kChunk; ++i) {
                const double p = w[3 * row] * static_cast<double>(in[a][i]);
                const double q = w[3 * row + 1] * static_cast<double>(in[b][i]);
                const double r = w[3 * row + 2] * static_cast<double>(in[c][i]);
                const int v = static_cast<int>((p + q) + r);
                out[to][i] = ToXyzSide ? v : (v < 0 ? 0 : (v > kMaxByte ? kMaxByte : v));
            }
        }
    });
}

template <class O>
KT_ROW_INLINE void ToXyzRow(O o, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    XyzRow<true>(o, s, d, width);
}
template <class O>
KT_ROW_INLINE void FromXyzRow(O o, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    XyzRow<false>(o, s, d, width);
}

}  // namespace kt::color::xyz
