#include "cio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "support/testsupport.h"

namespace {

void WriteFileBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

bool FileExists(const std::string& path) {
    return std::ifstream(path).good();
}

TEST(CioStream, OpenReturnsZeroOnSuccessAndMinusOneWhenTheFileCannotBeOpened) {
    TempDir dir;
    cio_load load;
    EXPECT_EQ(load.Open(dir.File("missing.bin").c_str()), -1);
    EXPECT_EQ(load.GetPosition(), -1);  // a failed Open leaves the stream closed
    EXPECT_EQ(load.Open(nullptr), -1);

    cio_save save;
    EXPECT_EQ(save.Open(dir.File("no/such/folder.bin").c_str()), -1);
    EXPECT_EQ(save.GetPosition(), -1);
    EXPECT_EQ(save.Open(dir.File("new.bin").c_str()), 0);
    EXPECT_EQ(save.GetPosition(), 0);
    EXPECT_EQ(save.Close(), 0);
    EXPECT_EQ(load.Open(dir.File("new.bin").c_str()), 0);
    EXPECT_EQ(load.Size(), 0);
}

TEST(CioStream, OpenOnAnOpenStreamReturnsZeroAndKeepsTheHeldFile) {
    TempDir dir;
    const std::string first = dir.File("first.bin"), second = dir.File("second.bin");
    cio_save save;
    ASSERT_EQ(save.Open(first.c_str()), 0);
    char ab[] = "AB", cd[] = "CD";
    EXPECT_EQ(save.Write(ab, 2), 1);
    EXPECT_EQ(save.Open(second.c_str()), 0);
    EXPECT_EQ(save.Write(cd, 2), 1);
    save.Close();
    EXPECT_EQ(ReadFileBytes(first), "ABCD");
    EXPECT_FALSE(FileExists(second));

    cio_load load;
    ASSERT_EQ(load.Open(first.c_str()), 0);
    char byte = 0;
    EXPECT_EQ(load.Read(&byte, 1), 1);
    EXPECT_EQ(load.Open(dir.File("missing.bin").c_str()), 0);  // not -1: nothing is opened
    EXPECT_EQ(load.Read(&byte, 1), 1);
    EXPECT_EQ(byte, 'B');
}

TEST(CioStream, EveryOperationFailsWithoutAnOpenFile) {
    char buffer[4] = {'k', 'e', 'e', 'p'};
    cio_load load;
    EXPECT_EQ(load.Close(), 0);
    EXPECT_EQ(load.SetPosition(0, 0), -1);
    EXPECT_EQ(load.GetPosition(), -1);
    EXPECT_EQ(load.Size(), -1);
    EXPECT_EQ(load.Read(buffer, 4), 0);
    EXPECT_EQ(load.Read(buffer, 0), 0);
    EXPECT_EQ(load.Skip(0), 0);
    EXPECT_EQ(load.BytesLeft(), 0u);
    EXPECT_EQ(std::string(buffer, 4), "keep");

    cio_save save;
    EXPECT_EQ(save.Write(buffer, 4), 0);
    EXPECT_EQ(save.Skip(0, 64), 0);
    EXPECT_EQ(save.SetPosition(0, 2), -1);
    EXPECT_EQ(save.Size(), -1);
}

TEST(CioStream, WritesSkipsAndClosesThroughTheBaseDestructor) {
    TempDir dir;
    const std::string path = dir.File("out.bin");
    {
        std::unique_ptr<cio> base(new cio_save);
        auto& save = static_cast<cio_save&>(*base);
        ASSERT_EQ(save.Open(path.c_str()), 0);
        char xy[] = "xy";
        EXPECT_EQ(save.Write(nullptr, 8), 0);
        EXPECT_EQ(save.GetPosition(), 0);
        EXPECT_EQ(save.Write(xy, 2), 1);
        EXPECT_EQ(save.Skip(0, 64), 1);
        EXPECT_EQ(save.Skip('#', 3), 1);
        EXPECT_EQ(save.Skip('!', 0), 1);
        EXPECT_EQ(save.Write(xy, 0), 1);
        EXPECT_EQ(save.GetPosition(), 69);
    }  // the destructor closes and flushes
    EXPECT_EQ(ReadFileBytes(path), "xy" + std::string(64, '\0') + "###");
}

TEST(CioStream, SeeksFromEachOriginAndSizeKeepsThePosition) {
    TempDir dir;
    const std::string path = dir.File("ten.bin");
    WriteFileBytes(path, "0123456789");
    cio_load load;
    ASSERT_EQ(load.Open(path.c_str()), 0);
    EXPECT_EQ(load.SetPosition(3, 0), 0);
    EXPECT_EQ(load.Size(), 10);
    EXPECT_EQ(load.GetPosition(), 3);
    EXPECT_EQ(load.BytesLeft(), 7u);
    EXPECT_EQ(load.SetPosition(2, 1), 0);
    EXPECT_EQ(load.GetPosition(), 5);
    EXPECT_EQ(load.SetPosition(-2, 2), 0);
    char c = 0;
    EXPECT_EQ(load.Read(&c, 1), 1);
    EXPECT_EQ(c, '8');
    EXPECT_EQ(load.SetPosition(-1, 0), -1);  // the C library refuses a negative offset
    EXPECT_EQ(load.SetPosition(20, 0), 0);
    EXPECT_EQ(load.BytesLeft(), 0u);
}

TEST(CioStream, ReadsAndSkipsNeverGoPastTheEnd) {
    TempDir dir;
    const std::string path = dir.File("six.bin");
    WriteFileBytes(path, "abcdef");
    cio_load load;
    ASSERT_EQ(load.Open(path.c_str()), 0);
    char buffer[8] = {};
    EXPECT_EQ(load.Read(nullptr, 1), 0);
    EXPECT_EQ(load.Read(buffer, 4), 1);
    EXPECT_EQ(std::string(buffer, 4), "abcd");
    EXPECT_EQ(load.Read(buffer, 0), 1);
    EXPECT_EQ(load.Read(buffer, 4), 0);  // only two bytes were left
    EXPECT_EQ(load.Read(buffer, 1), 0);

    load.SetPosition(0, 0);
    EXPECT_EQ(load.Skip(2), 1);
    EXPECT_EQ(load.Skip(4), 1);
    EXPECT_EQ(load.GetPosition(), 6);
    EXPECT_EQ(load.Skip(0), 1);
    EXPECT_EQ(load.Skip(1), 0);
    load.SetPosition(1, 0);
    EXPECT_EQ(load.Skip(0xFFFFFFFFu), 0);
    EXPECT_EQ(load.GetPosition(), 6);  // stopped at the end
}

}  // namespace
