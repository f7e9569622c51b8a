#include <gtest/gtest.h>

#include "ktclr/icc.h"

namespace {

TEST(FixedPoint, DoubleToS15Fixed16BuildsHexDigits) {
    // Short fractions come back unshifted; that is the stored behaviour.
    const struct {
        double in;
        uint32_t out;
    } cases[] = {
        {0.0, 0},           {1.0, 0x10000},     {0.5, 0x8},         {1.5, 0x18},
        {0.75, 0xC},        {2.0625, 0x21},     {0.9642, 0xF6D6},   {0.8249, 0xD32D},
        {3.14159, 0x3243F}, {-0.5, 0},          {-1.75, 0xFFFF0000}, {0.99999, 0xFFFF},
        {2.0, 0x20000},     {-3.0, 0xFFFD0000},
    };
    for (const auto& c : cases) EXPECT_EQ(Vx_DoubleTo2bFixed2bNumber(c.in), c.out) << c.in;
}

TEST(FixedPoint, DoubleToU8Fixed8BuildsHexDigits) {
    const struct {
        double in;
        int32_t out;
    } cases[] = {
        {1.0, 0x100}, {2.2, 0x233}, {0.5, 0x08}, {1.5, 0x18}, {2.25, 0x24}, {0.9, 0xE6},
        {0.0, 0},     {-0.5, 0},    {255.0, 0xFF00},
    };
    for (const auto& c : cases) EXPECT_EQ(Vx_DoubleToU8Fixed8Number(c.in), c.out) << c.in;
    // Whatever the input, only the low 16 bits can be set.
    for (double x : {-1.75, 300.3, 1e9, -1e9, 65535.99})
        EXPECT_EQ(static_cast<uint32_t>(Vx_DoubleToU8Fixed8Number(x)) >> 16, 0u) << x;
}

TEST(FixedPoint, OutOfRangeInputsDoNotTrap) {
    // Values without a 32-bit integer part wrap instead of misbehaving.
    for (double x : {1e300, -1e300, 4294967296.5, __builtin_nan("")}) {
        (void)Vx_DoubleTo2bFixed2bNumber(x);
        (void)Vx_DoubleToU8Fixed8Number(x);
    }
}

TEST(FixedPoint, ReadersAreUnsignedAndPlain) {
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(0x00018000), 1.5);
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(static_cast<int32_t>(0xFFFF0000u)), 65535.0);
    EXPECT_DOUBLE_EQ(Vx_2bFixed2bNumberToDouble(0x0000F6D6), 0xF6D6 / 65536.0);
    EXPECT_DOUBLE_EQ(Vx_U8Fixed8NumberToDouble(0x0180), 1.5);
    EXPECT_DOUBLE_EQ(Vx_U8Fixed8NumberToDouble(0x12345), 0x23 + 0x45 / 256.0);
    // Every u8Fixed8 value reads back as the plain scaled number.
    for (uint32_t v = 0; v <= 0xFFFF; ++v) ASSERT_DOUBLE_EQ(Vx_U8Fixed8NumberToDouble(v), v / 256.0) << v;
}

}  // namespace
