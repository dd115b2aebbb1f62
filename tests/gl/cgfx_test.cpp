// The graphics settings: defaults, block copies and the library's instance.
#include <gtest/gtest.h>

#include <vector>

#include "cgfx.h"

namespace {

// The 32 words in memory order.
std::vector<float> Words(const cgfx& g) {
    const auto* words = reinterpret_cast<const float*>(&g);
    return std::vector<float>(words, words + 32);
}

const std::vector<float> kDefaults = {1, 1,    1, 1, 0, 0, 0, 1, 1, 1, 0, 1, 0, 0, 1, 1,
                                      1, 0.5f, 0, 1, 0, 0, 1, 1, 1, 0, 0, 1, 3, 5, 1, 0};

}  // namespace

TEST(cgfx, HoldsThirtyTwoWordsWithTheDefaultTable) {
    EXPECT_EQ(sizeof(cgfx), 128u);
    cgfx g;
    EXPECT_EQ(Words(g), kDefaults);
    g.lightcolor.Set(0.25f, 0.5f, 0.75f, 1.0f);
    g.normallength = 7.0f;
    cgfx assigned;
    assigned = g;
    EXPECT_EQ(Words(cgfx(g)), Words(g));
    EXPECT_EQ(Words(assigned), Words(g));
    assigned.Defaults();
    EXPECT_EQ(Words(assigned), kDefaults);
}

TEST(cgfx, LibrarySettingsAreReplacedWholeAndReadAsCopies) {
    cgfx saved = GetGfxInfo();
    EXPECT_EQ(Words(saved), kDefaults);
    cgfx changed;
    changed.cameracolor.Set(0.5f, 0.5f, 0.5f, 1.0f);
    changed.linewidth = 2.0f;
    SetGfxInfo(changed);
    const std::vector<float> set = Words(changed);
    changed.linewidth = 9.0f;  // the library holds its own copy
    cgfx read = GetGfxInfo();
    EXPECT_EQ(Words(read), set);
    read.linewidth = 4.0f;
    EXPECT_EQ(GetGfxInfo().linewidth, 2.0f);
    SetGfxInfo(saved);
}
