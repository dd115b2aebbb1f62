// Fuzz target: LoadProjectFile over untrusted files.
//
// Before each input MainScene holds a small known scene. Whatever the bytes, the load must end
// without a crash. A refused file must leave that scene exactly as it was: the same objects,
// names, parents, flags, keys, counters, settings and clock. A loaded scene must be sound: every
// parent in the scene and listing the node among its children, no parent chain that loops,
// counters that agree with the flags, a clock within its range, a key in every track; saved
// again, it must load again with the same nodes and materials in the same order.
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzztarget.h"
#include "projectfile.h"
#include "scene/projectfile.h"
#include "support/testsupport.h"

namespace {

const TempDir& Folder() {
    static const TempDir folder;
    return folder;
}

std::string SavedScene() {
    const std::string path = Folder().File("seed.orv");
    FUZZ_CHECK(SaveProjectFile(path.c_str()) == 1);
    return ReadFileBytes(path);
}

void BuildBaseline() {
    MainScene.Clear();
    ResetAnim();
    BuildCarScene();
    MainScene.Select(MainScene.FindNode("Car"));
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

void CheckSavesAndLoadsAgain() {
    const std::vector<std::string> names = Names();
    const std::string path = Folder().File("again.orv");
    FUZZ_CHECK(SaveProjectFile(path.c_str()) == 1);
    FUZZ_CHECK(LoadProjectFile(path.c_str()) == 1);
    FUZZ_CHECK(Names() == names);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Folder().File("input.orv");
    WriteFileBytes(input, std::string(reinterpret_cast<const char*>(data), size));
    BuildBaseline();
    const std::string before = DescribeMainScene(true);
    const int loaded = LoadProjectFile(input.c_str());
    FUZZ_CHECK(loaded == 0 || loaded == 1);
    if (!loaded) {
        FUZZ_CHECK(DescribeMainScene(true) == before);
        return 0;
    }
    CheckSound();
    CheckSavesAndLoadsAgain();
    CheckSound();
    return 0;
}

std::vector<std::string> FuzzSeeds() {
    std::vector<std::string> seeds;
    MainScene.Clear();
    ResetAnim();
    seeds.push_back(SavedScene());
    BuildBaseline();
    seeds.push_back(SavedScene());
    for (std::uint32_t version : {6u, 12u, 16u}) seeds.push_back(RobotFile(version).Bytes());
    MainScene.Clear();
    ResetAnim();
    return seeds;
}
