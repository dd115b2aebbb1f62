#!/usr/bin/env bash
# Builds the orvane command-line host (optimised) and runs it on its built-in demo.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target orvane >/dev/null
exec build/release/tools/orvane/orvane demo "$@"
