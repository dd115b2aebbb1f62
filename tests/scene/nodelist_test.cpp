#include "nodelist.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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
    // Reads the node names of the file `bytes` from stream position `position`.
    int Read(const std::string& bytes, long position = 0) {
        const std::string path = folder.File("project.orv");
        WriteFileBytes(path, bytes);
        in.Close();
        EXPECT_EQ(in.Open(path.c_str()), 0);
        EXPECT_EQ(in.SetPosition(position, 0), 0);
        return NodeList::ReadNodeNames(in);
    }

    TempDir folder;
    cio_load in;
};

TEST_F(NodeListTest, AnswersTheSceneNodeBearingEachStoredName) {
    auto* sphere = new cnode("Sphere01", ccolor());
    auto* box = new cnode("Box01", ccolor());
    auto* longName = new cnode(std::string(70, 'n').c_str(), ccolor());
    for (cnode* node : {sphere, box, longName}) MainScene.AddNode(node, 1);
    ProjectFile file;
    file.nodes = {"Box01", "Camera01", "Sphere01", std::string(70, 'n')};
    file.materials = {"Chrome"};
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

TEST_F(NodeListTest, RefusesForeignNewerAndInconsistentFiles) {
    ProjectFile good, newer, wrongMagic;
    good.nodes = {"a", "b"};
    newer.version = 17;
    wrongMagic.magic = "VRO#";
    const std::string bytes = good.Bytes();
    std::string absurd = bytes;
    ProjectFile::SetWord(absurd, kNodeCountAt, 0x7FFFFFFF);
    ProjectFile::SetWord(absurd, 72, 0x7FFFFFFF);
    // A refused read also drops a table read before, restores the position and allocates
    // nothing; the magic's bytes reversed, a short header, the last name cut off, a count far
    // beyond the file.
    for (const std::string& refused : {newer.Bytes(), wrongMagic.Bytes(), bytes.substr(0, 71),
                                       bytes.substr(0, 72 + 4 + 64 + 60), absurd}) {
        ASSERT_EQ(Read(bytes), 1);
        AssertRecorder recorder;
        EXPECT_EQ(Read(refused, 5), 0) << refused.size();
        EXPECT_EQ(NodeList::IsLoaded() + recorder.Count(), 0) << refused.size();
        EXPECT_EQ(in.GetPosition(), 5) << refused.size();
    }
}

}  // namespace
