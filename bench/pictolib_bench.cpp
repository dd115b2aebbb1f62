// Decoding a large JPEG and a large PNG through PictoLib_Load, beside libjpeg and libpng
// called directly into the same RGBA layout.
#include <cstdio>
#include <string>
#include <vector>

#include "largepictures.h"
#include "pictolib.h"
#include "ratioreporter.h"

namespace {

void DecodeWithPictoLib(benchmark::State& state, const std::string& path) {
    for (auto _ : state) {
        unsigned char* bits = nullptr;
        unsigned char* alpha = nullptr;
        int width = 0, height = 0;
        if (!PictoLib_Load(path.c_str(), &bits, &alpha, &width, &height)) {
            state.SkipWithError("PictoLib_Load failed");
            return;
        }
        benchmark::DoNotOptimize(bits);
        PictoLib_Free(bits, alpha);
    }
}

void BM_JpegDecode_PictoLib(benchmark::State& state) {
    DecodeWithPictoLib(state, Pictures().jpeg);
}

void BM_PngDecode_PictoLib(benchmark::State& state) {
    DecodeWithPictoLib(state, Pictures().png);
}

void BM_JpegDecode_Libjpeg(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<unsigned char> rgba;
        if (!DecodeJpegDirectly(Pictures().jpeg, rgba)) {
            state.SkipWithError("cannot open the JPEG");
            return;
        }
        benchmark::DoNotOptimize(rgba.data());
    }
}

void BM_PngDecode_Libpng(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<unsigned char> rgba;
        if (!DecodePngDirectly(Pictures().png, rgba)) {
            state.SkipWithError("cannot open the PNG");
            return;
        }
        benchmark::DoNotOptimize(rgba.data());
    }
}

}  // namespace

BENCHMARK(BM_JpegDecode_PictoLib)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_JpegDecode_Libjpeg)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PngDecode_PictoLib)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PngDecode_Libpng)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (Pictures().folder.empty()) {
        std::fprintf(stderr, "could not make the large pictures with /usr/bin/convert\n");
        return 1;
    }
    RatioReporter reporter;
    if (!RunBenchmarks(argc, argv, reporter)) return 1;
    reporter.PrintRatio("jpeg decode", "BM_JpegDecode_PictoLib", "BM_JpegDecode_Libjpeg");
    reporter.PrintRatio("png decode", "BM_PngDecode_PictoLib", "BM_PngDecode_Libpng");
    return 0;
}
