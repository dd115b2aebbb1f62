// What every fuzz target (tests/fuzz/<name>_fuzz.cpp) defines, its invariant check and the
// record helpers the targets share.
//
// A target is built twice: as a libFuzzer binary when CORE_BUILD_FUZZ is on (clang only), and
// always as <name>_replay, which runs it in ctest over a fixed set of generated inputs.
// The standard headers included here are the targets' common vocabulary.
#ifndef ORVANE_TESTS_FUZZ_FUZZTARGET_H
#define ORVANE_TESTS_FUZZ_FUZZTARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/testsupport.h"

// Runs the code under test on one input of untrusted bytes; returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Valid inputs of the target's format. The replay driver runs them with truncations, bit
// flips and overwritten words; scripts/fuzz.sh gives them to libFuzzer as its first corpus.
std::vector<std::string> FuzzSeeds();

// Reports a broken invariant and ends the process, so that libFuzzer and the replay driver
// both keep the input that caused it.
[[noreturn]] inline void FuzzCheckFailed(char const* condition, char const* file, int line) {
    std::fprintf(stderr, "%s:%d: fuzz check failed: %s\n", file, line, condition);
    std::abort();
}

#define FUZZ_CHECK(condition) \
    ((condition) ? static_cast<void>(0) : FuzzCheckFailed(#condition, __FILE__, __LINE__))

// The path of file `name` in the process's own temporary folder.
inline std::string FuzzPath(const std::string& name) {
    static const TempDir folder;
    return folder.File(name);
}

// The input written to a file of that folder; returns its path.
inline std::string FuzzFile(const std::uint8_t* data, std::size_t size) {
    const std::string path = FuzzPath("input");
    WriteFileBytes(path, std::string(reinterpret_cast<const char*>(data), size));
    return path;
}

// Writes the record `object` saves, which must succeed, to a fresh file; returns its path.
template <class T>
std::string SaveRecord(const T& object, const std::string& name = "saved") {
    const std::string path = FuzzPath(name);
    std::remove(path.c_str());
    cio_save out;
    FUZZ_CHECK(out.Open(path.c_str()) == 0 && object.Save(out) == 1);
    out.Close();
    return path;
}

// Loads the file at `path` into `object` as a record of file version `version`; the result
// of Load.
template <class T>
int LoadRecord(T& object, const std::string& path, unsigned long version) {
    cio_load in;
    FUZZ_CHECK(in.Open(path.c_str()) == 0);
    return object.Load(in, version);
}

// Checks that a record `object` saves loads, as the newest version, into a T that saves a
// record of the same length.
template <class T>
void CheckSavedRecordReloads(const T& object) {
    const std::size_t length = ReadFileBytes(SaveRecord(object)).size();
    T again;
    FUZZ_CHECK(LoadRecord(again, FuzzPath("saved"), 16) == 1);
    FUZZ_CHECK(ReadFileBytes(SaveRecord(again)).size() == length);
}

#endif
