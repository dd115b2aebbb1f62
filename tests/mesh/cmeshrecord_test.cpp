#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "cmaterial.h"
#include "cmesh.h"
#include "cscene.h"
#include "mesh/meshfixtures.h"
#include "projectfile.h"
#include "scene/aimednodes.h"
#include "support/bytestring.h"
#include "support/testsupport.h"

namespace {

// Materials "steel" (index 0) and "glass" (index 1) in MainScene while alive.
struct SceneMaterials {
    SceneMaterials() {
        MainScene.AddMaterial(steel, 1);
        MainScene.AddMaterial(glass, 1);
    }
    ~SceneMaterials() { MainScene.ClearMaterials(); }
    cmaterial* steel = new cmaterial("steel");
    cmaterial* glass = new cmaterial("glass");
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

TEST(MeshRecord, WritesTheNewestLayoutAfterTheBaseRecord) {
    SceneMaterials materials;
    cmesh mesh;
    BuildMesh(mesh, {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}}, {0, 1, 2});
    mesh.SetFaceMaterial(0, materials.glass);
    mesh.SetFaceSmGroups(0, 6);
    mesh.SetSkinVertIndex(2, 9);
    mesh.SetVertColor(1, ccolor(1.0f, 0.5f, 0.25f, 1.0f));
    mesh.SetEdgeFlags(1, ELEMENT_SELECTED);
    mesh.SetVertFlags(0, ELEMENT_HIDDEN);
    ByteString payload;
    payload.Ints({3, 0, 1, 3, 0, 0, 1, 1, 0, 0}).Floats({0, 0, 0, 1, 2, 0});
    // Per vertex: flags, position, normal, colour and skin vertex.
    payload.Word(ELEMENT_HIDDEN, 2).Floats({0, 0, 0, 0, 0, 0, 1, 1, 1, 1}).Word(0xFFFFFFFFu);
    payload.Word(0, 2).Floats({1, 0, 0, 0, 0, 0, 1.0f, 0.5f, 0.25f, 1.0f}).Word(0xFFFFFFFFu);
    payload.Word(0, 2).Floats({0, 2, 0, 0, 0, 0, 1, 1, 1, 1}).Word(9);
    payload.Word(0x0038, 2).Ints({0, 1, 2, -1, -1, -1}).Word(6).Ints({1});
    payload.Word(0, 2).Word(1, 2).Word(0, 2);
    const std::string bytes = SavedRecord(mesh);
    ASSERT_GT(bytes.size(), payload.bytes.size());
    EXPECT_EQ(bytes.substr(bytes.size() - payload.bytes.size()), payload.bytes);
    // A face whose material is in no list entry writes -1.
    cmaterial loose("loose");
    mesh.SetFaceMaterial(0, &loose);
    const std::string unlisted = SavedRecord(mesh);
    EXPECT_EQ(unlisted.substr(unlisted.size() - 10, 4), ByteString().Ints({-1}).bytes);
}

TEST(MeshRecord, RoundTripsEveryArray) {
    SceneMaterials materials;
    cmesh mesh;
    MakeCube(mesh);
    mesh.SetNumTVerts(2);
    mesh.SetTVert(1, cpoint3(0.25f, 0.75f, 0));
    cface face = mesh.GetFace(4);
    face.tv[0] = 0, face.tv[1] = 1, face.tv[2] = 0;
    face.flags = ELEMENT_SELECTED;
    mesh.SetFace(4, face);
    mesh.SetFaceMaterial(4, materials.steel);
    mesh.SetFaceSmGroups(7, 0x80000001u);
    mesh.SetEdgeFlags(30, ELEMENT_HIDDEN | 0x40);
    mesh.SetNormal(3, cpoint3(0, 0, 1));
    cmesh loaded;
    RecordStream record(SavedRecord(mesh));
    ASSERT_TRUE(record.opened);
    ASSERT_EQ(loaded.Load(record.in, 16), 1);
    EXPECT_TRUE(Snapshot(loaded) == Snapshot(mesh));
    for (int f = 0; f < 12; ++f) EXPECT_EQ(loaded.GetFaceMaterial(f), mesh.GetFaceMaterial(f));
    EXPECT_EQ(loaded.NumTVerts(), 2);
    EXPECT_EQ(loaded.GetNormal(3), cpoint3(0, 0, 1));
    EXPECT_EQ(loaded.NumSelFaces(), 1);
    EXPECT_EQ(loaded.NumHiddenEdges(), 1);
    EXPECT_EQ(loaded.GetTVert(1), cpoint3(0.25f, 0.75f, 0));
    // Face 4 is (0,0,0), (1,0,0), (1,0,1); the first corner alone counts as an empty box.
    EXPECT_TRUE(Near(loaded.GetSelFacesCenter(), cpoint3(1, 0, 0.5f)));
    cpoint3 n;
    EXPECT_EQ(loaded.GetSmNormal(n, 7, 0), 1);  // smoothing normals rebuilt
    EXPECT_TRUE(MeshIsValid(loaded));
}

TEST(MeshRecord, ReadsOlderLayouts) {
    SceneMaterials materials;
    AssertRecorder recorder;
    struct Case {
        unsigned long version;
        const char* material;
        std::uint32_t mask, skin;
        cmaterial* expected;
        int hiddenFaces;
    };
    const Case cases[] = {
        {3, "steel", 1, 0xFFFFFFFFu, materials.steel, 0},
        {5, "steel", 1, 0xFFFFFFFFu, materials.steel, 1},
        {5, "", 1, 0xFFFFFFFFu, nullptr, 1},
        {7, "glass", 1, 0xFFFFFFFFu, materials.glass, 1},
        {8, "glass", 4, 0xFFFFFFFFu, materials.glass, 1},
        {9, "none", 4, 7, nullptr, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.version);
        cmesh mesh;
        RecordStream record(OldRecord(c.version, c.material));
        ASSERT_EQ(mesh.Load(record.in, c.version), 1);
        EXPECT_EQ(record.in.BytesLeft(), 0u);
        ASSERT_EQ(mesh.NumFaces(), 1);
        EXPECT_EQ(std::tuple(mesh.GetFace(0).smgroups, mesh.GetSkinVertIndex(1),
                             mesh.GetFaceMaterial(0), mesh.GetEdgeFlags(1)),
                  std::tuple(c.mask, c.skin, c.expected, 1));
        // Counters are taken as stored, not recounted.
        EXPECT_EQ(std::tuple(mesh.NumSelVerts(), mesh.NumHiddenFaces(), mesh.NumSelEdges()),
                  std::tuple(1, c.hiddenFaces, 0));
        EXPECT_EQ(mesh.GetVertColor(0), ccolor(1.0f, 0.5f, 0.25f, 1.0f));
    }
    EXPECT_EQ(recorder.Count(), 0);
}

TEST(MeshRecord, FitsTheEdgeFlagsToTheFacesAndRefusesTruncation) {
    std::string record = OldRecord(16, "");
    // The header claims one edge flag instead of three, 9 selected edges, 7 hidden edges and no
    // hidden face although the face is hidden.
    const std::size_t header = record.size() - (64 + 3 * 46 + 34 + 6);
    ByteString fix;
    fix.Ints({1, 1, 0, 9, 0, 0, 7});
    record.replace(header + 12, fix.bytes.size(), fix.bytes);
    record.resize(record.size() - 4);
    cmesh mesh;
    RecordStream in(record);
    ASSERT_EQ(mesh.Load(in.in, 16), 1);
    EXPECT_EQ(mesh.NumEdges(), 3);
    EXPECT_EQ(std::tuple(mesh.GetEdgeFlags(0), mesh.GetEdgeFlags(2), mesh.NumSelEdges(),
                         mesh.NumHiddenEdges()),
              std::tuple(0, 0, 3, 3));
    // Unhiding the face with its counter at 0 leaves the counter at 0.
    mesh.SetFaceFlags(0, 0);
    EXPECT_EQ(mesh.NumHiddenFaces(), 0);
    const std::string full = OldRecord(16, "");
    for (std::size_t cut : {std::size_t(1), std::size_t(40), std::size_t(200)}) {
        cmesh truncated;
        RecordStream shortened(full.substr(0, full.size() - cut));
        EXPECT_EQ(truncated.Load(shortened.in, 16), 0) << cut;
    }
    // A vertex count far beyond the stream is refused before anything is allocated.
    std::string huge = full;
    huge.replace(header, 4, ByteString().Ints({0x7FFFFFFF}).bytes);
    cmesh refused;
    RecordStream hugeIn(huge);
    EXPECT_EQ(refused.Load(hugeIn.in, 16), 0);
}

TEST(MeshRecord, ComesBackFromAProjectFile) {
    TempDir dir;
    MainScene.Clear();
    cmaterial* steel = new cmaterial("steel");
    MainScene.AddMaterial(steel, 1);
    cmesh* mesh = CreateNewMesh();
    ASSERT_NE(mesh, nullptr);
    ASSERT_TRUE(LoadObjMesh(*mesh, "teapot.obj"));
    mesh->SetName("teapot");
    mesh->SetFaceMaterial(10, steel);
    mesh->SetFaceSmGroups(-1, 1);
    mesh->SetEdgeFlags(5, ELEMENT_HIDDEN);
    mesh->SetFaceFlags(3, ELEMENT_SELECTED);
    const auto before = Snapshot(*mesh);
    MainScene.AddNode(mesh, 1);
    const std::string path = dir.File("teapot.orv");
    ASSERT_EQ(SaveProjectFile(path.c_str()), 1);
    MainScene.Clear();
    ASSERT_EQ(LoadProjectFile(path.c_str()), 1);
    ASSERT_EQ(MainScene.NumNodes(), 1);
    cnode* node = MainScene.GetNodeAt(0);
    ASSERT_EQ(node->GetTypeID(), TYPE_MESH);
    const cmesh& loaded = *static_cast<cmesh*>(node);
    EXPECT_STREQ(loaded.GetName(), "teapot");
    EXPECT_TRUE(Snapshot(loaded) == before);
    ASSERT_EQ(MainScene.NumMaterials(), 1);
    EXPECT_EQ(loaded.GetFaceMaterial(10), MainScene.GetMaterialAt(0));
    EXPECT_EQ(loaded.GetFaceMaterial(11), nullptr);
    EXPECT_EQ(loaded.NumSelFaces(), 1);
    EXPECT_TRUE(MeshIsValid(loaded));
    MainScene.Clear();
}
