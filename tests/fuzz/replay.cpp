// The replay driver: runs one fuzz target over a deterministic set of inputs, with any compiler.
//
//   <name>_replay                      the generated inputs (what ctest runs)
//   <name>_replay FILE...              the given files, e.g. a crash found by libFuzzer
//   <name>_replay --write-seeds DIR    writes the target's seeds into DIR as seed-<n>.bin
//
// The generated inputs are the empty input, random byte strings from a fixed seed, and each of
// the target's seeds as it is, truncated, with single bits flipped and with 32-bit words
// overwritten by extreme values. Each input's bytes are written to replay-last.bin in the
// working folder before it runs, and the file is removed when every input passed: after a
// crash (a failed check, a signal or a sanitizer report) it holds the input that caused it.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "fuzz/fuzztarget.h"

namespace {

// Bounds that keep one replay under a few seconds even under sanitizers.
constexpr int kRandomInputs = 256;
constexpr std::size_t kMaxRandomLength = 1024, kMaxVariantsPerKind = 512;
constexpr char kLastInput[] = "replay-last.bin";

// `count` positions in [0, limit), all of them when there are few enough, else evenly spread.
std::vector<std::size_t> Positions(std::size_t limit, std::size_t count) {
    std::vector<std::size_t> positions;
    const std::size_t step = limit <= count ? 1 : limit / count;
    for (std::size_t p = 0; p < limit && positions.size() < count; p += step)
        positions.push_back(p);
    return positions;
}

void AddSeedVariants(std::vector<std::string>& inputs, const std::string& seed) {
    inputs.push_back(seed);
    for (std::size_t length : Positions(seed.size(), kMaxVariantsPerKind))
        inputs.push_back(seed.substr(0, length));
    for (std::size_t bit : Positions(seed.size() * 8, kMaxVariantsPerKind)) {
        inputs.push_back(seed);
        inputs.back()[bit / 8] = static_cast<char>(seed[bit / 8] ^ (1 << (bit % 8)));
    }
    for (std::size_t offset : Positions(seed.size(), kMaxVariantsPerKind / 4))
        for (std::uint32_t word : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0u}) {
            inputs.push_back(seed);
            for (std::size_t b = 0; b < 4 && offset + b < seed.size(); ++b)
                inputs.back()[offset + b] = static_cast<char>(word >> (8 * b));
        }
}

std::vector<std::string> GeneratedInputs() {
    std::vector<std::string> inputs = {""};
    std::mt19937 random(0x0A7A4E5u);
    for (int i = 0; i < kRandomInputs; ++i) {
        inputs.emplace_back(random() % kMaxRandomLength + 1, '\0');
        for (char& byte : inputs.back()) byte = static_cast<char>(random());
    }
    for (const std::string& seed : FuzzSeeds()) AddSeedVariants(inputs, seed);
    return inputs;
}

int WriteSeeds(const std::string& folder) {
    if (!std::filesystem::is_directory(folder))
        return std::fprintf(stderr, "no folder %s\n", folder.c_str()), 1;
    const std::vector<std::string> seeds = FuzzSeeds();
    for (std::size_t i = 0; i < seeds.size(); ++i)
        WriteFileBytes(folder + "/seed-" + std::to_string(i) + ".bin", seeds[i]);
    std::printf("replay: wrote %zu seeds to %s\n", seeds.size(), folder.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--write-seeds") == 0) return WriteSeeds(argv[2]);
    std::vector<std::string> inputs = argc > 1 ? std::vector<std::string>() : GeneratedInputs();
    for (int i = 1; i < argc; ++i) {
        if (!std::ifstream(argv[i])) return std::fprintf(stderr, "cannot read %s\n", argv[i]), 1;
        inputs.push_back(ReadFileBytes(argv[i]));
    }
    for (const std::string& input : inputs) {
        WriteFileBytes(kLastInput, input);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    }
    std::remove(kLastInput);
    std::printf("replay: %zu inputs ran without a failure\n", inputs.size());
    return 0;
}
