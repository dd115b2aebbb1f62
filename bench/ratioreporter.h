// A console reporter that also keeps every repetition's time, so that a benchmark program can
// print "ratio <label>: <ours / baseline>" lines (medians) after the run.
#ifndef ORVANE_BENCH_RATIOREPORTER_H
#define ORVANE_BENCH_RATIOREPORTER_H

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

// Prints as the console does and keeps every repetition's time per benchmark.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
        ConsoleReporter::ReportRuns(runs);
    }

    void PrintRatio(const char* label, const std::string& ours, const std::string& baseline) {
        const double a = Median(ours), b = Median(baseline);
        if (a > 0.0 && b > 0.0) std::printf("ratio %s: %.2f\n", label, a / b);
    }

    // The median time of benchmark `name` over its repetitions; 0 when it did not run.
    double Median(const std::string& name) {
        std::vector<double>& t = times_[name];
        if (t.empty()) return 0.0;
        std::nth_element(t.begin(), t.begin() + t.size() / 2, t.end());
        return t[t.size() / 2];
    }

private:
    std::map<std::string, std::vector<double>> times_;
};

// Runs the benchmarks selected on the command line through `reporter`; false on arguments
// it does not know.
inline bool RunBenchmarks(int argc, char** argv, RatioReporter& reporter) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return false;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return true;
}

#endif
