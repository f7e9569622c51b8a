// Conversions with fuzzed spaces, methods, sizes and paddings, through
// Vx_ClrConvertDirect or a handle, into a buffer or a bitmap, from buffers
// that end where an unmapped page begins: touching a byte past the probed
// extent faults.
#include <iterator>
#include <optional>

#include "fuzz_input.h"
#include "support/support.h"

namespace {
using kt::test::MappedPages;
constexpr int kSpaces[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 128, 144, 16, 143, -1};
constexpr int kBits[] = {24, 24, 32, 24, 24, 24, 24, 24, 24, 16, 9, 32, 24, 12, 16, 24, 24, 16, 24, 24, 24};
constexpr std::uint32_t kMethods[] = {METHOD_BUILTIN, METHOD_ICC, METHOD_BUILTIN_EMULATION, METHOD_AUTO, 0, 3};

// `bytes` bytes ending at an unmapped page.
struct Buffer {
    MappedPages pages;
    std::uint8_t* at;
    explicit Buffer(std::size_t bytes)
        : pages(bytes / 4096 + 1, MappedPages::Access::readWrite), at(pages.end() - bytes) {}
};

std::size_t Extent(int bits, int width, int height, int pad, std::uint32_t shortBy) {
    if (width < 1 || height < 1) return 1;
    const std::size_t n = ((std::size_t(width) * bits + 7) / 8 + (pad > 0 ? pad : 0)) * std::size_t(height);
    return n > shortBy ? n - shortBy : 1;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input in{data, size};
    const std::uint32_t s = in.Take(1) % std::size(kSpaces), d = in.Take(1) % std::size(kSpaces);
    const std::uint32_t how = in.Take(1), method = kMethods[(how >> 2) % std::size(kMethods)];
    const int width = int(in.Take(1)) - 2, height = int(in.Take(1) % 64) - 2;
    const int srcPad = std::int8_t(in.Take(1)), dstPad = std::int8_t(in.Take(1));
    const std::uint32_t shortBy = in.Take(1) & 3, options = in.Take(1), value = in.Take(2);
    Buffer src(Extent(kBits[s], width, height, srcPad, shortBy & 1));
    std::optional<Buffer> dst;
    std::uint8_t* out = src.at;
    if (!(how & 2)) out = dst.emplace(Extent(kBits[d], width, height, dstPad, shortBy & 2)).at;
    for (std::uint8_t* p = src.at; p < src.pages.end(); ++p) *p = in.size ? in.data[(p - src.at) % in.size] : 0;

    ConversionParams params{};
    params.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    params.method = params.prepareMethods = method;
    params.emulationMethod = method == METHOD_BUILTIN_EMULATION ? method : 0;
    CmykOptions cmyk{KTCLR_SIZEOF_CMYK_OPTIONS, value & 0xFF, 2};
    LabOptions lab{KTCLR_SIZEOF_LAB_OPTIONS, 0x3F, {}};
    for (int i = 0; i < 6; ++i) lab.ranges[i] = std::int32_t(value) - 32768 + i * std::int32_t(options);
    IccOptions icc{{value, value >> 4, value >> 8, options, 0}};
    if (options & 1) params.cmykOptions = &cmyk, params.labOptions = &lab, params.iccOptions = &icc;
    BitmapHandle bitmap{};
    Vx_BmpInit(&bitmap, KTCLR_SIZEOF_BITMAP_HANDLE);
    const bool toBitmap = options & 4;  // into a 24-bit bitmap instead of `out`
    constexpr std::uint32_t kBitmap = KTCLR_SIZEOF_BITMAP_HANDLE;
    ClrHandle* handle = nullptr;
    if (how & 1) {  // no handle
        toBitmap ? Vx_ClrConvertDirectToBitmap(kSpaces[s], kSpaces[d], src.at, &bitmap, kBitmap, width, height, srcPad, dstPad)
                 : Vx_ClrConvertDirect(kSpaces[s], kSpaces[d], src.at, out, width, height, srcPad, dstPad);
    } else if (Vx_ClrInit(&handle, kSpaces[s], kSpaces[d], &params) == STATUS_OK) {
        if (options & 2) {  // then changed: method, ICC options, CMYK, YUV (quirk: gated on cmykOptions), Lab
            params.prepareMethods = (options >> 2) & 0x75;
            params.method = kMethods[value % std::size(kMethods)];
            Vx_ClrSetConversionParams(handle, &params);
        }
        toBitmap ? Vx_ClrConvertToBitmap(handle, src.at, &bitmap, kBitmap, width, height, srcPad, dstPad)
                 : Vx_ClrConvert(handle, src.at, out, width, height, srcPad, dstPad);
        Vx_ClrFree(handle);
    }
    Vx_BmpFree(&bitmap);
    return 0;
}
