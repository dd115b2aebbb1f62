// What every fuzz target (tests/fuzz/<name>_fuzz.cpp) defines, and its invariant check.
//
// A target is built twice: as a libFuzzer binary when CORE_BUILD_FUZZ is on (clang only), and
// always as <name>_replay, which runs it in ctest over a fixed set of generated inputs.
#ifndef ORVANE_TESTS_FUZZ_FUZZTARGET_H
#define ORVANE_TESTS_FUZZ_FUZZTARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

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

#endif
