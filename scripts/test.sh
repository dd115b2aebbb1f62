#!/usr/bin/env bash
# Builds and runs the whole test suite twice: an optimised build with warnings as errors, and
# an AddressSanitizer + UndefinedBehaviorSanitizer build. Checks formatting first and ends with
# a short libFuzzer run of every fuzz target (clang).
# Usage: scripts/test.sh            (from anywhere inside the repository)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

echo "== formatting"
mapfile -t sources < <(git ls-files '*.cpp' '*.h' 2>/dev/null || find core include tests host tools bench -name '*.cpp' -o -name '*.h')
clang-format --dry-run --Werror "${sources[@]}"

for preset in ci asan; do
    echo "== $preset: configure and build"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    echo "== $preset: tests"
    ctest --preset "$preset"
done

echo "== fuzz smoke run"
scripts/fuzz.sh "${FUZZ_SECONDS:-10}"
