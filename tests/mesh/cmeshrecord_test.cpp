#include <gtest/gtest.h>

#include "cmaterial.h"
#include "mesh/meshfixtures.h"
#include "scene/aimednodes.h"

namespace {

constexpr std::uint32_t kNoSkin = 0xFFFFFFFFu;

// Materials "steel" (index 0) and "glass" (index 1) in MainScene while alive.
struct SceneMaterials {
    SceneMaterials() { MainScene.AddMaterial(steel, 1), MainScene.AddMaterial(glass, 1); }
    ~SceneMaterials() { MainScene.ClearMaterials(); }
    cmaterial *steel = new cmaterial("steel"), *glass = new cmaterial("glass");
};

// The record of a triangle mesh of 3 vertices and 1 face at `version`, all fields by hand.
std::string OldRecord(unsigned long version, const std::string& material) {
    ByteString r;
    r.bytes = BaseRecord(TYPE_MESH, 0, "old", ccolor(0.5f, 0.5f, 0.5f), version);
    r.Ints({3, 0, 1, 3, 1, 0});
    if (version >= 4) r.Ints({0, 0, 1, 0});
    r.Floats({0, 0, 0, 1, 1, 0});
    for (int i = 0; i < 3; ++i) {
        r.Word(i == 0 ? 1 : 0, 2)
            .Floats({static_cast<float>(i == 1), static_cast<float>(i == 2), 0});
        r.Floats({0, 0, 1, 1, 0.5f, 0.25f, 1});
        if (version >= 9) r.Word(7);
    }
    r.Word(0x0038 | 2, 2).Ints({0, 1, 2, -1, -1, -1});
    if (version >= 8) r.Word(4);
    if (version >= 6)
        r.Ints({material == "glass" ? 1 : -1});
    else
        r.Name(material, 32);
    r.Word(0, 2).Word(1, 2).Word(0, 2);
    return r.bytes;
}

}  // namespace

TEST(MeshRecord, WritesTheNewestLayoutAfterTheBaseRecordAndReadsItBack) {
    SceneMaterials materials;
    cmesh mesh, loaded;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}}, {0, 1, 2});
    mesh.SetNumTVerts(1);
    mesh.SetTVert(0, cpoint3(0.25f, 0.75f, 0));
    mesh.SetNormal(1, cpoint3(0, 0, 1));
    mesh.SetFaceFlags(0, ELEMENT_SELECTED);
    mesh.SetFaceMaterial(0, materials.glass);
    mesh.SetFaceSmGroups(0, 6);
    mesh.SetSkinVertIndex(2, 9);
    mesh.SetVertColor(1, ccolor(1.0f, 0.5f, 0.25f, 1.0f));
    mesh.SetEdgeFlags(1, ELEMENT_SELECTED);
    mesh.SetVertFlags(0, ELEMENT_HIDDEN);
    ByteString payload;
    payload.Ints({3, 1, 1, 3, 0, 1, 1, 1, 0, 0}).Floats({0, 0, 0, 1, 2, 0});
    // Per vertex: flags, position, normal, colour and skin vertex.
    payload.Word(ELEMENT_HIDDEN, 2).Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1}).Word(0xFFFFFFFFu);
    payload.Word(0, 2).Floats({1, 0, 0, 0, 0, 1, 1.0f, 0.5f, 0.25f, 1.0f}).Word(0xFFFFFFFFu);
    payload.Word(0, 2).Floats({0, 2, 0, 0, 0, 0, 1, 1, 1, 1}).Word(9).Floats({0.25f, 0.75f, 0});
    payload.Word(ELEMENT_SELECTED, 2).Ints({0, 1, 2, -1, -1, -1}).Word(6).Ints({1});
    payload.Word(0, 2).Word(1, 2).Word(0, 2);
    const std::string bytes = SavedRecord(mesh);
    EXPECT_EQ(bytes.substr(bytes.size() - payload.bytes.size()), payload.bytes);
    ASSERT_TRUE(LoadsWhole(loaded, bytes, 16));
    EXPECT_EQ(SavedRecord(loaded), bytes);
    // The centres and smoothing normals are rebuilt.
    EXPECT_TRUE(Near(loaded.GetSelFacesCenter(), cpoint3(0.5f, 1, 0)));
    EXPECT_TRUE(SmNormalIs(loaded, 0, 0, cpoint3(0, 0, -1)));
    // A face whose material is in no list entry writes -1.
    cmaterial loose("loose");
    mesh.SetFaceMaterial(0, &loose);
    EXPECT_EQ(SavedRecord(mesh).substr(bytes.size() - 10, 4), ByteString().Ints({-1}).bytes);
}

