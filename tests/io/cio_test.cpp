#include "cio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

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
    EXPECT_EQ(load.GetPosition(), -1);
    EXPECT_EQ(load.SetPosition(0, 0), -1);
    EXPECT_EQ(load.Size(), -1);
    EXPECT_EQ(load.Read(buffer, 4), 0);
    EXPECT_EQ(load.Read(buffer, 0), 0);
    EXPECT_EQ(load.Skip(0), 0);
    EXPECT_EQ(load.BytesLeft(), 0u);
    EXPECT_EQ(std::string(buffer, 4), "keep");
    EXPECT_EQ(save.Write(buffer, 4), 0);
    EXPECT_EQ(save.Skip(0, 64), 0);
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

}  // namespace
