// The graphics settings: defaults, block copies and the library's instance.
#include <gtest/gtest.h>

#include "cgfx.h"

namespace {

void ExpectColor(const ccolor& c, float r, float g, float b, float a) {
    EXPECT_FLOAT_EQ(c.r, r);
    EXPECT_FLOAT_EQ(c.g, g);
    EXPECT_FLOAT_EQ(c.b, b);
    EXPECT_FLOAT_EQ(c.a, a);
}

void ExpectDefaults(const cgfx& g) {
    ExpectColor(g.selcolor, 1, 1, 1, 1);
    ExpectColor(g.namecolor, 0, 0, 0, 1);
    ExpectColor(g.lightcolor, 1, 1, 0, 1);
    ExpectColor(g.cameracolor, 0, 0, 1, 1);
    ExpectColor(g.hilitecolor, 1, 0.5f, 0, 1);
    ExpectColor(g.targetcolor, 0, 0, 1, 1);
    ExpectColor(g.elemcolor, 1, 0, 0, 1);
    EXPECT_FLOAT_EQ(g.vertsize, 3.0f);
    EXPECT_FLOAT_EQ(g.iconpointsize, 5.0f);
    EXPECT_FLOAT_EQ(g.linewidth, 1.0f);
    EXPECT_FLOAT_EQ(g.normallength, 0.0f);
}

}  // namespace

TEST(cgfx, HoldsThirtyTwoWordsWithTheDefaultTable) {
    EXPECT_EQ(sizeof(cgfx), 128u);
    cgfx g;
    ExpectDefaults(g);
    // The scalars follow the seven colours directly.
    float const* words = reinterpret_cast<float const*>(&g);
    EXPECT_FLOAT_EQ(words[8], 1.0f);   // colour 2 red
    EXPECT_FLOAT_EQ(words[10], 0.0f);  // colour 2 blue
    EXPECT_FLOAT_EQ(words[28], 3.0f);
    EXPECT_FLOAT_EQ(words[29], 5.0f);

    g.lightcolor.Set(0.25f, 0.5f, 0.75f, 1.0f);
    g.normallength = 7.0f;
    cgfx copy(g);
    ExpectColor(copy.lightcolor, 0.25f, 0.5f, 0.75f, 1.0f);
    EXPECT_FLOAT_EQ(copy.normallength, 7.0f);
    cgfx assigned;
    assigned = g;
    ExpectColor(assigned.lightcolor, 0.25f, 0.5f, 0.75f, 1.0f);
    assigned.Defaults();
    ExpectDefaults(assigned);
}

TEST(cgfx, LibrarySettingsAreReplacedWholeAndReadAsCopies) {
    cgfx const saved = GetGfxInfo();
    cgfx same = GetGfxInfo();
    SetGfxInfo(same);
    ExpectDefaults(GetGfxInfo());

    cgfx changed;
    changed.cameracolor.Set(0.5f, 0.5f, 0.5f, 1.0f);
    changed.linewidth = 2.0f;
    SetGfxInfo(changed);
    changed.linewidth = 9.0f;  // the library holds its own copy
    cgfx read = GetGfxInfo();
    ExpectColor(read.cameracolor, 0.5f, 0.5f, 0.5f, 1.0f);
    EXPECT_FLOAT_EQ(read.linewidth, 2.0f);
    read.linewidth = 4.0f;
    EXPECT_FLOAT_EQ(GetGfxInfo().linewidth, 2.0f);

    cgfx restore = saved;
    SetGfxInfo(restore);
}
