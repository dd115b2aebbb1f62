// Saving and loading a project of 100,000 nodes through SaveProjectFile / LoadProjectFile,
// beside a plain fwrite / fread of the same number of bytes to a file in the same folder.
// Rates are bytes of the file per second. Each "ratio" line gives our rate as a fraction of
// the plain rate (the plain time over ours): 1 would be as fast as copying the bytes, 0.5 half
// as fast.
//
// - "save": SaveProjectFile against fwrite.
// - "load": LoadProjectFile into an empty scene, as when an application opens a project,
//   reading the records on as many threads as the machine runs at once; "load on one thread"
//   reads them on the calling thread alone.
// - "load replacing a loaded scene": the load also destroys the 100,000 nodes the previous
//   load made, as when a second project replaces the first.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "canim.h"
#include "cmaterial.h"
#include "cnode.h"
#include "cscene.h"
#include "projectfile.h"
#include "ratioreporter.h"

namespace {

constexpr int kNodes = 100000;
constexpr int kTrees = 8;      // hierarchies ...
constexpr int kBranching = 3;  // ... each node with three children ...
constexpr int kTreeDepth = 7;  // ... down to seven levels: 1093 nodes per tree
constexpr int kMaterials = 16;

cnode* NewNode(int index) {
    char name[32];
    std::snprintf(name, sizeof name, "Node%d", index);
    auto* node = new cnode(name, ccolor(0.5f, 0.5f, 0.5f, 1.0f));
    const int keys = 2 + index % 2;
    for (int k = 0; k < keys; ++k) {
        const float f = static_cast<float>(index % 97 + k);
        node->GetAnimPtr()->SetKey(ckey(k * 160, cpoint3(f, -f, 0.5f * f),
                                        Normalize(MakeQuat(0.1f * f, 1.0f, 0.0f, 0.3f)),
                                        cpoint3(1.0f, 1.0f, 1.0f)));
    }
    if (index % 10 == 0) {
        static const char note[] = "checked by lighting";
        node->CopyNotes(note, sizeof note - 1);
    }
    return node;
}

// Appends `parent`'s subtree below it, breadth by breadth down to `depth` levels.
void GrowTree(cnode* parent, int depth, std::vector<cnode*>& all) {
    if (depth <= 1) return;
    for (int c = 0; c < kBranching; ++c) {
        cnode* child = NewNode(static_cast<int>(all.size()));
        all.push_back(child);
        parent->Attach(child, 1);
        GrowTree(child, depth - 1, all);
    }
}

// MainScene: a few deep hierarchies, then roots up to kNodes, with materials on some nodes.
void BuildScene() {
    MainScene.Clear();
    std::vector<cmaterial*> materials;
    for (int m = 0; m < kMaterials; ++m) {
        materials.push_back(new cmaterial(("Material" + std::to_string(m)).c_str()));
        MainScene.AddMaterial(materials.back(), 1);
    }
    std::vector<cnode*> all;
    all.reserve(kNodes);
    for (int t = 0; t < kTrees; ++t) {
        all.push_back(NewNode(static_cast<int>(all.size())));
        GrowTree(all.back(), kTreeDepth, all);
    }
    while (all.size() < static_cast<size_t>(kNodes))
        all.push_back(NewNode(static_cast<int>(all.size())));
    for (size_t i = 0; i < all.size(); i += 3) all[i]->SetMaterial(materials[i % kMaterials]);
    MainScene.AddNodeArray(all.data(), static_cast<int>(all.size()), 1);
}

struct Files {
    std::string project, plain;
    long bytes = 0;
};

const Files& SharedFiles() {
    static const Files files = [] {
        Files f;
        char const* dir = std::getenv("TMPDIR");
        const std::string base = std::string(dir && *dir ? dir : "/tmp") + "/orvane_bench_";
        f.project = base + "project.orv";
        f.plain = base + "plain.bin";
        BuildScene();
        if (!SaveProjectFile(f.project.c_str())) std::abort();
        std::FILE* file = std::fopen(f.project.c_str(), "rb");
        if (!file || std::fseek(file, 0, SEEK_END) != 0) std::abort();
        f.bytes = std::ftell(file);
        std::fclose(file);
        return f;
    }();
    return files;
}

void BM_Save_Ours(benchmark::State& state) {
    const Files& files = SharedFiles();
    for (auto _ : state)
        if (!SaveProjectFile(files.project.c_str())) state.SkipWithError("save failed");
    state.SetBytesProcessed(state.iterations() * files.bytes);
}

void BM_Save_Plain(benchmark::State& state) {
    const Files& files = SharedFiles();
    std::vector<char> bytes(static_cast<size_t>(files.bytes), 'x');
    for (auto _ : state) {
        std::FILE* file = std::fopen(files.plain.c_str(), "wb");
        if (!file) state.SkipWithError("open failed");
        if (!file) break;
        benchmark::DoNotOptimize(std::fwrite(bytes.data(), 1, bytes.size(), file));
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * files.bytes);
}

void BM_Load_Ours_Replacing(benchmark::State& state) {
    const Files& files = SharedFiles();
    for (auto _ : state)
        if (!LoadProjectFile(files.project.c_str())) state.SkipWithError("load failed");
    state.SetBytesProcessed(state.iterations() * files.bytes);
}

// Loads into an emptied scene on `threads` threads (0: as many as the machine runs).
void LoadIntoEmptyScene(benchmark::State& state, int threads) {
    const Files& files = SharedFiles();
    const int previous = SetProjectLoadThreads(threads);
    for (auto _ : state) {
        state.PauseTiming();
        MainScene.Clear();
        state.ResumeTiming();
        if (!LoadProjectFile(files.project.c_str())) state.SkipWithError("load failed");
    }
    SetProjectLoadThreads(previous);
    state.SetBytesProcessed(state.iterations() * files.bytes);
}

void BM_Load_Ours(benchmark::State& state) {
    LoadIntoEmptyScene(state, 0);
}

void BM_Load_Ours_OneThread(benchmark::State& state) {
    LoadIntoEmptyScene(state, 1);
}

void BM_Load_Plain(benchmark::State& state) {
    const Files& files = SharedFiles();
    std::vector<char> bytes(static_cast<size_t>(files.bytes));
    for (auto _ : state) {
        std::FILE* file = std::fopen(files.project.c_str(), "rb");
        if (!file) state.SkipWithError("open failed");
        if (!file) break;
        benchmark::DoNotOptimize(std::fread(bytes.data(), 1, bytes.size(), file));
        std::fclose(file);
    }
    state.SetBytesProcessed(state.iterations() * files.bytes);
}

BENCHMARK(BM_Save_Ours)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Save_Plain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load_Ours)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load_Ours_OneThread)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load_Ours_Replacing)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load_Plain)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    // Plain time over ours: our rate as a fraction of the plain rate.
    reporter.PrintRatio("save", "BM_Save_Plain", "BM_Save_Ours");
    reporter.PrintRatio("load", "BM_Load_Plain", "BM_Load_Ours");
    reporter.PrintRatio("load on one thread", "BM_Load_Plain", "BM_Load_Ours_OneThread");
    reporter.PrintRatio("load replacing a loaded scene", "BM_Load_Plain", "BM_Load_Ours_Replacing");
    const Files& files = SharedFiles();
    std::remove(files.project.c_str());
    std::remove(files.plain.c_str());
    return 0;
}
