#include "convert/emulation_setup.h"

#include "colormodels/builtin_data.h"
#include "colormodels/emulation_grid_file.h"
#include "colormodels/space_table.h"
#include "convert/caller_path.h"
#include "convert/handle_internal.h"
#include "platform/alloc.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;

struct Grid {
    const std::uint8_t* builtin;  // null: the pair uses no grid
    std::uint32_t bytes;          // what a lookup may touch
    std::uint32_t samples;        // samples per pixel of a custom grid file
};

constexpr std::uint32_t kGrid33Bytes = 33 * 33 * 33 * 3;  // three coordinates
constexpr std::uint32_t kGrid17Bytes = 17 * 17 * 17 * 17 * 3;  // four

// The grid between RGB (either order) and the other side, from its space's row.
Grid GridFor(int src, int dst) {
    const color::SpaceInfo* other = IsRgbSide(dst) ? color::FindSpace(src) : IsRgbSide(src) ? color::FindSpace(dst) : nullptr;
    if (!other) return {nullptr, 0, 0};
    const color::GridRef ref = IsRgbSide(dst) ? other->gridToRgb : other->gridFromRgb;
    if (ref.slot < 0) return {nullptr, 0, 0};
    return {color::data::EmulationGrids() + ref.slot * color::data::kGridSlot33, ref.samples == 4 ? kGrid17Bytes : kGrid33Bytes,
            static_cast<std::uint32_t>(ref.samples)};
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
    bool found = false;
    const KtStatus taken = TakeExistingPath(p->emulationTablePath, h->emulationTablePath, &found);
    if (taken != STATUS_OK) return taken;
    if (!found) return ERR_FILE_NOT_FOUND;
    if (!grid.builtin) return STATUS_OK;

    std::uint8_t* table = nullptr;
    const KtStatus status = color::ReadGridFile(h->emulationTablePath, grid.samples, grid.bytes, &table);
    if (status != STATUS_OK) return status;
    FreeCustomEmulationTable(h);
    h->customEmulationTable = table;
    return STATUS_OK;
}

void FreeCustomEmulationTable(ClrHandle* h) noexcept {
    if (h->customEmulationTable) KT_FREE(h->customEmulationTable);
    h->customEmulationTable = nullptr;
}

}  // namespace kt::convert
