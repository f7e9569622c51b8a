// 'mAB ' (lutAtoB) and 'mBA ' (lutBtoA): curve sets A, M and B, a 3x4
// matrix and a CLUT, each at an offset from the start of the tag.
//
// Parsing gathers every present element in flat host-order form into one
// pool, in reading order, and keeps a copy of each curve set and of the
// CLUT. Creating writes every element, big-endian, in the order B, matrix,
// M, CLUT, A, and keeps copies of the encoded sets and CLUT.
#include <cstring>
#include <initializer_list>

#include "icc/big_endian.h"
#include "icc/byte_pool.h"
#include "icc/clut.h"
#include "icc/curve_set.h"
#include "icc/tag_codecs.h"
#include "icc/tag_reader.h"
#include "icc/tag_types.h"
#include "ktclr/icc_luts.h"

namespace kt::icc {
namespace {

constexpr std::uint32_t kHeadBytes = 32;
constexpr std::uint32_t kChannelsAt = 8;
constexpr std::uint32_t kReserved2At = 10;
constexpr std::uint32_t kOffsetsAt = 12;
constexpr std::uint32_t kMatrixValues = 12;
constexpr std::uint32_t kMatrixBytes = 4 * kMatrixValues;
constexpr std::uint8_t kOneBytePrecision = 1;
constexpr std::uint8_t kTwoBytePrecision = 2;

struct AbForm {
    std::uint32_t signature;
    bool aToB;
};
constexpr AbForm kAtoB{Sig("mAB "), true};
constexpr AbForm kBtoA{Sig("mBA "), false};

// Curves per set: lutAtoB maps the input channels through A and the output
// channels through M and B; lutBtoA the other way round.
struct SetCounts {
    std::uint32_t a, m, b;
};
SetCounts CountsOf(const ICCLutAtoB& r, const AbForm& form) noexcept {
    const std::uint32_t in = r.inputChannels, out = r.outputChannels;
    return form.aToB ? SetCounts{in, out, out} : SetCounts{out, in, in};
}

// --- parsing ---------------------------------------------------------------

class AbReader {
public:
    AbReader(TagReader in, ICCLutAtoB* out, SetCounts counts) noexcept
        : in_(in), out_(out), counts_(counts), pool_(out->pool) {}

    // The CLUT and, when present, the A curves behind it.
    KtStatus ClutAndA() noexcept {
        TagReader in = in_;
        in.Seek(out_->offsetCLUT);
        const std::uint8_t* source = in.Take(kClutHeadBytes);
        if (out_->inputChannels > kClutMaxInputs || !source) return ERR_INVALID_TAG;
        const std::uint64_t unpadded = ClutUnpaddedBytes(source, out_->inputChannels, out_->outputChannels);
        if (!in.Holds(unpadded - kClutHeadBytes, 1)) return ERR_INVALID_TAG;
        const std::uint64_t bytes = ClutBytes(source, out_->inputChannels, out_->outputChannels);
        const std::uint64_t start = pool_.size();
        std::uint8_t* flat = pool_.Grow(bytes);
        if (!flat) return ERR_NO_MEMORY;
        WriteFlatClut(source, kClutHeadBytes + in.Remaining(), bytes, true, flat);
        if (!(out_->clut = pool_.CopyOut(start, bytes))) return ERR_NO_MEMORY;
        return out_->offsetA ? Curves(out_->offsetA, counts_.a, &out_->curvesA) : STATUS_OK;
    }

    // The matrix and, when present, the M curves behind it.
    KtStatus MatrixAndM() noexcept {
        TagReader in = in_;
        in.Seek(out_->offsetMatrix);
        std::int32_t matrix[kMatrixValues];
        for (std::int32_t& value : matrix) value = in.S32();
        if (!in.ok()) return ERR_INVALID_TAG;
        std::memcpy(out_->matrix, matrix, kMatrixBytes);
        std::uint8_t* room = pool_.Grow(kMatrixBytes);
        if (!room) return ERR_NO_MEMORY;
        std::memcpy(room, out_->matrix, kMatrixBytes);
        return out_->offsetM ? Curves(out_->offsetM, counts_.m, &out_->curvesM) : STATUS_OK;
    }

    // The B curves, which every such tag has.
    KtStatus B() noexcept {
        if (out_->offsetB == 0) return ERR_INVALID_TAG;
        return Curves(out_->offsetB, counts_.b, &out_->curvesB);
    }

private:
    KtStatus Curves(std::uint32_t at, std::uint32_t count, void** copy) noexcept {
        return ReadCurveSet(in_, at, count, pool_, copy);
    }

