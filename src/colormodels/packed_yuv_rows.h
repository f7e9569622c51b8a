// Packed 4:2:2 YUV (two pixels share U and V): the plain rows, which every
// instruction set's rows must match.
#pragma once

#include "colormodels/kernel_rows.h"
#include "colormodels/packed_yuv_math.h"

namespace kt::color::packed {

constexpr int kPairPixels = 2;

// Byte positions of Y0, U, Y1, V inside a 4-byte group.
struct Layout422 {
    int y0, u, y1, v;
};
constexpr Layout422 kYuyv{0, 1, 2, 3};
constexpr Layout422 kUyvy{1, 0, 3, 2};

// Pairs of pixels go through the lane loops: six RGB bytes in, four packed
// bytes out. The layout is a template argument, so that each byte order is
// a row of its own (KT_ORDERED_ROWS(RgbTo422Row<kYuyv>)).
template <Layout422 at, class O>
KT_ROW_INLINE void RgbTo422Row(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<6, 4>(s, d, width / kPairPixels, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int r0 = in[O::r][i], g0 = in[O::g][i], b0 = in[O::b][i];
            const int r1 = in[3 + O::r][i], g1 = in[3 + O::g][i], b1 = in[3 + O::b][i];
            out[at.y0][i] = yuv::Luma(r0, g0, b0);
            out[at.y1][i] = yuv::Luma(r1, g1, b1);
            out[at.u][i] = ((yuv::ChromaU(r0, g0, b0) & 255) + (yuv::ChromaU(r1, g1, b1) & 255)) >> 1;
            out[at.v][i] = ((yuv::ChromaV(r0, g0, b0) & 255) + (yuv::ChromaV(r1, g1, b1) & 255)) >> 1;
        }
    });
}

template <Layout422 at, class O>
KT_ROW_INLINE void Yuv422ToRgbRow(O, const std::uint8_t* s, std::uint8_t* d, int width) noexcept {
    rows::Chunked<4, 6>(s, d, width / kPairPixels, [](const rows::Lanes* in, rows::Lanes* out) KT_LAMBDA_INLINE {
        for (int i = 0; i < rows::kChunk; ++i) {
            const int u = in[at.u][i], v = in[at.v][i];
            yuv::ToRgbLanes(in[at.y0][i], u, v, out[O::r][i], out[O::g][i], out[O::b][i]);
            yuv::ToRgbLanes(in[at.y1][i], u, v, out[3 + O::r][i], out[3 + O::g][i], out[3 + O::b][i]);
        }
    });
}

}  // namespace kt::color::packed
