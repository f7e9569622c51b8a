// Lab to RGB rows in lane loops, the plain rows and the template of every
// instruction set's rows: the formula's doubles (per-byte inputs from
// exact tables, the same products and sums), the codes from the exact
// decision thresholds of the gamma encoding.
#pragma once

#include <bit>
#include <cstdint>

#include "colormodels/lab_engine.h"
#include "colormodels/lab_lanes.h"

namespace kt::color::lab_inverse {

constexpr double kCubeFrom = 0.20689;  // t = f^3 above it
constexpr double kOffset = 0.13793103448275862;
constexpr double kSlope = 7.7867;

// InverseCompand without branches.
KT_ROW_INLINE double CompandLane(double f) {
    const double t = lanes::Select(f > kCubeFrom, f * f * f, (f - kOffset) / kSlope);
    const double low = lanes::Select(t < 0.0, 0.0, t);
    return lanes::Select(low > 1.0, 1.0, low);
}

template <int RIndex>
KT_ROW_INLINE void InverseChunks(const InverseLab& inv, const GammaEncoder& enc, const std::uint8_t* src,
                                 std::uint8_t* dst, int width) {
    constexpr int BIndex = 2 - RIndex;
    constexpr int kChunk = rows::kChunk;
    const InverseInputs& in = InverseLabInputs();
    const std::uint64_t* lane = enc.lane;
    const double* fyOf = in.fy;
    const double* aTermOf = in.aTerm;
    const double* bTermOf = in.bTerm;
    const double m0 = inv.matrix[0], m1 = inv.matrix[1], m2 = inv.matrix[2], m3 = inv.matrix[3],
                 m4 = inv.matrix[4], m5 = inv.matrix[5], m6 = inv.matrix[6], m7 = inv.matrix[7],
                 m8 = inv.matrix[8];
    const double kx = inv.factor[0], ky = inv.factor[1], kz = inv.factor[2];
    rows::Chunked<3, 3>(src, dst, width, [&](const rows::Lanes* lab, rows::Lanes* out) KT_LAMBDA_INLINE {
        alignas(64) double linear[3][kChunk];
        for (int i = 0; i < kChunk; ++i) {
            const double fy = fyOf[lab[0][i]];
            const double fx = aTermOf[lab[1][i]] + fy;
            const double fz = fy - bTermOf[lab[2][i]];
            const double X = CompandLane(fx) * kx, Y = CompandLane(fy) * ky, Z = CompandLane(fz) * kz;
            linear[0][i] = (m0 * X + m1 * Y) + m2 * Z;
            linear[1][i] = (m3 * X + m4 * Y) + m5 * Z;
            linear[2][i] = (m6 * X + m7 * Y) + m8 * Z;
        }
        constexpr int to[3] = {RIndex, 1, BIndex};
        for (int c = 0; c < 3; ++c)
            for (int i = 0; i < kChunk; ++i) out[to[c]][i] = GammaEncoder::EncodeLane(lane, linear[c][i]);
    });
}

// The row of the RGB order O.
template <class O>
KT_ROW_INLINE void InverseRow(O, const InverseLanes& c, const std::uint8_t* src, std::uint8_t* dst, int width) {
    InverseChunks<O::r>(*c.inverse, *c.encoder, src, dst, width);
}

}  // namespace kt::color::lab_inverse
