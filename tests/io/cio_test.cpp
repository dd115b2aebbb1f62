#include "cio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/testsupport.h"

namespace {

TEST(CioStream, OpenFailsWithMinusOneAndIsRefusedWhileAFileIsHeld) {
    TempDir dir;
    cio_load load;
    cio_save save;
    char buffer[4] = {'k', 'e', 'e', 'p'};
    EXPECT_EQ((std::vector<long>{
                  load.Open(dir.File("missing.bin").c_str()),
                  save.Open(dir.File("no/such/folder.bin").c_str()), load.GetPosition(),
                  load.SetPosition(0, 0), load.Size(), load.Read(buffer, 4), load.Skip(0),
                  static_cast<long>(load.BytesLeft()), save.Write(buffer, 4), save.Skip(0, 64)}),
              (std::vector<long>{-1, -1, -1, -1, -1, 0, 0, 0, 0, 0}));
    const std::string first = dir.File("first.bin");
    char abcd[] = "ABCD";
    {
        std::unique_ptr<cio> base(new cio_save);  // the base destructor closes and flushes
        auto& writer = static_cast<cio_save&>(*base);
        ASSERT_EQ(writer.Open(first.c_str()), 0);
        EXPECT_EQ(writer.Write(abcd, 2) + writer.Write(nullptr, 8), 1);
        EXPECT_TRUE(writer.Skip(0, 64) && writer.Skip('#', 3) && writer.Write(abcd, 0));
    }
    EXPECT_EQ(ReadFileBytes(first), "AB" + std::string(64, '\0') + "###");
    // Open on an open stream returns 0 and keeps the file it holds.
    cio_load held;
    ASSERT_EQ(held.Open(first.c_str()), 0);
    EXPECT_EQ(held.Skip(1), 1);
    // Intended: nothing is opened or closed.
    EXPECT_EQ((std::pair{held.Open(dir.File("missing.bin").c_str()), held.GetPosition()}),
              std::pair(0, 1L));
}

TEST(CioStream, SeeksReadsAndSkipsNeverGoPastTheEnd) {
    TempDir dir;
    std::ofstream(dir.File("ten.bin"), std::ios::binary) << "0123456789";
    cio_load load;
    ASSERT_EQ(load.Open(dir.File("ten.bin").c_str()), 0);
    char buffer[8] = {}, rest[4];
    // Size keeps the position; a negative offset is refused; two bytes are left for the read of
    // four; a skip beyond the end stops there.
    EXPECT_EQ((std::vector<long>{
                  load.SetPosition(3, 0), load.Size(), load.GetPosition(), load.SetPosition(2, 1),
                  load.SetPosition(-4, 2), load.SetPosition(-1, 0), load.Read(nullptr, 1),
                  load.Read(buffer, 2), load.Read(buffer, 0), load.Read(rest, 4),
                  load.SetPosition(1, 0), load.Skip(5), load.Skip(0),
                  static_cast<long>(load.BytesLeft()), load.Skip(0xFFFFFFFFu), load.GetPosition()}),
              (std::vector<long>{0, 10, 3, 0, 0, -1, 0, 1, 1, 0, 0, 1, 1, 4, 0, 10}));
    EXPECT_EQ(std::string(buffer, 2), "67");
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
        ASSERT_EQ(save.Write(&bytes[10], 199990), 1);  // larger than a block
        // Patching earlier bytes hands the waiting ones over first.
        ASSERT_EQ(save.SetPosition(65530, 0), 0);
        ASSERT_EQ(save.Write(&bytes[0], 11), 1);
        bytes.replace(65530, 11, bytes.substr(0, 11));
        EXPECT_EQ(save.Size(), 200000);
    }
    ASSERT_EQ(ReadFileBytes(path), bytes);
    cio_load load;
    ASSERT_EQ(load.Open(path.c_str()), 0);
    std::string got;
    // Across the first block's end, back inside the block just read, larger than a block, the
    // last bytes.
    for (const auto& [at, n] : {std::pair{65500, 100}, {65490, 20}, {10, 150000}, {199990, 10}}) {
        got.assign(n, '\0');
        EXPECT_TRUE(load.SetPosition(at, 0) == 0 && load.Read(&got[0], n) == 1 &&
                    got == bytes.substr(at, n) && load.GetPosition() == at + n)
            << at << " " << n;
    }
}

}  // namespace
