#include "cfixed.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

std::int32_t Raw(cfixed f) {
    return f.GetRaw();
}
cfixed R(std::int32_t raw) {
    return cfixed::FromRaw(raw);
}

TEST(Fixed, ConvertsBetweenNumbersAndTheRaw16Dot16Value) {
    EXPECT_EQ(Raw(cfixed(-2)), -131072);
    EXPECT_EQ(Raw(cfixed(-3L)), -196608);
    EXPECT_EQ(Raw(cfixed(40000)), -1673527296);  // 40000 << 16, wrapped to 32 bits
    EXPECT_EQ(Raw(cfixed(-1.5f)), -98304);
    EXPECT_EQ(Raw(cfixed(-0.1)), -6553);  // -6553.6 toward zero, not down
    EXPECT_EQ(Raw(cfixed(32767.99999)), INT32_MAX);
    EXPECT_EQ(Raw(cfixed(-32768.0)), INT32_MIN);
    // Without a 32-bit value the raw value is fixed to INT32_MIN.
    EXPECT_EQ(Raw(cfixed(40000.0)), INT32_MIN);
    EXPECT_EQ(Raw(cfixed(std::numeric_limits<float>::quiet_NaN())), INT32_MIN);
    // The integer part is an arithmetic shift; the fraction is the low 16 bits.
    EXPECT_EQ(cfixed(-1.5f).Int(), -2);
    EXPECT_EQ(static_cast<int>(cfixed(-0.25)), -1);
    EXPECT_EQ(cfixed(-1.5f).Frac(), 32768u);
    EXPECT_EQ(static_cast<float>(cfixed(-1.5f)), -1.5f);
    EXPECT_EQ(static_cast<double>(R(INT32_MAX)), 32767.9999847412109375);
}

TEST(Fixed, AddsAndSubtractsWrappingAndComparesByValue) {
    EXPECT_EQ(Raw(cfixed(1.5f) - cfixed(2.25)), -49152);
    EXPECT_EQ(Raw(R(INT32_MAX) + R(1)), INT32_MIN);
    EXPECT_EQ(Raw(R(INT32_MIN) - R(1)), INT32_MAX);
    EXPECT_EQ(Raw(-cfixed(2)), -131072);
    EXPECT_EQ(Raw(-R(INT32_MIN)), INT32_MIN);
    EXPECT_TRUE(cfixed(-2) < cfixed(-1) && !(cfixed(-1) < cfixed(-1)));
    EXPECT_TRUE(cfixed(0.5) > cfixed(-0.5) && !(cfixed(2) > cfixed(2)));
    EXPECT_TRUE(cfixed(2) == cfixed(2.0f) && cfixed(2) != R(131073));
}

TEST(Fixed, MultiplicationAndDivisionRoundHalvesAwayFromZero) {
    EXPECT_EQ(Raw(cfixed(-1.5f) * cfixed(2)), -196608);
    // Products of raw values over 65536 land on halves, below and above them.
    EXPECT_EQ(Raw(R(1) * R(32768)), 1);
    EXPECT_EQ(Raw(R(-1) * R(32768)), -1);
    EXPECT_EQ(Raw(R(3) * R(-32768)), -2);
    EXPECT_EQ(Raw(R(-1) * R(32767)), 0);
    EXPECT_EQ(Raw(cfixed(1) / cfixed(3)), 21845);    // 21845.33
    EXPECT_EQ(Raw(cfixed(-2) / cfixed(3)), -43691);  // -43690.67
    EXPECT_EQ(Raw(R(3) / cfixed(-2)), -2);
}

TEST(Fixed, OverflowAndDivisionByZeroGiveRawMinusOne) {
    EXPECT_EQ(Raw(cfixed(1) / cfixed(0)), -1);
    EXPECT_EQ(Raw(cfixed(181) * cfixed(181)), 32761 * 65536);
    EXPECT_EQ(Raw(cfixed(-182) * cfixed(182)), -1);
    EXPECT_EQ(Raw(cfixed(-1) / R(1)), -1);  // -2^32
    // The ends of the 32-bit range are still results; one step beyond is not.
    EXPECT_EQ(Raw(R(INT32_MAX) * cfixed(1)), INT32_MAX);
    EXPECT_EQ(Raw(R(INT32_MIN) * cfixed(1)), INT32_MIN);
    EXPECT_EQ(Raw(R(INT32_MIN) / cfixed(-1)), -1);
}

}  // namespace
