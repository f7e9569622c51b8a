// Sample LUT records for the tag tests, with arrays they own, and a
// decoder of flat curve sets back into comparable values.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "tag_lut_fixtures.h"

namespace icctest {

// A curve as values that compare: kind, count or function type, array.
struct CurveValues {
    bool parametric;
    uint32_t countOrType;
    std::vector<int64_t> values;
    bool operator==(const CurveValues&) const = default;
};

inline CurveValues ValuesOfRecord(const void* record) {
    if (Vx_ClrIntIsParametricCurveType(record, 0)) {
        const auto* p = static_cast<const ICCParametricCurveType*>(record);
        const int32_t n = Vx_GetParametricCurveNumberOfParameters(p->functionType);
        return {true, p->functionType, std::vector<int64_t>(p->parameters, p->parameters + n)};
    }
    const auto* c = static_cast<const ICCCurveType*>(record);
    return {false, c->count, std::vector<int64_t>(c->entries, c->entries + c->count)};
}

inline std::vector<CurveValues> ValuesOfRecords(const void* records, uint32_t count) {
    std::vector<CurveValues> out;
    for (uint32_t i = 0; i < count; ++i)
        out.push_back(ValuesOfRecord(static_cast<const uint8_t*>(records) + i * sizeof(ICCCurveType)));
    return out;
}

// A flat host-order set, read back through the exported re-readers.
inline std::vector<CurveValues> ValuesOfFlatSet(const void* flat, uint32_t count) {
    std::vector<CurveValues> out;
    const auto* p = static_cast<const unsigned char*>(flat);
    for (uint32_t i = 0; i < count; ++i) {
        if (Vx_ClrIntIsParametricCurveType(p, 0)) {
            ICCParametricCurveType c{};
            EXPECT_EQ(Vx_ClrIntGetParametricCurveTypeLittleIndian(p, &c), STATUS_OK);
            out.push_back(ValuesOfRecord(&c));
            Vx_ClrIntIccFreeParametricCurveType(&c);
        } else {
            ICCCurveType c{};
            EXPECT_EQ(Vx_ClrIntGetCurveTypeLittleIndian(p, &c), STATUS_OK);
            out.push_back(ValuesOfRecord(&c));
            Vx_ClrIntIccFreeCurveType(&c);
        }
        p += Vx_ClrIntGetLutCurveSize(p, 1, 0, 0);
    }
    return out;
}

// Curve records over arrays kept here; every curve kind appears.
struct CurveSetSample {
    std::vector<std::vector<uint16_t>> tables;
    std::vector<std::vector<int32_t>> params;
    std::vector<ICCCurveType> records;  // ICCParametricCurveType shares the size

    explicit CurveSetSample(uint32_t count, uint32_t seed) {
        tables.reserve(count);
        params.reserve(count);
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t kind = (i + seed) % 4;
            ICCCurveType r{};
            if (kind == 3) {
                params.push_back({0x26666, 0xF2A7, 0x0D59, 0x13D0, int32_t(0x0A3D + seed), -1, 7});
                ICCParametricCurveType p{Sig("para"), 0, uint16_t((i + seed) % 5), 0, params.back().data()};
                std::memcpy(&r, &p, sizeof r);
            } else {
                const uint32_t n = kind == 0 ? 0 : kind == 1 ? 1 : 5 + seed;
                tables.emplace_back(n ? n : 1);
                for (uint32_t k = 0; k < n; ++k) tables.back()[k] = uint16_t(k * 4099 + seed * 31 + i);
                r = ICCCurveType{Sig("curv"), 0, n, tables.back().data()};
            }
            records.push_back(r);
        }
    }
    void* data() { return records.data(); }
};

// A CLUT with its entries.
struct ClutSample {
    ICCCLUT clut{};
    std::vector<uint16_t> entries;
    std::vector<uint8_t> bytes;  // the entries as the record holds them

    ClutSample(uint32_t inputs, uint32_t outputs, uint8_t grid, uint8_t precision) {
        uint32_t n = outputs;
        for (uint32_t i = 0; i < inputs; ++i) {
            clut.gridPoints[i] = uint8_t(grid + i % 2);
            n *= clut.gridPoints[i];
        }
        clut.precision = precision;
        entries.resize(n);
        for (uint32_t i = 0; i < n; ++i) entries[i] = uint16_t(precision == 2 ? i * 2654435761u >> 16 : i * 37 % 256);
        Reset();
    }
    // Back to native entries (creating turns them big-endian in place).
    void Reset() {
        bytes.assign(entries.size() * clut.precision, 0);
        for (size_t i = 0; i < entries.size(); ++i) {
            if (clut.precision == 2)
                std::memcpy(bytes.data() + 2 * i, &entries[i], 2);
            else
                bytes[i] = uint8_t(entries[i]);
        }
        clut.data = bytes.data();
    }
};

// A lutAtoB or lutBtoA record over curve sets and a CLUT kept here.
struct AbSample {
    bool aToB;
    uint8_t in, out;
    CurveSetSample a, m, b;
    ClutSample clut;
    ICCLutAtoB lut{};

    AbSample(bool aToB_, uint8_t in_, uint8_t out_, uint8_t precision)
        : aToB(aToB_),
          in(in_),
          out(out_),
          a(aToB_ ? in_ : out_, 1),
          m(aToB_ ? out_ : in_, 2),
          b(aToB_ ? out_ : in_, 3),
          clut(in_, out_, 2, precision) {
        lut.signature = aToB ? Sig("mAB ") : Sig("mBA ");
        lut.inputChannels = in;
        lut.outputChannels = out;
        lut.curvesA = a.data();
        lut.curvesM = m.data();
        lut.curvesB = b.data();
        lut.clut = &clut.clut;
        for (int i = 0; i < 12; ++i) lut.matrix[i] = (i % 4 == 0 ? 0x10000 : 0) + i * 977 - 3000;
    }
    uint32_t Type() const { return aToB ? Sig("mAB ") : Sig("mBA "); }
    uint32_t CountA() const { return aToB ? in : out; }
    uint32_t CountMB() const { return aToB ? out : in; }
};

}  // namespace icctest
