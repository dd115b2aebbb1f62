#include "support/testsupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "coreinterface.h"
#include "coreplatform.h"

namespace {

AssertRecorder* g_recorder = nullptr;

void RecordAbort() {
    ++g_recorder->aborts_;
}

int RecordMessageBox(char const* text, char const* title, unsigned int type) {
    g_recorder->texts_.emplace_back(text);
    g_recorder->titles_.emplace_back(title);
    g_recorder->types_.push_back(type);
    return IDOK;
}

std::string MakeTempFolder() {
    char pattern[] = "/tmp/orvane-test-XXXXXX";
    const char* made = mkdtemp(pattern);
    return made ? std::string(made) : std::string("/tmp");
}

}  // namespace

AssertRecorder::AssertRecorder() : savedPath_(path_app) {
    g_recorder = this;
    _AbortApp = RecordAbort;
    SetMessageBoxHandler(RecordMessageBox);
    std::snprintf(path_app, sizeof(path_app), "%s", Folder().c_str());
}

AssertRecorder::~AssertRecorder() {
    _AbortApp = nullptr;
    SetMessageBoxHandler(nullptr);
    std::snprintf(path_app, sizeof(path_app), "%s", savedPath_.c_str());
}

TempDir::TempDir() : path_(MakeTempFolder()) {}
TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
    // A fresh file each time: rewriting one in place makes some file systems flush it to disk.
    std::remove(path.c_str());
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string Saved(const std::function<void(cio_save&)>& save) {
    TempDir dir;
    cio_save out;
    if (out.Open(dir.File("saved.bin").c_str()) != 0) return "<open failed>";
    save(out);
    out.Close();
    return ReadFileBytes(dir.File("saved.bin"));
}

RecordStream::RecordStream(const std::string& bytes) {
    WriteFileBytes(dir.File("in.bin"), bytes);
    opened = in.Open(dir.File("in.bin").c_str()) == 0;
}

std::string SharedDataPath(const std::string& relative) {
    return std::string(CORE_SHARED_DATA_DIR) + "/" + relative;
}