    TagReader in_;
    ICCLutAtoB* out_;
    SetCounts counts_;
    BytePool pool_;
};

KtStatus ParseAb(const std::uint8_t* element, std::uint32_t size, void* host, const AbForm& form) noexcept {
    auto* out = static_cast<ICCLutAtoB*>(host);
    *out = ICCLutAtoB{};
    TagReader in(element, size);
    ICCLutAtoB head{};
    head.signature = in.U32();
    head.reserved = in.U32();
    head.inputChannels = in.U8();
    head.outputChannels = in.U8();
    head.reserved2 = in.U16();
    for (std::uint32_t* offset : {&head.offsetB, &head.offsetMatrix, &head.offsetM, &head.offsetCLUT, &head.offsetA})
        *offset = in.U32();
    if (!in.ok()) return in.Status();
    *out = head;

    AbReader read(in, out, CountsOf(*out, form));
    KtStatus st = STATUS_OK;
    if (form.aToB) {
        if (out->offsetCLUT)
            st = read.ClutAndA();
        else if (out->inputChannels != out->outputChannels)
            st = ERR_INVALID_TAG;
        if (st == STATUS_OK && out->offsetMatrix) st = read.MatrixAndM();
        if (st == STATUS_OK) st = read.B();
    } else {
        st = read.B();
        if (st == STATUS_OK && out->offsetMatrix) st = read.MatrixAndM();
        if (st == STATUS_OK && out->offsetCLUT) st = read.ClutAndA();
    }
    return st;
}

// --- creating --------------------------------------------------------------

struct AbSizes {
    std::uint64_t b, m, clut, a;
};

KtStatus CheckClut(const ICCCLUT* clut, std::uint32_t inputs, std::uint32_t outputs, std::uint64_t* bytes) noexcept {
    if (!clut->data || inputs > kClutMaxInputs) return ERR_INVALID_PARAMETER;
    if (clut->precision != kOneBytePrecision && clut->precision != kTwoBytePrecision) return ERR_INVALID_PARAMETER;
    *bytes = ClutBytes(reinterpret_cast<const std::uint8_t*>(clut), inputs, outputs);
    return *bytes >= kClutTooLarge ? ERR_INVALID_PARAMETER : STATUS_OK;
}

// Writes the CLUT element; a 2-byte CLUT's entries are first turned
// big-endian in the caller's own record.
void EncodeClut(ICCCLUT* clut, std::uint32_t inputs, std::uint32_t outputs, std::uint64_t bytes,
                std::uint8_t* out) noexcept {
    const std::uint64_t dataBytes = ClutUnpaddedBytes(reinterpret_cast<const std::uint8_t*>(clut), inputs, outputs) - kClutHeadBytes;
    if (clut->precision == kTwoBytePrecision) {
        for (std::uint64_t i = 0; i + 1 < dataBytes; i += 2) {
            std::uint16_t v;
            std::memcpy(&v, clut->data + i, sizeof v);
            Store16(clut->data + i, v);
        }
    }
    std::memcpy(out, clut->gridPoints, sizeof clut->gridPoints);
    out[kClutPrecisionAt] = clut->precision;
    std::memcpy(out + kClutReservedAt, clut->reserved, sizeof clut->reserved);
    if (dataBytes) std::memcpy(out + kClutHeadBytes, clut->data, static_cast<std::size_t>(dataBytes));
    std::memset(out + kClutHeadBytes + dataBytes, 0, static_cast<std::size_t>(bytes - kClutHeadBytes - dataBytes));
}

KtStatus CreateAb(const void* host, void* fileOrder, const AbForm& form) noexcept {
    const ICCLutAtoB in = *static_cast<const ICCLutAtoB*>(host);
    auto* out = static_cast<ICCLutAtoB*>(fileOrder);
    *out = ICCLutAtoB{};
    if (!in.curvesB || !in.curvesM || !in.curvesA || !in.clut) return ERR_INVALID_PARAMETER;
    auto* clut = static_cast<ICCCLUT*>(in.clut);
    const SetCounts counts = CountsOf(in, form);
    AbSizes s{};
    KtStatus st = RecordSetBytes(in.curvesB, counts.b, &s.b);
    if (st == STATUS_OK) st = RecordSetBytes(in.curvesM, counts.m, &s.m);
    if (st == STATUS_OK) st = RecordSetBytes(in.curvesA, counts.a, &s.a);
    if (st == STATUS_OK) st = CheckClut(clut, in.inputChannels, in.outputChannels, &s.clut);
    if (st != STATUS_OK) return st;
    const std::uint64_t poolBytes = s.b + kMatrixBytes + s.m + s.clut + s.a;
    if (poolBytes > UINT32_MAX - kHeadBytes) return ERR_INVALID_PARAMETER;

    out->signature = FileOrder32(form.signature);
    out->inputChannels = in.inputChannels;
    out->outputChannels = in.outputChannels;
    std::memcpy(out->matrix, in.matrix, sizeof out->matrix);
    const std::uint64_t offsetB = kHeadBytes, offsetMatrix = offsetB + s.b, offsetM = offsetMatrix + kMatrixBytes,
                        offsetCLUT = offsetM + s.m, offsetA = offsetCLUT + s.clut;
    out->offsetB = FileOrder32(static_cast<std::uint32_t>(offsetB));
    out->offsetMatrix = FileOrder32(static_cast<std::uint32_t>(offsetMatrix));
    out->offsetM = FileOrder32(static_cast<std::uint32_t>(offsetM));
    out->offsetCLUT = FileOrder32(static_cast<std::uint32_t>(offsetCLUT));
    out->offsetA = FileOrder32(static_cast<std::uint32_t>(offsetA));

    BytePool pool(out->pool);
    std::uint8_t* p = pool.Grow(poolBytes);
    if (!p) return ERR_NO_MEMORY;
    auto at = [&](std::uint64_t offset) { return p + (offset - kHeadBytes); };
    EncodeRecordSet(in.curvesB, counts.b, at(offsetB));
    for (std::uint32_t i = 0; i < kMatrixValues; ++i)
        Store32(at(offsetMatrix) + 4 * i, static_cast<std::uint32_t>(in.matrix[i]));
    EncodeRecordSet(in.curvesM, counts.m, at(offsetM));
    EncodeClut(clut, in.inputChannels, in.outputChannels, s.clut, at(offsetCLUT));
    EncodeRecordSet(in.curvesA, counts.a, at(offsetA));

    const struct {
        void** copy;
        std::uint64_t offset, bytes;
    } copies[] = {{&out->curvesB, offsetB, s.b},
                  {&out->curvesM, offsetM, s.m},
                  {&out->clut, offsetCLUT, s.clut},
                  {&out->curvesA, offsetA, s.a}};
    for (const auto& c : copies)
        if (!(*c.copy = pool.CopyOut(c.offset - kHeadBytes, c.bytes))) return ERR_NO_MEMORY;
    return STATUS_OK;
}

std::uint64_t AbElementSize(const void* fileOrder, const AbForm& form) noexcept {
    const auto* r = static_cast<const ICCLutAtoB*>(fileOrder);
    return FileOrder32(r->offsetA) + EncodedSetBytes(static_cast<const std::uint8_t*>(r->curvesA), CountsOf(*r, form).a);
}

void WriteAb(const void* fileOrder, std::uint8_t* element, const AbForm& form) noexcept {
    const auto* r = static_cast<const ICCLutAtoB*>(fileOrder);
    std::memcpy(element, &r->signature, 4);
    std::memcpy(element + 4, &r->reserved, 4);
    element[kChannelsAt] = r->inputChannels;
    element[kChannelsAt + 1] = r->outputChannels;
    std::memcpy(element + kReserved2At, &r->reserved2, 2);
    const std::uint32_t offsets[] = {r->offsetB, r->offsetMatrix, r->offsetM, r->offsetCLUT, r->offsetA};
    std::memcpy(element + kOffsetsAt, offsets, sizeof offsets);
    const std::uint64_t poolBytes = AbElementSize(r, form) - kHeadBytes;
    if (poolBytes) std::memcpy(element + kHeadBytes, r->pool, static_cast<std::size_t>(poolBytes));
}

}  // namespace

KT_ICC_DEFINE_FORM_CODEC(lut_atob, kAtoB, CreateAb, AbElementSize, WriteAb, ParseAb)
KT_ICC_DEFINE_FORM_CODEC(lut_btoa, kBtoA, CreateAb, AbElementSize, WriteAb, ParseAb)

}  // namespace kt::icc
