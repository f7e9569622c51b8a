// Choosing a handle's emulation grid: a built-in one by pair, or a custom
// one read from the caller's TIFF file and owned by the handle.
#include "colormodels/emulation.h"

#include "colormodels/builtin_data.h"
#include "colormodels/caller_path.h"
#include "colormodels/emulation_grid_file.h"
#include "platform/alloc.h"
#include "platform/utf16.h"

namespace kt::color {
namespace {

constexpr auto kModule = mem::Module::ktclr;

struct Grid {
    const std::uint8_t* builtin;  // null: the pair uses no grid
    std::uint32_t bytes;          // what a lookup may touch
    std::uint32_t samples;        // samples per pixel of a custom grid file
};

constexpr std::uint32_t kGrid33Bytes = 33 * 33 * 33 * 3;
constexpr std::uint32_t kGrid17Bytes = 17 * 17 * 17 * 17 * 3;

bool IsRgbSide(int space) { return space == CS_RGB || space == CS_BGR; }

Grid GridFor(int src, int dst) {
    const std::uint8_t* grids = data::EmulationGrids();
    if (src == CS_CMYK && IsRgbSide(dst)) return {grids + 2 * data::kGridSlot33, kGrid17Bytes, 4};
    if (IsRgbSide(src) && dst == CS_LAB) return {grids + data::kGridSlot33, kGrid33Bytes, 3};
    if (src == CS_LAB && IsRgbSide(dst)) return {grids, kGrid33Bytes, 3};
    return {nullptr, 0, 0};
}

}  // namespace

KtStatus SelectEmulationTable(ClrHandle* h, int src, int dst, const ConversionParams* p, bool custom) noexcept {
    if (!h) return ERR_INVALID_PARAMETER;
    const Grid grid = GridFor(src, dst);
    if (!custom) {
        if (grid.builtin) h->builtinEmulationTable = grid.builtin;
        return STATUS_OK;
    }
    if (!p) return ERR_INVALID_PARAMETER;
    std::size_t length = 0;
    switch (LookUpPath(p->emulationTablePath, kCallerPathUnits, &length)) {
        case PathState::missing: return ERR_FILE_NOT_FOUND;
        case PathState::noMemory: return ERR_ALLOC;
        case PathState::exists: break;
    }
    if (length > kMaxPathChars) return ERR_FILE_NOT_FOUND;
    text::Utf16Copy(h->emulationTablePath, KTCLR_HANDLE_PATH_UNITS, p->emulationTablePath);
    if (!grid.builtin) return STATUS_OK;

    std::uint8_t* table = nullptr;
    const KtStatus status = ReadGridFile(h->emulationTablePath, grid.samples, grid.bytes, &table);
    if (status != STATUS_OK) return status;
    FreeCustomEmulationTable(h);
    h->customEmulationTable = table;
    return STATUS_OK;
}

void FreeCustomEmulationTable(ClrHandle* h) noexcept {
    if (h->customEmulationTable) KT_FREE(h->customEmulationTable);
    h->customEmulationTable = nullptr;
}

}  // namespace kt::color
