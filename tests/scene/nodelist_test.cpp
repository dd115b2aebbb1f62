#include "nodelist.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "cnode.h"
#include "cscene.h"
#include "scene/projectfile.h"
#include "support/testsupport.h"

namespace {

class NodeListTest : public ::testing::Test {
protected:
    void TearDown() override {
        NodeList::Clear();
        MainScene.Clear();
    }
    // Writes `bytes` to a file, opens it and moves to `position`.
    cio_load& Open(const std::string& bytes, long position = 0) {
        const std::string path = folder.File("project.orv");
        WriteFileBytes(path, bytes);
        in.Close();
        EXPECT_EQ(in.Open(path.c_str()), 0);
        EXPECT_EQ(in.SetPosition(position, 0), 0);
        return in;
    }
    // ReadNodeNames refuses `bytes`, keeps no table and restores the position.
    void ExpectRefused(const std::string& bytes, const char* why) {
        AssertRecorder recorder;
        cio_load& stream = Open(bytes, 5);
        EXPECT_EQ(NodeList::ReadNodeNames(stream), 0) << why;
        EXPECT_EQ(NodeList::IsLoaded(), 0) << why;
        EXPECT_EQ(stream.GetPosition(), 5) << why;
        EXPECT_EQ(recorder.Count(), 0) << why << ": nothing may be allocated for it";
    }

    TempDir folder;
    cio_load in;
};

TEST_F(NodeListTest, AnswersTheSceneNodeBearingEachStoredName) {
    auto* sphere = new cnode("Sphere01", ccolor());
    auto* box = new cnode("Box01", ccolor());
    MainScene.AddNode(sphere, 1);
    MainScene.AddNode(box, 1);
    // Without a table the scene's own order answers.
    EXPECT_EQ(NodeList::GetNodeAt(0), sphere);
    EXPECT_EQ(NodeList::NumNodes(), 2);

    ProjectFile file;
    file.nodes = {"Box01", "Camera01", "Sphere01", std::string(70, 'n')};
    file.materials = {"Chrome"};
    cio_load& stream = Open(file.Bytes(), 100);
    ASSERT_EQ(NodeList::ReadNodeNames(stream), 1);
    EXPECT_EQ(stream.GetPosition(), 100) << "the position is restored";
    EXPECT_EQ(NodeList::NumNodes(), 4);
    // Entry 1: no scene node bears the name.
    for (auto [at, node] :
         {std::pair<int, cnode*>{0, box}, {1, nullptr}, {2, sphere}, {4, nullptr}, {-1, nullptr}})
        EXPECT_EQ(NodeList::GetNodeAt(at), node) << at;
    EXPECT_STREQ(NodeList::GetNameAt(1), "Camera01") << "the name whether or not a node bears it";
    EXPECT_EQ(NodeList::GetNameAt(3), std::string(63, 'n'));
    EXPECT_EQ(NodeList::GetNameAt(4), nullptr);
    // A 64-byte field without a terminator is read as its first 63 characters.
    auto* longName = new cnode(std::string(70, 'n').c_str(), ccolor());
    MainScene.AddNode(longName, 1);
    EXPECT_EQ(NodeList::GetNodeAt(3), longName);

    EXPECT_EQ(NodeList::FindNode("Box01"), box);
    EXPECT_EQ(NodeList::Find(sphere), 0);

    NodeList::Clear();
    EXPECT_EQ(NodeList::GetNameAt(0), nullptr);
    EXPECT_EQ(NodeList::GetNodeAt(1), box);
    EXPECT_EQ(NodeList::NumNodes(), 3);
}

TEST_F(NodeListTest, RefusesForeignNewerAndInconsistentFiles) {
    ProjectFile good, newer, wrongMagic;
    good.nodes = {"a", "b"};
    const std::string bytes = good.Bytes();
    newer.version = 17;
    wrongMagic.magic = "VRO#";
    const auto changed = [&](std::initializer_list<std::pair<std::size_t, std::uint32_t>> words) {
        std::string changed = bytes;
        for (const auto& [at, word] : words) ProjectFile::SetWord(changed, at, word);
        return changed;
    };
    const std::pair<const char*, std::string> refused[] = {
        {"version 17", newer.Bytes()},
        {"the magic's bytes reversed", wrongMagic.Bytes()},
        {"a header shorter than 72 bytes", bytes.substr(0, 71)},
        {"header and table disagree on the count", changed({{kNodeCountAt, 3}})},
        {"the last name is cut off", bytes.substr(0, bytes.size() - 10)},
        {"a count far beyond the file", changed({{kNodeCountAt, 0x7FFFFFFF}, {72, 0x7FFFFFFF}})},
        {"a table offset beyond the file", changed({{kNodeOffsetAt, 0xFFFFFFF0u}})}};
    for (const auto& [why, refusedBytes] : refused) ExpectRefused(refusedBytes, why);
    // A refused read also drops a table read before.
    ASSERT_EQ(NodeList::ReadNodeNames(Open(bytes)), 1);
    ExpectRefused(newer.Bytes(), "version 17 after a good file");

    ProjectFile oldest = good, empty;
    oldest.version = 1;
    EXPECT_EQ(NodeList::ReadNodeNames(Open(oldest.Bytes())), 1);
    EXPECT_EQ(NodeList::ReadNodeNames(Open(empty.Bytes())), 1);
    EXPECT_EQ(NodeList::NumNodes(), 0) << "an empty table is a loaded table";
}

}  // namespace
