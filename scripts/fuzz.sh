#!/usr/bin/env bash
# Builds the libFuzzer binaries of tests/fuzz/*_fuzz.cpp with clang (AddressSanitizer and
# UndefinedBehaviorSanitizer, libCore.so instrumented too) in build/fuzz, then runs each fuzzer
# in turn for the given number of seconds, starting from the target's seeds and from the corpus
# kept by earlier runs.
# Usage: scripts/fuzz.sh [seconds per target, default 30] [target names, default all]
#   e.g. scripts/fuzz.sh 600 cio
# Crashing inputs land in build/fuzz/artifacts/<name>/; replay one with any compiler:
#   build/<dir>/tests/fuzz/<name>_replay build/fuzz/artifacts/<name>/crash-...
# Exits with status 1 when a fuzzer found a failure.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-30}
shift || true
if [ $# -gt 0 ]; then
    names=("$@")
else
    names=()
    shopt -s nullglob
    for source in tests/fuzz/*_fuzz.cpp; do names+=("$(basename "$source" _fuzz.cpp)"); done
fi
if [ ${#names[@]} -eq 0 ]; then
    echo "fuzz: no fuzz targets in tests/fuzz/" >&2
    exit 1
fi

scripts/install-deps.sh

build=build/fuzz
cmake -S . -B "$build" -G Ninja \
    -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g" \
    -DCORE_BUILD_FUZZ=ON -DCORE_BUILD_BENCH=OFF >/dev/null
targets=()
for name in "${names[@]}"; do targets+=("${name}_fuzz" "${name}_replay"); done
cmake --build "$build" -j2 --target "${targets[@]}"

failed=()
for name in "${names[@]}"; do
    corpus=$build/corpus/$name
    artifacts=$build/artifacts/$name
    mkdir -p "$corpus" "$artifacts"
    "$build/tests/fuzz/${name}_replay" --write-seeds "$corpus" >/dev/null
    echo "== fuzzing $name for ${seconds}s"
    # A single allocation above 64 MB is a loader trusting a count from the file.
    if ! "$build/tests/fuzz/${name}_fuzz" "$corpus" \
        -max_total_time="$seconds" -malloc_limit_mb=64 -print_final_stats=1 \
        -artifact_prefix="$artifacts/"; then
        failed+=("$name")
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: failures in ${failed[*]}; inputs are in $build/artifacts/" >&2
    exit 1
fi
echo "fuzz: no failure in ${names[*]}"
