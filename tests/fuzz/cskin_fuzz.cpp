// Fuzz target: the skin record over untrusted files.
//
// The input is loaded as a skin record of versions 8 (no skin vertex indices in the mesh
// part), 12 (32-byte names) and 16 (the newest layout), each into a fresh skin, while MainScene
// holds two nodes that bones may name. Whatever the bytes, a load must end without a crash; a
// skin that loaded must hold only influences on its own bones with positive weights, deform
// without reading outside its arrays, and save a record that loads again to one of the same
// length.
#include <cmath>

#include "cscene.h"
#include "cskin.h"
#include "fuzz/fuzztarget.h"

namespace {

// Two bones in MainScene for the records to name, made once.
void PlaceBones() {
    static bool placed = false;
    if (placed) return;
    placed = true;
    for (const char* name : {"Root", "Tip"}) MainScene.AddNode(new cnode(name, ccolor()), 1);
    MainScene.FindNode("Tip")->SetPosition(0, cpoint3(0, 2, 0));
}

void CheckLoaded(cskin& skin) {
    for (int b = 0; b < skin.NumBones(); ++b) FUZZ_CHECK(skin.GetBone(b) != nullptr);
    for (int s = 0; s < skin.NumSkinVerts(); ++s) {
        const cskinvert sv = skin.GetSkinVert(s);
        FUZZ_CHECK(sv.count >= 0 && sv.count <= SKIN_MAX_INFLUENCES);
        for (int k = 0; k < sv.count; ++k) {
            FUZZ_CHECK(sv.influences[k].bone >= 0 && sv.influences[k].bone < skin.NumBones());
            FUZZ_CHECK(std::isfinite(sv.influences[k].weight) && sv.influences[k].weight > 0);
        }
    }
    FUZZ_CHECK((skin.GetDeformedVerts() != nullptr) == (skin.NumVerts() > 0));
    CheckSavedRecordReloads(skin);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PlaceBones();
    const std::string input = FuzzFile(data, size);
    for (unsigned long version : {8ul, 12ul, 16ul}) {
        cskin skin;
        const int loaded = LoadRecord(skin, input, version);
        FUZZ_CHECK(loaded == 0 || loaded == 1);
        if (loaded) CheckLoaded(skin);
    }
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    PlaceBones();
    cskin skinned;
    const cpoint3 points[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 1}};
    const int indices[] = {0, 1, 2, 1, 3, 2};
    skinned.SetMesh(points, nullptr, nullptr, indices, 4, 0, 2);
    skinned.AddBone(MainScene.FindNode("Root"));
    skinned.AddBone(MainScene.FindNode("Tip"));
    skinned.AssignNearestBones(2);
    skinned.SetSkinVertIndex(3, 0);
    return {ReadFileBytes(SaveRecord(cskin())), ReadFileBytes(SaveRecord(skinned))};
}
