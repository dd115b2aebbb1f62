// cimage::Load of a large JPEG and a large PNG (no GL context, so no upload) beside libjpeg and
// libpng called directly into RGBA, and the texture upload of a 2048 x 2048 picture.
#include <string>
#include <vector>

#include "cimage.h"
#include "coreglcontext.h"
#include "largepictures.h"
#include "ratioreporter.h"

namespace {

void LoadImage(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        cimage image;
        if (!image.Load(path.c_str())) {
            state.SkipWithError("cimage::Load failed");
            return;
        }
        benchmark::DoNotOptimize(image.GetBitsPtr());
    }
}

template <bool (*Decode)(const std::string&, std::vector<unsigned char>&)>
void DecodeDirectly(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        std::vector<unsigned char> rgba;
        if (!Decode(path, rgba)) {
            state.SkipWithError("direct decode failed");
            return;
        }
        benchmark::DoNotOptimize(rgba.data());
    }
}

void BM_CimageLoadJpeg(benchmark::State& state) {
    LoadImage(state, Pictures().jpeg);
}
void BM_LibjpegDecode(benchmark::State& state) {
    DecodeDirectly<DecodeJpegDirectly>(state, Pictures().jpeg);
}
void BM_CimageLoadPng(benchmark::State& state) {
    LoadImage(state, Pictures().png);
}
void BM_LibpngDecode(benchmark::State& state) {
    DecodeDirectly<DecodePngDirectly>(state, Pictures().png);
}

// Uploads of a 2048 x 2048 picture, scaled to 512 x 512, in an offscreen context.
void BM_TextureUpload2048(benchmark::State& state) {
    CoreGLContext* context = CoreGLContext_Create(16, 16, nullptr);
    if (!context || !CoreGLContext_MakeCurrent(context)) {
        state.SkipWithError("no GL context");
        return;
    }
    const int side = 2048;
    std::vector<unsigned char> pixels(static_cast<size_t>(side) * side * 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(i * 7);
    cimage image;
    image.SetBits(nullptr, pixels.data(), nullptr, side, side, 32, 0);
    for (auto _ : state) image.Bind();
    state.SetItemsProcessed(state.iterations());
    image.Clear();
    CoreGLContext_Destroy(context);
}

constexpr int kRepetitions = 5;

BENCHMARK(BM_CimageLoadJpeg)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
BENCHMARK(BM_LibjpegDecode)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
BENCHMARK(BM_CimageLoadPng)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
BENCHMARK(BM_LibpngDecode)->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
BENCHMARK(BM_TextureUpload2048)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("cimage::Load JPEG / libjpeg", "BM_CimageLoadJpeg", "BM_LibjpegDecode");
    reporter.PrintRatio("cimage::Load PNG / libpng", "BM_CimageLoadPng", "BM_LibpngDecode");
    return 0;
}
