#include "support/testsupport.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "coreinterface.h"
#include "coreplatform.h"

namespace {

struct Recorded {
    int aborts = 0;
    std::vector<std::string> texts;
    std::vector<std::string> titles;
    std::vector<unsigned int> types;
};
Recorded g_recorded;

void RecordAbort() {
    ++g_recorded.aborts;
}

int RecordMessageBox(char const* text, char const* title, unsigned int type) {
    g_recorded.texts.emplace_back(text);
    g_recorded.titles.emplace_back(title);
    g_recorded.types.push_back(type);
    return IDOK;
}

std::string MakeTempFolder() {
    char pattern[] = "/tmp/orvane-test-XXXXXX";
    const char* made = mkdtemp(pattern);
    return made ? std::string(made) : std::string("/tmp");
}

}  // namespace

AssertRecorder::AssertRecorder() : folder_(MakeTempFolder()), savedPath_(path_app) {
    g_recorded = Recorded();
    _AbortApp = RecordAbort;
    SetMessageBoxHandler(RecordMessageBox);
    std::snprintf(path_app, sizeof(path_app), "%s", folder_.c_str());
}

AssertRecorder::~AssertRecorder() {
    _AbortApp = nullptr;
    SetMessageBoxHandler(nullptr);
    std::snprintf(path_app, sizeof(path_app), "%s", savedPath_.c_str());
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

int AssertRecorder::Count() const {
    return g_recorded.aborts;
}
const std::vector<std::string>& AssertRecorder::Texts() const {
    return g_recorded.texts;
}
const std::vector<std::string>& AssertRecorder::Titles() const {
    return g_recorded.titles;
}
const std::vector<unsigned int>& AssertRecorder::Types() const {
    return g_recorded.types;
}
std::string AssertRecorder::LogContents() const {
    return ReadFileBytes(folder_ + "/Orvane.log");
}

TempDir::TempDir() : path_(MakeTempFolder()) {}
TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::string();
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
