#!/usr/bin/env bash
# Builds and runs the benchmarks; arguments go to Google Benchmark, such as
# --benchmark_filter=REGEX.
set -euo pipefail
cd "$(dirname "$0")/.."
source cmake/build.sh

need build bench
configure build -DCMAKE_BUILD_TYPE=Release -DTOVALIN_BUILD_BENCH=ON >&2
cmake --build build --target tovalin_bench >&2

# Evaluations leave their trace in the user's settings: not in this user's.
XDG_CONFIG_HOME=$PWD/build/config XDG_RUNTIME_DIR=$PWD/build/run build/tovalin_bench "$@"
