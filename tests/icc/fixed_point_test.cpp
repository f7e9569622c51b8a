// The fixed-point conversions against literal values: the writers build
// hex digits (short fractions come back unshifted), the readers are
// unsigned and plain.
#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

#include "ktclr/icc.h"

namespace {

TEST(FixedPoint, WritersBuildHexDigits) {
    for (const auto& [in, out] : std::initializer_list<std::pair<double, uint32_t>>{
             {0.0, 0}, {1.0, 0x10000}, {0.5, 0x8}, {1.5, 0x18}, {0.75, 0xC}, {2.0625, 0x21}, {0.9642, 0xF6D6},
             {0.8249, 0xD32D}, {3.14159, 0x3243F}, {-0.5, 0}, {-1.75, 0xFFFF0000}, {0.99999, 0xFFFF}, {2.0, 0x20000},
             {-3.0, 0xFFFD0000}})
        EXPECT_EQ(Vx_DoubleTo2bFixed2bNumber(in), out) << in;
    for (const auto& [in, out] : std::initializer_list<std::pair<double, int32_t>>{
             {1.0, 0x100}, {2.2, 0x233}, {0.5, 0x08}, {1.5, 0x18}, {2.25, 0x24}, {0.9, 0xE6}, {0.0, 0}, {-0.5, 0},
             {255.0, 0xFF00}})
        EXPECT_EQ(Vx_DoubleToU8Fixed8Number(in), out) << in;
    // Only the low 16 bits of a u8Fixed8 can be set; values without a
    // 32-bit integer part wrap instead of trapping.
    for (double x : {-1.75, 300.3, 1e9, -1e9, 65535.99, 1e300, -1e300, 4294967296.5, __builtin_nan("")}) {
        EXPECT_EQ(static_cast<uint32_t>(Vx_DoubleToU8Fixed8Number(x)) >> 16, 0u) << x;
        (void)Vx_DoubleTo2bFixed2bNumber(x);
    }
}

TEST(FixedPoint, ReadersAreUnsignedAndPlain) {
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(0x00018000), 1.5);
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(static_cast<int32_t>(0xFFFF0000u)), 65535.0);
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(0x0000F6D6), 0xF6D6 / 65536.0);
    EXPECT_DOUBLE_EQ(Vx_U8Fixed8NumberToDouble(0x12345), 0x23 + 0x45 / 256.0);
    // Every u8Fixed8 value reads back as the plain scaled number.
    for (uint32_t v = 0; v <= 0xFFFF; ++v) ASSERT_DOUBLE_EQ(Vx_U8Fixed8NumberToDouble(v), v / 256.0) << v;
}

}  // namespace
