#include "cfixed.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace {

using Raws = std::vector<std::int32_t>;

cfixed R(std::int32_t raw) {
    return cfixed::FromRaw(raw);
}

// The raw values of the results, in order, for one whole-list comparison.
Raws RawOf(std::initializer_list<cfixed> results) {
    Raws raws;
    for (const cfixed& f : results) raws.push_back(f.GetRaw());
    return raws;
}

TEST(Fixed, ConvertsBetweenNumbersAndTheRaw16Dot16Value) {
    // 40000 << 16 wraps to 32 bits; floats truncate toward zero (-6553.6 gives -6553); without
    // a 32-bit value the raw value is fixed to INT32_MIN.
    EXPECT_EQ(
        RawOf({cfixed(-2), cfixed(-3L), cfixed(40000), cfixed(-1.5f), cfixed(-0.1),
               cfixed(32767.99999), cfixed(40000.0),
               cfixed(std::numeric_limits<float>::quiet_NaN())}),
        (Raws{-131072, -196608, -1673527296, -98304, -6553, INT32_MAX, INT32_MIN, INT32_MIN}));
    // The integer part is an arithmetic shift; the fraction is the low 16 bits.
    EXPECT_EQ((std::vector<double>{double(cfixed(-1.5f).Int()), double(int(cfixed(-0.25))),
                                   double(cfixed(-1.5f).Frac()), float(cfixed(-1.5f)),
                                   double(R(INT32_MAX))}),
              (std::vector<double>{-2, -1, 32768, -1.5, 32767.9999847412109375}));
}

TEST(Fixed, ArithmeticWrapsRoundsHalvesAwayFromZeroAndOverflowsToRawMinusOne) {
    EXPECT_EQ(RawOf({cfixed(1.5f) - cfixed(2.25), R(INT32_MAX) + R(1), R(INT32_MIN) - R(1)}),
              (Raws{-49152, INT32_MIN, INT32_MAX}));
    // Raw products over 65536 land on halves, below and above them; 1/3 is 21845.33.
    EXPECT_EQ(
        RawOf({cfixed(-1.5f) * cfixed(2), R(1) * R(32768), R(-1) * R(32768), R(3) * R(-32768),
               R(-1) * R(32767), cfixed(1) / cfixed(3), cfixed(-2) / cfixed(3), R(3) / cfixed(-2)}),
        (Raws{-196608, 1, -1, -2, 0, 21845, -43691, -2}));
    // The ends of the 32-bit range are still results; one step beyond is not.
    EXPECT_EQ(RawOf({cfixed(1) / cfixed(0), cfixed(181) * cfixed(181), cfixed(-182) * cfixed(182),
                     cfixed(-1) / R(1), R(INT32_MAX) * cfixed(1), R(INT32_MIN) * cfixed(1),
                     R(INT32_MIN) / cfixed(-1)}),
              (Raws{-1, 32761 * 65536, -1, -1, INT32_MAX, INT32_MIN, -1}));
}

}  // namespace
