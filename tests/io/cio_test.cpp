#include "cio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

TEST(CioStream, FailedOpenReturnsMinusOneAndEveryOperationFailsWithoutAFile) {
    TempDir dir;
    cio_load load;
    cio_save save;
    EXPECT_EQ(load.Open(dir.File("missing.bin").c_str()), -1);
    EXPECT_EQ(load.Open(nullptr), -1);
    EXPECT_EQ(save.Open(dir.File("no/such/folder.bin").c_str()), -1);
    char buffer[4] = {'k', 'e', 'e', 'p'};
    EXPECT_EQ((std::vector<long>{load.GetPosition(), load.SetPosition(0, 0), load.Size(),
                                 load.Read(buffer, 4), load.Read(buffer, 0), load.Skip(0),
                                 static_cast<long>(load.BytesLeft()), save.Write(buffer, 4),
                                 save.Skip(0, 64)}),
              (std::vector<long>{-1, -1, -1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(std::string(buffer, 4), "keep");
}

TEST(CioStream, OpenOnAnOpenStreamReturnsZeroAndKeepsTheHeldFile) {
    TempDir dir;
    const std::string first = dir.File("first.bin"), second = dir.File("second.bin");
    cio_save save;
    ASSERT_EQ(save.Open(first.c_str()), 0);
    char abcd[] = "ABCD";
    EXPECT_EQ(save.Write(abcd, 2), 1);
    EXPECT_EQ(save.Open(second.c_str()), 0);
    EXPECT_EQ(save.Write(abcd + 2, 2), 1);
    EXPECT_EQ(save.Close(), 0);
    EXPECT_EQ(ReadFileBytes(first), "ABCD");
    EXPECT_FALSE(std::ifstream(second).good());

    cio_load load;
    ASSERT_EQ(load.Open(first.c_str()), 0);
    EXPECT_EQ(load.Skip(1), 1);
    EXPECT_EQ(load.Open(dir.File("missing.bin").c_str()), 0);  // not -1: nothing is opened
    EXPECT_EQ(load.GetPosition(), 1);
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
        EXPECT_EQ(save.Write(xy, 2), 1);
        EXPECT_EQ(save.Skip(0, 64), 1);
        EXPECT_EQ(save.Skip('#', 3), 1);
        EXPECT_EQ(save.Skip('!', 0), 1);
        EXPECT_EQ(save.Write(xy, 0), 1);
        EXPECT_EQ(save.GetPosition(), 69);
    }  // the destructor closes and flushes
    EXPECT_EQ(ReadFileBytes(path), "xy" + std::string(64, '\0') + "###");
}

TEST(CioStream, SeeksReadsAndSkipsNeverGoPastTheEnd) {
    TempDir dir;
    const std::string path = dir.File("ten.bin");
    std::ofstream(path, std::ios::binary) << "0123456789";
    cio_load load;
    ASSERT_EQ(load.Open(path.c_str()), 0);
    EXPECT_EQ(load.SetPosition(3, 0), 0);
    EXPECT_EQ(load.Size(), 10);
    EXPECT_EQ(load.GetPosition(), 3);  // Size keeps the position
    EXPECT_EQ(load.BytesLeft(), 7u);
    EXPECT_EQ(load.SetPosition(2, 1), 0);
    EXPECT_EQ(load.GetPosition(), 5);
    EXPECT_EQ(load.SetPosition(-4, 2), 0);
    EXPECT_EQ(load.SetPosition(-1, 0), -1);  // the C library refuses a negative offset

    char buffer[8] = {};
    EXPECT_EQ(load.Read(nullptr, 1), 0);
    EXPECT_EQ(load.Read(buffer, 2), 1);
    EXPECT_EQ(std::string(buffer, 2), "67");
    EXPECT_EQ(load.Read(buffer, 0), 1);
    EXPECT_EQ(load.Read(buffer, 4), 0);  // only two bytes were left

    load.SetPosition(1, 0);
    EXPECT_EQ(load.Skip(5), 1);
    EXPECT_EQ(load.Skip(0), 1);
    EXPECT_EQ(load.BytesLeft(), 4u);
    EXPECT_EQ(load.Skip(0xFFFFFFFFu), 0);
    EXPECT_EQ(load.GetPosition(), 10);  // stopped at the end
    EXPECT_EQ(load.SetPosition(20, 0), 0);
    EXPECT_EQ(load.BytesLeft(), 0u);
}

// Files several blocks long: reads, skips and seeks that cross block edges see the file's bytes
// at the positions they ask for, and a writer's waiting bytes count in its position and size.
TEST(CioStream, BytesCrossBlockEdgesInBothDirections) {
    TempDir dir;
    const std::string path = dir.File("long.bin");
    std::string bytes(200000, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 % 251);
    {
        cio_save save;
        ASSERT_EQ(save.Open(path.c_str()), 0);
        ASSERT_EQ(save.Write(&bytes[0], 10), 1);
        EXPECT_EQ(save.Size(), 10);                   // still waiting in the block
        ASSERT_EQ(save.Write(&bytes[10], 70000), 1);  // larger than a block
        ASSERT_EQ(save.Write(&bytes[70010], 129990), 1);
        EXPECT_EQ(save.GetPosition(), 200000);
        // Patching earlier bytes hands the waiting ones over first.
        ASSERT_EQ(save.SetPosition(65530, 0), 0);
        char patch[12] = "patchpatch!";
        ASSERT_EQ(save.Write(patch, 11), 1);
        bytes.replace(65530, 11, patch, 11);
        EXPECT_EQ(save.Size(), 200000);
    }
    ASSERT_EQ(ReadFileBytes(path), bytes);

    cio_load load;
    ASSERT_EQ(load.Open(path.c_str()), 0);
    std::string got(100, '\0');
    const auto readAt = [&](long at, unsigned int n) {
        got.assign(n, '\0');
        return load.SetPosition(at, 0) == 0 && load.Read(&got[0], n) == 1 &&
               got == bytes.substr(static_cast<size_t>(at), n) && load.GetPosition() == at + n;
    };
    EXPECT_TRUE(readAt(65500, 100));  // across the first block's end
    EXPECT_TRUE(readAt(65490, 20));   // back inside the block just read
    EXPECT_TRUE(readAt(10, 150000));  // larger than a block
    EXPECT_TRUE(readAt(199990, 10));  // the last bytes
    ASSERT_EQ(load.SetPosition(-70000, 1), 0);
    EXPECT_EQ(load.GetPosition(), 130000);
    EXPECT_EQ(load.Skip(69999), 1);
    EXPECT_EQ(load.BytesLeft(), 1u);
    EXPECT_EQ(load.Read(&got[0], 2), 0);
    EXPECT_EQ(load.GetPosition(), 200000);
}

}  // namespace
