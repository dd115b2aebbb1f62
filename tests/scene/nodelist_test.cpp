#include "nodelist.h"

#include <gtest/gtest.h>

#include "scene/projectfile.h"

namespace {

class NodeListTest : public ::testing::Test {
protected:
    void TearDown() override {
        NodeList::Clear();
        MainScene.Clear();
    }
    // Reads the node names of the file `bytes` from stream position `position`.
    int Read(const std::string& bytes, long position) {
        WriteFileBytes(path, bytes);
        in.Close();
        EXPECT_TRUE(in.Open(path.c_str()) == 0 && in.SetPosition(position, 0) == 0);
        return NodeList::ReadNodeNames(in);
    }

    TempDir folder;
    const std::string path = folder.File("project.orv");
    cio_load in;
};

TEST_F(NodeListTest, AnswersTheSceneNodeBearingEachStoredName) {
    auto* sphere = new cnode("Sphere01", ccolor());
    auto* box = new cnode("Box01", ccolor());
    auto* longName = new cnode(std::string(70, 'n').c_str(), ccolor());
    for (cnode* node : {sphere, box, longName}) MainScene.AddNode(node, 1);
    ProjectFile file;
    file.nodes = {"Box01", "Camera01", "Sphere01", std::string(70, 'n')};
    ASSERT_EQ(Read(file.Bytes(), 100), 1);
    EXPECT_EQ(in.GetPosition(), 100) << "the position is restored";
    // A 64-byte field without a terminator is read as its first 63 characters.
    std::vector<cnode*> found;
    for (int at = -1; at <= 4; ++at) found.push_back(NodeList::GetNodeAt(at));
    EXPECT_EQ(found, (std::vector<cnode*>{nullptr, box, nullptr, sphere, longName, nullptr}));
    EXPECT_STREQ(NodeList::GetNameAt(1), "Camera01") << "the name whether or not a node bears it";
    NodeList::Clear();
    EXPECT_EQ(NodeList::GetNodeAt(1), box) << "without a table the scene's order answers";
}

// The replayed fuzz target covers foreign magic, short headers and newer versions.
TEST_F(NodeListTest, RefusesInconsistentFilesDroppingTheTableReadBefore) {
    ProjectFile good;
    good.nodes = {"a", "b"};
    const std::string bytes = good.Bytes();
    std::string absurd = bytes;
    ProjectFile::SetWord(absurd, kNodeCountAt, 0x7FFFFFFF);
    ProjectFile::SetWord(absurd, 72, 0x7FFFFFFF);
    // A refused read also restores the position and allocates nothing; the last name cut off,
    // a count far beyond the file.
    for (const std::string& refused : {bytes.substr(0, 72 + 4 + 64 + 60), absurd}) {
        ASSERT_EQ(Read(bytes, 0), 1);
        AssertRecorder recorder;
        EXPECT_EQ(Read(refused, 5), 0) << refused.size();
        EXPECT_EQ((std::vector<long>{NodeList::IsLoaded(), recorder.Count(), in.GetPosition()}),
                  (std::vector<long>{0, 0, 5}))
            << refused.size();
    }
}

}  // namespace
