#include <gtest/gtest.h>

#include "mesh/skinfixtures.h"
#include "scene/aimednodes.h"

namespace {

// A skin "Body" placed at (0, 0, 3) with bones "Root" at (1, 0, 0) and "Tip" at (0, 2, 0) in
// MainScene: vertex 0 is weighed 3:1 to them, vertex 1 to the tip alone, vertex 2 shares vertex
// 0's skin vertex and vertex 3 has none. Its record ends in the skin section: the bone count,
// per bone a 64-byte name and a bind matrix, the skin's bind matrix, the skin vertex count and
// per skin vertex an influence count and four (bone, weight) pairs.
class SkinRecord : public SkinTest {
protected:
    void SetUp() override {
        SkinTest::SetUp();
        root = AddBoneNode("Root", cpoint3(1, 0, 0));
        tip = AddBoneNode("Tip", cpoint3(0, 2, 0));
        skin.SetName("Body");
        skin.SetPosition(0, cpoint3(0, 0, 3));
        SetSkinPoints(skin, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}});
        skin.AddBone(root);
        skin.AddBone(tip);
        Weigh(skin, 0, {{0, 0.75f}, {1, 0.25f}});
        Weigh(skin, 1, {{1, 1.0f}});
        skin.SetSkinVertIndex(2, 0);
    }
    static constexpr size_t kSection = 4 + 2 * (64 + 64) + 64 + 4 + 2 * (4 + 4 * 8);
    cnode *root = nullptr, *tip = nullptr;
    cskin skin;
};

TEST_F(SkinRecord, RoundTripsAndLinksTheBonesByName) {
    const std::string saved = SavedRecord(skin);
    cskin loaded, orphan;
    ASSERT_TRUE(LoadsWhole(loaded, saved, 16));
    EXPECT_EQ(SavedRecord(loaded), saved);
    // A bone no node answers to is dropped with its influences.
    tip->SetName("Renamed");
    ASSERT_EQ(LoadRecord(orphan, saved, 16), 1);
    EXPECT_EQ(BonesOf(orphan), (std::vector<cnode*>{root}));
    EXPECT_TRUE(HasInfluences(orphan, 0, {{0, 1.0f}}));
    EXPECT_TRUE(HasInfluences(orphan, 1, {}));
}

TEST_F(SkinRecord, FailsOnEveryTruncationAndOnCorruptCounts) {
    const std::string saved = SavedRecord(skin);
    for (size_t length = 0; length < saved.size(); ++length) {
        cskin truncated;
        EXPECT_EQ(LoadRecord(truncated, saved.substr(0, length), 16), 0) << length;
    }
    const size_t at = saved.size() - kSection, vertsAt = at + 4 + 2 * (64 + 64) + 64;
    const size_t firstVert = vertsAt + 4;
    const std::tuple<size_t, std::uint32_t, int, const char*> rows[] = {
        {at, 0x7FFFFFFF, 0, "bone count past the end"},
        {vertsAt, 0x10000000, 0, "skin vertex count past the end"},
        {firstVert, 5, 0, "five influences"},
        {firstVert + 4, 2, 0, "a bone index past the bones"},
        {firstVert + 8, 0xBF800000, 0, "a weight of -1"},
        {firstVert + 8, 0x7FC00000, 0, "a NaN weight"},
        {firstVert + 12, 0, 0, "one bone twice in a vertex"},
        {firstVert + 20, 7, 1, "unused pairs are ignored"}};
    for (const auto& [offset, word, result, why] : rows) {
        std::string bytes = saved;
        bytes.replace(offset, 4, ByteString().Word(word).bytes);
        cskin corrupt;
        EXPECT_EQ(LoadRecord(corrupt, bytes, 16), result) << why;
    }
}

}  // namespace
