// Helpers shared by the tests.
#ifndef ORVANE_TESTS_SUPPORT_TESTSUPPORT_H
#define ORVANE_TESTS_SUPPORT_TESTSUPPORT_H

#include <functional>
#include <string>
#include <vector>

#include "cio.h"

// Reads a whole file as bytes ("" when it cannot be opened).
std::string ReadFileBytes(const std::string& path);

// A fresh empty temporary folder, removed with its content when the object dies.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// While alive, failed assertions are recorded instead of ending the process: _AbortApp and the
// message-box handler record what they are given, and path_app points at a fresh temporary
// folder (so the log file lands there). Everything is restored on destruction.
class AssertRecorder {
public:
    AssertRecorder();
    ~AssertRecorder();
    AssertRecorder(const AssertRecorder&) = delete;
    AssertRecorder& operator=(const AssertRecorder&) = delete;

    // Number of _AbortApp calls, i.e. of assertion reports that returned.
    int Count() const { return aborts_; }
    // The message-box texts, titles and types seen, in order.
    const std::vector<std::string>& Texts() const { return texts_; }
    const std::vector<std::string>& Titles() const { return titles_; }
    const std::vector<unsigned int>& Types() const { return types_; }
    // The folder path_app points at, and the content of its Orvane.log ("" if absent).
    const std::string& Folder() const { return folder_.Path(); }
    std::string LogContents() const { return ReadFileBytes(folder_.File("Orvane.log")); }

    // What the hooks recorded; written by them only.
    int aborts_ = 0;
    std::vector<std::string> texts_, titles_;
    std::vector<unsigned int> types_;

private:
    TempDir folder_;
    std::string savedPath_;
};

// Writes `bytes` to `path` as a fresh file, replacing any file of that name.
void WriteFileBytes(const std::string& path, const std::string& bytes);

// The bytes `save` writes to a fresh file ("<open failed>" if it cannot be created).
std::string Saved(const std::function<void(cio_save&)>& save);

// A stream reading the given bytes from a file that lives as long as it does.
struct RecordStream {
    explicit RecordStream(const std::string& bytes);
    TempDir dir;
    cio_load in;
    bool opened;  // whether the stream could open its file
};

// The shared real-world data folder (meshes, polygons, images).
std::string SharedDataPath(const std::string& relative);

#endif
