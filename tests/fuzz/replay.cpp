// The replay driver: runs one fuzz target over a deterministic set of inputs, with any compiler.
//
//   <name>_replay                      the generated inputs (what ctest runs)
//   <name>_replay FILE...              the given files, e.g. a crash found by libFuzzer
//   <name>_replay --write-seeds DIR    writes the target's seeds into DIR as seed-<n>.bin
//
// The generated inputs are the empty input, random byte strings from a fixed seed, and each of
// the target's seeds as it is, truncated, with single bits flipped and with 32-bit words
// overwritten by extreme values. When an input crashes the target (a failed check, a signal or
// a sanitizer report), its description is printed and its bytes are left in
// replay-crash.bin in the working folder.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/fuzztarget.h"

#if defined(__SANITIZE_ADDRESS__)
#define REPLAY_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define REPLAY_SANITIZED 1
#endif
#endif
#ifdef REPLAY_SANITIZED
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

// Bounds that keep one replay under a few seconds even under sanitizers.
constexpr int kRandomInputs = 256;
constexpr std::size_t kMaxRandomLength = 1024;
constexpr std::size_t kMaxVariantsPerKind = 512;
constexpr std::uint32_t kExtremeWords[] = {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0u};

struct Input {
    std::string name;
    std::string bytes;
};

// The input being run, kept where a crash handler can reach it.
std::string g_currentName;
std::string g_currentBytes;

void WriteAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(fd, data, size);
        if (written <= 0) return;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

// Only async-signal-safe calls: it also runs from a signal handler.
void ReportCurrentInput() {
    static const char kPrefix[] = "\nreplay: crashed on input: ";
    static const char kSuffix[] = "\nreplay: its bytes are in replay-crash.bin\n";
    WriteAll(2, kPrefix, sizeof(kPrefix) - 1);
    WriteAll(2, g_currentName.data(), g_currentName.size());
    WriteAll(2, kSuffix, sizeof(kSuffix) - 1);
    const int fd = open("replay-crash.bin", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return;
    WriteAll(fd, g_currentBytes.data(), g_currentBytes.size());
    close(fd);
}

extern "C" void OnCrashSignal(int signal) {
    ReportCurrentInput();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Under the sanitizers their own handlers report faults (with a stack) and then call the
// death callback; only the abort of a failed check is caught here.
void InstallCrashReport() {
    std::signal(SIGABRT, OnCrashSignal);
#ifdef REPLAY_SANITIZED
    __sanitizer_set_death_callback(ReportCurrentInput);
#else
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, OnCrashSignal);
#endif
}

void Run(const Input& input) {
    g_currentName = input.name;
    g_currentBytes = input.bytes;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.bytes.data()),
                           input.bytes.size());
}

// `count` positions in [0, limit), all of them when there are few enough, else evenly spread.
std::vector<std::size_t> Positions(std::size_t limit, std::size_t count) {
    std::vector<std::size_t> positions;
    const std::size_t step = limit <= count ? 1 : limit / count;
    for (std::size_t p = 0; p < limit && positions.size() < count; p += step)
        positions.push_back(p);
    return positions;
}

void AddRandomInputs(std::vector<Input>& inputs, std::mt19937& random) {
    for (int i = 0; i < kRandomInputs; ++i) {
        std::string bytes(random() % kMaxRandomLength + 1, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        inputs.push_back({"random " + std::to_string(i), bytes});
    }
}

void AddSeedVariants(std::vector<Input>& inputs, const std::string& seed, const std::string& name) {
    inputs.push_back({name, seed});
    for (std::size_t length : Positions(seed.size(), kMaxVariantsPerKind))
        inputs.push_back(
            {name + " truncated to " + std::to_string(length), seed.substr(0, length)});
    for (std::size_t bit : Positions(seed.size() * 8, kMaxVariantsPerKind)) {
        std::string flipped = seed;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        inputs.push_back({name + " with bit " + std::to_string(bit) + " flipped", flipped});
    }
    for (std::size_t offset : Positions(seed.size(), kMaxVariantsPerKind / 4)) {
        for (std::uint32_t word : kExtremeWords) {
            std::string changed = seed;
            for (std::size_t b = 0; b < 4 && offset + b < changed.size(); ++b)
                changed[offset + b] = static_cast<char>(word >> (8 * b));
            inputs.push_back(
                {name + " with word " + std::to_string(word) + " at " + std::to_string(offset),
                 changed});
        }
    }
}

std::vector<Input> GeneratedInputs() {
    std::vector<Input> inputs = {{"empty", ""}};
    std::mt19937 random(0x0A7A4E5u);
    AddRandomInputs(inputs, random);
    const std::vector<std::string> seeds = FuzzSeeds();
    for (std::size_t i = 0; i < seeds.size(); ++i)
        AddSeedVariants(inputs, seeds[i], "seed " + std::to_string(i));
    return inputs;
}

int WriteSeeds(const std::string& folder) {
    const std::vector<std::string> seeds = FuzzSeeds();
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        std::ofstream file(folder + "/seed-" + std::to_string(i) + ".bin", std::ios::binary);
        if (!(file << seeds[i])) return 1;
    }
    std::printf("replay: wrote %zu seeds to %s\n", seeds.size(), folder.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--write-seeds") == 0) return WriteSeeds(argv[2]);
    InstallCrashReport();
    std::vector<Input> inputs;
    if (argc > 1) {
        for (int i = 1; i < argc; ++i) {
            std::ifstream file(argv[i], std::ios::binary);
            if (!file) {
                std::fprintf(stderr, "replay: cannot read %s\n", argv[i]);
                return 1;
            }
            inputs.push_back({argv[i], std::string(std::istreambuf_iterator<char>(file), {})});
        }
    } else {
        inputs = GeneratedInputs();
    }
    for (const Input& input : inputs) Run(input);
    std::printf("replay: %zu inputs ran without a failure\n", inputs.size());
    return 0;
}
