#!/usr/bin/env bash
# Feeds generated inputs to the library, SECONDS (30) for each target, and stops at
# the first fault. TARGETs are the names behind "fuzz_", all by default.
#   tests/fuzz/run.sh [SECONDS [TARGET...]]
# With --runs N in place of SECONDS, N inputs for each target, from the same seed.
#   tests/fuzz/run.sh --runs N [TARGET...]
#
# What was found worth keeping is in build-fuzz/corpus/TARGET for the next run. An
# input that failed is in build-fuzz/failures; to see it fail again, hand it to its
# program alone:
#   build-fuzz/tests/fuzz/fuzz_TARGET FILE
set -euo pipefail
cd "$(dirname "$0")/../.."
source cmake/build.sh

start=()
if [[ ${1-} == --runs ]]; then
  effort=(-runs="$2" -seed=1)
  shift 2
  corpus=build-fuzz/corpus-of-runs
  rm -rf "$corpus"
  # Addresses, too, become parts of inputs: without this no two runs are alike.
  if setarch --addr-no-randomize true 2>/dev/null; then start=(setarch --addr-no-randomize); fi
else
  effort=(-max_total_time="${1:-30}")
  shift $(($# > 0))
  corpus=build-fuzz/corpus
fi
targets=("$@")
if ((${#targets[@]} == 0)); then
  for source in tests/fuzz/fuzz_*.cc; do
    target=$(basename "$source" .cc)
    targets+=("${target#fuzz_}")
  done
fi

# The dictionaries of those that take formulas or patterns; CSV has formulas too.
declare -A dictionary=([formula]=formula [host]=formula [rows]=formula [csv]=formula
  [patterns]=patterns [late]=patterns [c]=patterns [settings]=settings)

need fuzz
export TOVALIN_WERROR=ON  # what clang warns of, too
configure build-fuzz -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG=-g1 -DTOVALIN_SANITIZE=ON -DTOVALIN_BUILD_FUZZ=ON \
  -DTOVALIN_BUILD_TOOL=OFF
cmake --build build-fuzz --target "${targets[@]/#/fuzz_}"

# The trace of an evaluation goes to the user's settings: not to this user's.
export XDG_CONFIG_HOME=$PWD/build-fuzz/config XDG_RUNTIME_DIR=$PWD/build-fuzz/config
mkdir -p build-fuzz/failures "$XDG_CONFIG_HOME"
for target in "${targets[@]}"; do
  echo "== fuzz_$target, ${effort[*]}"
  mkdir -p "$corpus/$target"
  "${start[@]}" build-fuzz/tests/fuzz/"fuzz_$target" "${effort[@]}" -timeout=10 \
    -rss_limit_mb=2048 -max_len=2048 -print_final_stats=1 \
    -artifact_prefix="build-fuzz/failures/$target-" \
    ${dictionary[$target]:+-dict=tests/fuzz/${dictionary[$target]}.dict} \
    "$corpus/$target" "tests/fuzz/corpus/$target"
done
