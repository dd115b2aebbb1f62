#include "platform/filesize.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/testsupport.h"

namespace {

struct OpenFile {
    explicit OpenFile(const std::string& path) : file(std::fopen(path.c_str(), "rb")) {}
    ~OpenFile() {
        if (file) std::fclose(file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    std::FILE* file;
};

TEST(FileSize, AsksTheFileSystemWithoutMovingTheStream) {
    TempDir folder;
    WriteFileBytes(folder.File("seven.bin"), "1234567");
    OpenFile seven(folder.File("seven.bin"));
    ASSERT_NE(seven.file, nullptr);
    ASSERT_EQ(std::fgetc(seven.file), '1');
    EXPECT_EQ(RegularFileSize(seven.file), 7);
    EXPECT_EQ(std::fgetc(seven.file), '2') << "the stream stays where it was";
    OpenFile folderItself(folder.Path());
    EXPECT_EQ(RegularFileSize(folderItself.file), -1);
    EXPECT_EQ(RegularFileSize(nullptr), -1);
}

TEST(FileSize, TellsTheSameFileFromAReplacedOne) {
    TempDir folder;
    const std::string path = folder.File("project.orv");
    WriteFileBytes(path, "first");
    OpenFile first(path), again(path);
    EXPECT_EQ(SameFile(first.file, again.file), 1) << "one path opened twice";
    // Written beside it and renamed over it, as a save replaces a file.
    WriteFileBytes(path + ".saving", "second");
    ASSERT_EQ(std::rename((path + ".saving").c_str(), path.c_str()), 0);
    OpenFile replaced(path);
    EXPECT_EQ(SameFile(first.file, replaced.file), 0);
    EXPECT_EQ(SameFile(first.file, nullptr) + SameFile(nullptr, nullptr), 0);
}

}  // namespace
