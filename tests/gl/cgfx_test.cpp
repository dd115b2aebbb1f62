// The graphics settings: the default table of the library's instance and of a reset record.
#include <gtest/gtest.h>

#include <vector>

#include "cgfx.h"

namespace {

// The 32 words in memory order.
std::vector<float> Words(const cgfx& g) {
    const auto* words = reinterpret_cast<const float*>(&g);
    return std::vector<float>(words, words + 32);
}

}  // namespace

TEST(cgfx, HoldsThirtyTwoWordsWithTheDefaultTable) {
    static_assert(sizeof(cgfx) == 128, "32 four-byte words");
    cgfx reset;
    reset.linewidth = 2.0f;
    reset.Defaults();
    EXPECT_EQ(Words(reset),
              (std::vector<float>{1, 1,    1, 1, 0, 0, 0, 1, 1, 1, 0, 1, 0, 0, 1, 1,
                                  1, 0.5f, 0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 3, 5, 1, 0}));
    EXPECT_EQ(Words(GetGfxInfo()), Words(reset));
}
