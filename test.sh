#!/usr/bin/env bash
# Builds and runs all tests, first as shipped, then under the sanitizers.
# With --windows, compiles the library for Windows instead.
set -euo pipefail
cd "$(dirname "$0")"
source cmake/build.sh

run_tests() {
  cmake --build "$1"
  ctest --test-dir "$1" --output-on-failure --no-tests=error -j"$(nproc)"
}

if [[ ${1-} == --windows ]]; then
  need windows
  configure build-windows -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
    -DCMAKE_BUILD_TYPE=Release -DTOVALIN_BUILD_TOOL=OFF
  cmake --build build-windows
  # A host that links with the DLL shows that it exports what the headers declare.
  rm -rf build-windows/consumer
  cmake --install build-windows --prefix build-windows/consumer/prefix
  CMAKE_GENERATOR=Ninja cmake -S tests/hosts/consumer -B build-windows/consumer \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw-w64.cmake" \
    -DTovalin_DIR="$PWD/build-windows/consumer/prefix/lib/cmake/Tovalin"
  cmake --build build-windows/consumer
  exit
fi

need build test

# The build of run.sh: what users get is what is tested, and is compiled once.
configure build -DCMAKE_BUILD_TYPE=Release -DTOVALIN_BUILD_TESTS=ON
run_tests build

# This one keeps the assertions too.
configure build-sanitized -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-g1 \
  -DTOVALIN_SANITIZE=ON -DTOVALIN_BUILD_TESTS=ON
export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1
run_tests build-sanitized
