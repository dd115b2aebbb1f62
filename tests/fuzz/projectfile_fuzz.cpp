// Fuzz target: LoadProjectFile over untrusted files.
//
// Before each input MainScene holds a small known scene. Whatever the bytes, the load must end
// without a crash. A refused file must leave that scene exactly as it was: the same objects,
// names, parents, flags, keys, counters, settings and clock. A loaded scene must be sound: every
// parent in the scene and listing the node among its children, no parent chain that loops,
// counters that agree with the flags, a clock within its range, a key in every track; saved
// again, it must load again with the same nodes and materials in the same order.
#include <cstring>

#include "fuzz/fuzztarget.h"
#include "projectfile.h"
#include "scene/projectfile.h"

namespace {

// The scene before each input: the car, or an empty scene.
void BuildBaseline(bool car = true) {
    MainScene.Clear();
    ResetAnim();
    if (!car) return;
    BuildCarScene();
    MainScene.Select(MainScene.FindNode("Car"));
}

std::string SavedScene(const char* name) {
    const std::string path = FuzzPath(name);
    FUZZ_CHECK(SaveProjectFile(path.c_str()) == 1);
    return path;
}

void CheckNode(cnode* node, int count) {
    FUZZ_CHECK(std::memchr(node->GetName(), '\0', NODE_NAME_SIZE) != nullptr);
    FUZZ_CHECK(node->GetAnimPtr()->NumKeys() >= 1);
    cnode* parent = node->GetParent();
    if (parent) FUZZ_CHECK(MainScene.Find(parent) >= 0 && parent->GetChild(node) >= 0);
    for (int c = 0; c < node->NumChildren(); ++c)
        FUZZ_CHECK(node->GetChild(c)->GetParent() == node);
    int steps = 0;
    for (const cnode* p = parent; p; p = p->GetParent()) FUZZ_CHECK(++steps <= count);
}

void CheckSound() {
    const int count = MainScene.NumNodes();
    int hidden = 0, selected = 0;
    for (int i = 0; i < count; ++i) {
        cnode* node = MainScene.GetNodeAt(i);
        CheckNode(node, count);
        hidden += (node->GetFlags() & FLAG_HIDDEN) ? 1 : 0;
        selected += (node->GetFlags() & FLAG_SELECTED) ? 1 : 0;
    }
    FUZZ_CHECK(hidden == MainScene.NumHidden() && selected == MainScene.NumSelected());
    FUZZ_CHECK(GetAnimTPF() >= 1 && GetAnimStart() >= 0 && GetAnimStart() <= GetAnimEnd());
    FUZZ_CHECK(GetAnimTime() >= GetAnimStart() && GetAnimTime() <= GetAnimEnd());
}

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < MainScene.NumNodes(); ++i)
        names.push_back(MainScene.GetNodeAt(i)->GetName());
    names.push_back("|");
    for (int i = 0; i < MainScene.NumMaterials(); ++i)
        names.push_back(MainScene.GetMaterialAt(i)->GetName());
    return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = FuzzFile(data, size);
    BuildBaseline();
    const std::string before = DescribeMainScene(true);
    const int loaded = LoadProjectFile(input.c_str());
    FUZZ_CHECK(loaded == 0 || loaded == 1);
    if (!loaded) {
        FUZZ_CHECK(DescribeMainScene(true) == before);
        return 0;
    }
    CheckSound();
    const std::vector<std::string> names = Names();
    FUZZ_CHECK(LoadProjectFile(SavedScene("again.orv").c_str()) == 1);
    FUZZ_CHECK(Names() == names);
    CheckSound();
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    for (bool car : {false, true}) {
        BuildBaseline(car);
        seeds.push_back(ReadFileBytes(SavedScene("seed.orv")));
    }
    for (std::uint32_t version : {6u, 12u, 16u}) seeds.push_back(RobotFile(version).Bytes());
    // Marks at every record, so that the records are read on several threads.
    ProjectFile marked = RobotFile(16);
    marked.markStride = 1;
    seeds.push_back(marked.Bytes());
    BuildBaseline(false);
    return seeds;
}