// Versions 4 (the selected-edge and hidden counts), 6 (material indices instead of names), 8
// (smoothing masks) and 9 (skin vertices) each add a field; counters are taken as stored.
TEST(MeshRecord, ReadsOlderLayouts) {
    SceneMaterials materials;
    const std::tuple<unsigned long, const char*, std::uint32_t, std::uint32_t, cmaterial*, int>
        cases[] = {{3, "steel", 1, kNoSkin, materials.steel, 0},
                   {5, "steel", 1, kNoSkin, materials.steel, 1},
                   {7, "glass", 1, kNoSkin, materials.glass, 1},
                   {8, "glass", 4, kNoSkin, materials.glass, 1},
                   {9, "none", 4, 7, nullptr, 1}};
    for (const auto& [version, material, mask, skin, expected, hiddenFaces] : cases) {
        cmesh mesh;
        ASSERT_TRUE(LoadsWhole(mesh, OldRecord(version, material), version)) << version;
        EXPECT_EQ(
            std::tuple(mesh.GetFace(0).smgroups, mesh.GetSkinVertIndex(1), mesh.GetFaceMaterial(0),
                       mesh.GetEdgeFlags(1), mesh.NumSelVerts(), mesh.NumHiddenFaces(),
                       mesh.NumSelEdges(), mesh.GetVertColor(0)),
            std::tuple(mask, skin, expected, 1, 1, hiddenFaces, 0, ccolor(1.0f, 0.5f, 0.25f, 1.0f)))
            << version;
    }
}

TEST(MeshRecord, FitsTheEdgeFlagsToTheFacesAndRefusesTruncation) {
    const std::string full = OldRecord(16, "");
    // The header claims one edge flag instead of three, 9 selected edges, 7 hidden edges and no
    // hidden face although the face is hidden.
    std::string record = full;
    const std::size_t header = record.size() - (64 + 3 * 46 + 34 + 6);
    const std::string fix = ByteString().Ints({1, 1, 0, 9, 0, 0, 7}).bytes;
    record.replace(header + 12, fix.size(), fix);
    record.resize(record.size() - 4);
    cmesh mesh;
    ASSERT_EQ(LoadRecord(mesh, record, 16), 1);
    EXPECT_EQ(std::tuple(mesh.NumEdges(), mesh.GetEdgeFlags(0), mesh.GetEdgeFlags(2),
                         mesh.NumSelEdges(), mesh.NumHiddenEdges()),
              std::tuple(3, 0, 0, 3, 3));
    // Unhiding the face with its counter at 0 leaves the counter at 0.
    mesh.SetFaceFlags(0, 0);
    EXPECT_EQ(mesh.NumHiddenFaces(), 0);
    for (std::size_t length = 0; length < full.size(); ++length) {
        cmesh truncated;
        EXPECT_EQ(LoadRecord(truncated, full.substr(0, length), 16), 0) << length;
    }
    // A vertex count far beyond the stream is refused before anything is allocated.
    std::string huge = full;
    huge.replace(header, 4, ByteString().Ints({0x7FFFFFFF}).bytes);
    cmesh refused;
    EXPECT_EQ(LoadRecord(refused, huge, 16), 0);
}
