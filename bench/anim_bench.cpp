// Key-track interpolation at random times on a 100,000-key track, beside a baseline that
// finds the surrounding keys with std::lower_bound over a copy of the same keys and interpolates
// them the same way. Prints "ratio interpolate: <ours / baseline>".
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "canim.h"
#include "ratioreporter.h"

namespace {

constexpr int kKeys = 100000;
constexpr int kSpacing = 7;  // ticks between keys: times 0, 7, 14 ...
constexpr int kQueries = 1024;

struct Track {
    canim anim;
    std::vector<ckey> keys;
    std::vector<int> queries;
};

const Track& SharedTrack() {
    static const Track track = [] {
        Track t;
        std::mt19937 rng(7);
        std::uniform_real_distribution<float> value(-10.0f, 10.0f);
        std::normal_distribution<float> gauss;
        for (int i = 0; i < kKeys; ++i) {
            const ckey key(i * kSpacing, cpoint3(value(rng), value(rng), value(rng)),
                           Normalize(MakeQuat(gauss(rng), gauss(rng), gauss(rng), gauss(rng))),
                           cpoint3(1.0f, 1.0f, 1.0f));
            t.anim.SetKey(key);
            t.keys.push_back(key);
        }
        std::uniform_int_distribution<int> when(0, (kKeys - 1) * kSpacing);
        for (int i = 0; i < kQueries; ++i) t.queries.push_back(when(rng));
        return t;
    }();
    return track;
}

// The same interpolation the track does between two keys.
ckey Blend(const ckey& a, const ckey& b, int t) {
    const double u = static_cast<double>(t - a.time) / (b.time - a.time);
    const float f = static_cast<float>(u);
    return ckey(t, a.position + (b.position - a.position) * f, Slerp(a.rotation, b.rotation, f),
                a.scale + (b.scale - a.scale) * f);
}

void BM_Interpolate_Ours(benchmark::State& state) {
    const Track& track = SharedTrack();
    ckey key;
    for (auto _ : state) {
        for (int t : track.queries) {
            track.anim.GetInterpolateKey(t, key);
            benchmark::DoNotOptimize(key);
        }
    }
    state.SetItemsProcessed(state.iterations() * kQueries);
}

void BM_Interpolate_LowerBound(benchmark::State& state) {
    const Track& track = SharedTrack();
    ckey key;
    for (auto _ : state) {
        for (int t : track.queries) {
            const auto next =
                std::lower_bound(track.keys.begin(), track.keys.end(), t,
                                 [](const ckey& k, int time) { return k.time < time; });
            key = next->time == t ? *next : Blend(*(next - 1), *next, t);
            benchmark::DoNotOptimize(key);
        }
    }
    state.SetItemsProcessed(state.iterations() * kQueries);
}

BENCHMARK(BM_Interpolate_Ours);
BENCHMARK(BM_Interpolate_LowerBound);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("interpolate", "BM_Interpolate_Ours", "BM_Interpolate_LowerBound");
    return 0;
}
