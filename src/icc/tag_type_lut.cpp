// 'mft2' (lut16) and 'mft1' (lut8): matrix, input tables, CLUT and output
// tables. Both keep their two entry counts at bytes 48 and 50 and their
// tables from byte 52; 'mft2' stores those counts big-endian, 'mft1' in
// native (little-endian) order, which is how this library writes and reads
// back its own lut8 tags.
#include <cstring>
#include <initializer_list>
#include <utility>

#include "icc/big_endian.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "ktclr/icc_luts.h"
#include "platform/alloc.h"

namespace kt::icc {
namespace {

constexpr auto kModule = mem::Module::iccprofile;

constexpr std::uint32_t kChannelsAt = 8;
constexpr std::uint32_t kMatrixAt = 12;
constexpr std::uint32_t kMatrixValues = 9;
constexpr std::uint32_t kEntryCountsAt = 48;
constexpr std::uint32_t kTablesAt = 52;
// Table entries beyond which an element could not fit 32 bits.
constexpr std::uint64_t kEntryLimit = UINT32_MAX;

struct LutForm {
    std::uint32_t signature;
    std::uint32_t entryBytes;
    bool bigEndianCounts;
};
constexpr LutForm kLut16{Sig("mft2"), 2, true};
constexpr LutForm kLut8{Sig("mft1"), 1, false};

// Entries of the three tables; any count at or above kEntryLimit stands
// for "too many".
struct TableSizes {
    std::uint64_t input, clut, output;
    std::uint64_t total() const noexcept { return input + clut + output; }
};

TableSizes SizesOf(const ICCLut16& r) noexcept {
    TableSizes s{};
    s.input = std::uint64_t{r.inputEntries} * r.inputChannels;
    s.output = std::uint64_t{r.outputEntries} * r.outputChannels;
    // gridPoints ^ inputChannels, counted exactly (a power of small integers
    // is exact in floating point too) and capped once it is out of reach.
    std::uint64_t clut = 1;
    for (std::uint32_t i = 0; i < r.inputChannels && clut < kEntryLimit; ++i) clut *= r.gridPoints;
    s.clut = clut < kEntryLimit ? clut * r.outputChannels : kEntryLimit;
    return s;
}

// The host-order entry counts of a record of either order.
ICCLut16 HostCounts(const ICCLut16& r, const LutForm& form, bool fileOrder) noexcept {
    ICCLut16 h = r;
    if (fileOrder && form.bigEndianCounts) {
        h.inputEntries = __builtin_bswap16(r.inputEntries);
        h.outputEntries = __builtin_bswap16(r.outputEntries);
    }
    return h;
}

void* CopyTable(const void* from, std::uint64_t entries, const LutForm& form) noexcept {
    const std::size_t bytes = static_cast<std::size_t>(entries * form.entryBytes);
    auto* to = static_cast<std::uint8_t*>(KT_ALLOC(bytes));
    if (!to) return nullptr;
    if (form.entryBytes == 1) {
        if (bytes) std::memcpy(to, from, bytes);
    } else {
        const auto* in = static_cast<const std::uint16_t*>(from);
        for (std::uint64_t i = 0; i < entries; ++i) Store16(to + 2 * i, in[i]);
    }
    return to;
}

void* ReadTable(TagReader& in, std::uint64_t entries, const LutForm& form) noexcept {
    void* to = KT_ALLOC(static_cast<std::size_t>(entries * form.entryBytes));
    if (!to) return nullptr;
    if (form.entryBytes == 1) {
        in.Copy(to, static_cast<std::size_t>(entries));
    } else {
        auto* out = static_cast<std::uint16_t*>(to);
        for (std::uint64_t i = 0; i < entries; ++i) out[i] = in.U16();
    }
    return to;
}

KtStatus CreateLut(const void* host, void* fileOrder, const LutForm& form) noexcept {
    const ICCLut16 in = *static_cast<const ICCLut16*>(host);
    auto* out = static_cast<ICCLut16*>(fileOrder);
    *out = ICCLut16{};
    if (!in.inputTables || !in.clut || !in.outputTables) return ERR_INVALID_PARAMETER;
    const TableSizes sizes = SizesOf(in);
    if (sizes.total() * form.entryBytes > kEntryLimit - kTablesAt) return ERR_INVALID_PARAMETER;
    out->signature = FileOrder32(form.signature);
    out->inputChannels = in.inputChannels;
    out->outputChannels = in.outputChannels;
    out->gridPoints = in.gridPoints;
    for (std::uint32_t i = 0; i < kMatrixValues; ++i)
        out->matrix[i] = static_cast<std::int32_t>(FileOrder32(static_cast<std::uint32_t>(in.matrix[i])));
    out->inputEntries = form.bigEndianCounts ? __builtin_bswap16(in.inputEntries) : in.inputEntries;
    out->outputEntries = form.bigEndianCounts ? __builtin_bswap16(in.outputEntries) : in.outputEntries;
    if (!(out->inputTables = CopyTable(in.inputTables, sizes.input, form))) return ERR_NO_MEMORY;
    if (!(out->clut = CopyTable(in.clut, sizes.clut, form))) return ERR_NO_MEMORY;
    if (!(out->outputTables = CopyTable(in.outputTables, sizes.output, form))) return ERR_NO_MEMORY;
    return STATUS_OK;
}

std::uint64_t LutElementSize(const void* fileOrder, const LutForm& form) noexcept {
    const ICCLut16 h = HostCounts(*static_cast<const ICCLut16*>(fileOrder), form, true);
    return kTablesAt + SizesOf(h).total() * form.entryBytes;
}

void WriteLut(const void* fileOrder, std::uint8_t* element, const LutForm& form) noexcept {
    const auto* r = static_cast<const ICCLut16*>(fileOrder);
    const TableSizes sizes = SizesOf(HostCounts(*r, form, true));
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    const std::uint8_t channels[4] = {r->inputChannels, r->outputChannels, r->gridPoints, r->padding};
    std::memcpy(element + kChannelsAt, channels, sizeof channels);
    std::memcpy(element + kMatrixAt, r->matrix, sizeof r->matrix);
    std::memcpy(element + kEntryCountsAt, &r->inputEntries, 2);
    std::memcpy(element + kEntryCountsAt + 2, &r->outputEntries, 2);
    std::uint8_t* p = element + kTablesAt;
    for (const auto& [table, entries] : {std::pair{r->inputTables, sizes.input}, std::pair{r->clut, sizes.clut},
                                         std::pair{r->outputTables, sizes.output}}) {
        const std::size_t bytes = static_cast<std::size_t>(entries * form.entryBytes);
        if (bytes) std::memcpy(p, table, bytes);
        p += bytes;
    }
}

KtStatus ParseLut(const std::uint8_t* element, std::uint32_t size, void* host, const LutForm& form) noexcept {
    auto* out = static_cast<ICCLut16*>(host);
    *out = ICCLut16{};
    TagReader in(element, size);
    ICCLut16 head{};
    head.signature = in.U32();
    head.reserved = in.U32();
    head.inputChannels = in.U8();
    head.outputChannels = in.U8();
    head.gridPoints = in.U8();
    head.padding = in.U8();
    for (std::int32_t& value : head.matrix) value = in.S32();
    head.inputEntries = form.bigEndianCounts ? in.U16() : in.Little16();
    head.outputEntries = form.bigEndianCounts ? in.U16() : in.Little16();
    if (!in.ok()) return in.Status();
    *out = head;
    const TableSizes sizes = SizesOf(head);
    if (!in.Holds(sizes.total(), form.entryBytes)) return in.Status();
    if (!(out->inputTables = ReadTable(in, sizes.input, form))) return ERR_NO_MEMORY;
    if (!(out->clut = ReadTable(in, sizes.clut, form))) return ERR_NO_MEMORY;
    if (!(out->outputTables = ReadTable(in, sizes.output, form))) return ERR_NO_MEMORY;
    return in.Status();
}

}  // namespace

KT_ICC_DEFINE_FORM_CODEC(lut16, kLut16, CreateLut, LutElementSize, WriteLut, ParseLut)
KT_ICC_DEFINE_FORM_CODEC(lut8, kLut8, CreateLut, LutElementSize, WriteLut, ParseLut)

}  // namespace kt::icc
