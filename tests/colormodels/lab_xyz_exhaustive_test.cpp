// Every 3-byte input of the Lab and XYZ kernels, in both hub orders, against
// the literal reference; and the handle's Lab tables against the formulas
// for their own white points and matrices.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "colormodels/kernels.h"
#include "colormodels/lab_tables.h"
#include "colormodels/reference/lab_xyz_reference.h"
#include "colormodels/rgb_family_support.h"

namespace kt {
namespace {

using LabXyzExhaustive = test::AtEveryLevel;

constexpr std::size_t kAll = std::size_t{1} << 24;
using Bytes = std::vector<std::uint8_t>;

// Pixel i holds the bytes i >> 16, (i >> 8) & 255, i & 255.
const Bytes& AllTriples() {
    static const Bytes all = [] {
        Bytes b(kAll * 3);
        for (std::size_t i = 0; i < kAll; ++i) {
            b[3 * i] = static_cast<std::uint8_t>(i >> 16);
            b[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
            b[3 * i + 2] = static_cast<std::uint8_t>(i);
        }
        return b;
    }();
    return all;
}

// Reference value of every input, computed on both cores.
Bytes Expected(const std::function<void(std::size_t, std::uint8_t*)>& pixel) {
    Bytes out(kAll * 3);
    auto part = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i) pixel(i, &out[3 * i]);
    };
    std::thread other(part, 0, kAll / 2);
    part(kAll / 2, kAll);
    other.join();
    return out;
}

// Runs a kernel over all inputs as one image of 4096 rows.
Bytes RunKernel(color::Kernel k, int order) {
    Bytes out(kAll * 3);
    EXPECT_EQ(k(AllTriples().data(), out.data(), 4096, 4096, 0, 0, 175, order), STATUS_OK);
    return out;
}

struct Mismatch {
    std::size_t count = 0;
    int maxDiff = 0;
    std::size_t first = SIZE_MAX;
};

// Compares `got` with `want`. When `swapped`, the kernel's RGB side was
// B,G,R: input pixel i corresponds to reference index with bytes reversed,
// and (for RGB outputs) the output bytes are reversed too.
enum class Side { input, output };
Mismatch Compare(const Bytes& got, const Bytes& want, bool swapped, Side rgbSide) {
    Mismatch m;
    for (std::size_t i = 0; i < kAll; ++i) {
        std::size_t ref = i;
        if (swapped && rgbSide == Side::input) ref = ((i & 255) << 16) | (i & 0xFF00) | (i >> 16);
        for (int c = 0; c < 3; ++c) {
            const int gc = (swapped && rgbSide == Side::output) ? 2 - c : c;
            const int d = std::abs(int{got[3 * i + gc]} - int{want[3 * ref + c]});
            if (d != 0) {
                if (m.count++ == 0) m.first = i;
                if (d > m.maxDiff) m.maxDiff = d;
            }
        }
    }
    return m;
}

void ExpectExact(const Mismatch& m, const char* what) {
    EXPECT_EQ(m.count, 0u) << what << ": first differing input " << m.first << ", max difference " << m.maxDiff;
}

TEST_P(LabXyzExhaustive, RgbToLabMatchesFormulaInBothOrders) {
    const Bytes want = Expected([](std::size_t i, std::uint8_t* o) {
        const ktref::Triple t = ktref::RgbToLab(int(i >> 16), int((i >> 8) & 255), int(i & 255));
        o[0] = t.v[0], o[1] = t.v[1], o[2] = t.v[2];
    });
    ExpectExact(Compare(RunKernel(color::RgbToLab, 1), want, false, Side::input), "RGB to Lab");
    ExpectExact(Compare(RunKernel(color::RgbToLab, 0), want, true, Side::input), "BGR to Lab");

    // The handle's table for the same white point and matrix gives the same.
    auto* table = new RgbToLabTable;
    color::SetRgbToLabTableHeader(table, color::kInitWhitePoint, color::kDefaultLabRanges, color::kRgbToXyzMatrix);
    color::FillRgbToLabTable(table, 45);
    for (int order = 0; order < 2; ++order) {
        Bytes out(kAll * 3);
        ASSERT_EQ(color::RgbToLabThroughTable(table, AllTriples().data(), out.data(), 4096, 4096, 0, 0, order),
                  STATUS_OK);
        ExpectExact(Compare(out, want, order == 0, Side::input), "RGB to Lab through the table");
    }
    delete table;
}

TEST_P(LabXyzExhaustive, LabToRgbMatchesFormulaInBothOrders) {
    const Bytes want = Expected([](std::size_t i, std::uint8_t* o) {
        const ktref::Rgb p = ktref::LabToRgb(int(i >> 16), int((i >> 8) & 255), int(i & 255));
        o[0] = p.r, o[1] = p.g, o[2] = p.b;
    });
    ExpectExact(Compare(RunKernel(color::LabToRgb, 1), want, false, Side::output), "Lab to RGB");
    ExpectExact(Compare(RunKernel(color::LabToRgb, 0), want, true, Side::output), "Lab to BGR");
}

TEST_P(LabXyzExhaustive, XyzBothWaysInBothOrders) {
    const Bytes toXyz = Expected([](std::size_t i, std::uint8_t* o) {
        const ktref::Triple t = ktref::RgbToXyz(int(i >> 16), int((i >> 8) & 255), int(i & 255));
        o[0] = t.v[0], o[1] = t.v[1], o[2] = t.v[2];
    });
    ExpectExact(Compare(RunKernel(color::RgbToXyz, 1), toXyz, false, Side::input), "RGB to XYZ");
    ExpectExact(Compare(RunKernel(color::RgbToXyz, 0), toXyz, true, Side::input), "BGR to XYZ");
    const Bytes toRgb = Expected([](std::size_t i, std::uint8_t* o) {
        const ktref::Rgb p = ktref::XyzToRgb(int(i >> 16), int((i >> 8) & 255), int(i & 255));
        o[0] = p.r, o[1] = p.g, o[2] = p.b;
    });
    ExpectExact(Compare(RunKernel(color::XyzToRgb, 1), toRgb, false, Side::output), "XYZ to RGB");
    ExpectExact(Compare(RunKernel(color::XyzToRgb, 0), toRgb, true, Side::output), "XYZ to BGR");
}

// Lab to RGB through a LabTable against the formula with the table's white
// point and matrix; the agreement figure is printed.
void CheckLabTable(const double white[3], const double matrix[9], const char* name) {
    auto* table = new LabTable;
    color::SetLabTableHeader(table, white, color::kDefaultLabRanges, matrix);
    color::FillLabTable(table, 45);
    const Bytes want = Expected([&](std::size_t i, std::uint8_t* o) {
        const ktref::Rgb p = ktref::LabToRgbWith(int(i >> 16), int((i >> 8) & 255), int(i & 255), white, matrix, 0.45);
        o[0] = p.r, o[1] = p.g, o[2] = p.b;
    });
    for (int order = 0; order < 2; ++order) {
        Bytes out(kAll * 3);
        ASSERT_EQ(color::LabToRgbThroughTable(table, AllTriples().data(), out.data(), 4096, 4096, 0, 0, order),
                  STATUS_OK);
        const Mismatch m = Compare(out, want, order == 0, Side::output);
        std::printf("Lab table (%s, %s): %zu of %zu channel values differ from the formula, largest difference %d\n",
                    name, order ? "RGB" : "BGR", m.count, kAll * 3, m.maxDiff);
        EXPECT_LE(m.maxDiff, 1) << name;
        ExpectExact(m, name);
    }
    delete table;
}

TEST(LabXyzTables, LabTablesAgreeWithFormulaForTheirWhitePointAndMatrix) {
    CheckLabTable(color::kInitWhitePoint, color::kXyzToRgbMatrix, "creation white point");
    CheckLabTable(color::kSetParamsWhitePoint, color::kSetParamsMatrix, "second white point");
}

KT_AT_EVERY_LEVEL(LabXyzExhaustive);

}  // namespace
}  // namespace kt
