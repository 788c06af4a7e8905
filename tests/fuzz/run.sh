#!/usr/bin/env bash
# Feeds generated formulas to the library for SECONDS (30) and stops at the first
# fault. What was found worth keeping is in build-fuzz/corpus for the next run.
#   tests/fuzz/run.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/../.."
source cmake/build.sh

need fuzz
configure build-fuzz -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG=-g1 -DTOVALIN_SANITIZE=ON -DTOVALIN_BUILD_FUZZ=ON \
  -DTOVALIN_BUILD_TOOL=OFF -DTOVALIN_WERROR=OFF
cmake --build build-fuzz --target fuzz_formula

corpora=(build-fuzz/corpus)
[[ ! -d tests/fuzz/seeds ]] || corpora+=(tests/fuzz/seeds)
options=()
[[ ! -f tests/fuzz/formula.dict ]] || options+=(-dict=tests/fuzz/formula.dict)
mkdir -p build-fuzz/corpus
# The trace of an evaluation goes to the user's settings: not to this user's.
XDG_CONFIG_HOME=$PWD/build-fuzz/config XDG_RUNTIME_DIR=$PWD/build-fuzz/run build-fuzz/tests/fuzz/fuzz_formula \
  -max_total_time="${1:-30}" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
  -artifact_prefix=build-fuzz/ "${options[@]}" "${corpora[@]}"
