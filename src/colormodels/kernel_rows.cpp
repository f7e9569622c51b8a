#include "colormodels/kernel_rows.h"

#include "colormodels/cpu.h"

namespace kt::color::rows {

const OrderedRows& Pick(const IsaRows& rows) noexcept {
    switch (CpuIsa()) {
        case Isa::avx512:
            if (rows.avx512) return *rows.avx512;
            [[fallthrough]];
        case Isa::avx2:
            if (rows.avx2) return *rows.avx2;
            [[fallthrough]];
        case Isa::plain: break;
    }
    return *rows.plain;
}

KtStatus Run(Shape shape, const IsaRows& rows, const void* ctx, const std::uint8_t* src, std::uint8_t* dst,
             int width, int height, int srcPad, int dstPad, int rgbOrder) noexcept {
    const OrderedRows& picked = Pick(rows);
    const Row row = rgbOrder != 0 ? picked.rgb : picked.bgr;
    return Walk(shape, src, dst, width, height, srcPad, dstPad, rgbOrder,
                [row, ctx](auto, const std::uint8_t* s, std::uint8_t* d, int w) { return row(ctx, s, d, w); });
}

}  // namespace kt::color::rows
