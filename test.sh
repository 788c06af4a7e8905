#!/usr/bin/env bash
# Builds and runs all tests:
#   test.sh [--release|--sanitized|--32|--windows]
# as shipped, under the sanitizers, for 32 bits, or for Windows and under Wine. Without
# an argument, the first two. Warnings are errors.
set -euo pipefail
cd "$(dirname "$0")"
source cmake/build.sh

run_tests() {
  cmake --build "$1"
  ctest --test-dir "$1" --output-on-failure --no-tests=error -j"$(nproc)"
}

# Wine leaves nothing behind: neither its server nor its prefix, of some 700 MB.
start_wine() {
  export WINEPREFIX=$1 WINEDEBUG=-all LC_ALL=C.UTF-8
  # Neither offers to fetch what no test needs, nor changes the menus of the desktop.
  export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
  unset DISPLAY
  rm -rf "$WINEPREFIX"
  trap 'wineserver -k || true; rm -rf "$WINEPREFIX"' EXIT
  wineboot --init
}

test_windows() {
  local build=$PWD/build-windows toolchain=$PWD/cmake/mingw-w64.cmake
  configure "$build" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release \
    -DTOVALIN_BUILD_TESTS=ON
  cmake --build "$build"
  # A host that links with the DLL shows that it exports what the headers declare.
  rm -rf "$build/consumer"
  cmake --install "$build" --prefix "$build/consumer/prefix"
  CMAKE_GENERATOR=Ninja cmake -S tests/hosts/consumer -B "$build/consumer" \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DTovalin_DIR="$build/consumer/prefix/lib/cmake/Tovalin"
  cmake --build "$build/consumer"

  start_wine "$build/wine"
  ctest --test-dir "$build" --output-on-failure --no-tests=error -j"$(nproc)"
  run_consumer "$build/consumer"
}

# run_consumer DIRECTORY: the DLL lies in its prefix, those of the compiler where it keeps them.
run_consumer() {
  local compiler=x86_64-w64-mingw32-g++-posix dll program
  export WINEPATH="Z:$1/prefix/bin"
  for dll in libstdc++-6.dll libwinpthread-1.dll; do
    WINEPATH+=";Z:$(dirname "$("$compiler" -print-file-name="$dll")")"
  done
  for program in "$1"/consumer_*.exe; do wine "$program"; done
}

# As shipped. In the build of run.sh: what users get is what is tested.
test_release() {
  configure build -DCMAKE_BUILD_TYPE=Release -DTOVALIN_BUILD_TESTS=ON
  run_tests build
}

# This one keeps the assertions too.
test_sanitized() {
  configure build-sanitized -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-g1 \
    -DTOVALIN_SANITIZE=ON -DTOVALIN_BUILD_TESTS=ON
  export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1
  export UBSAN_OPTIONS=print_stacktrace=1
  run_tests build-sanitized
}

test_32() {
  configure build-32 -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/linux-32.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DTOVALIN_BUILD_TESTS=ON
  run_tests build-32
}

export TOVALIN_WERROR=ON
case ${1-} in
  '') needs=(build test) jobs=(test_release test_sanitized) ;;
  --release) needs=(build test) jobs=(test_release) ;;
  --sanitized) needs=(build test) jobs=(test_sanitized) ;;
  --32) needs=(32) jobs=(test_32) ;;
  --windows) needs=(windows) jobs=(test_windows) ;;
  *)
    sed -n '2,/^set/{/^#/p}' "$0" >&2
    exit 2
    ;;
esac
need "${needs[@]}"
for job in "${jobs[@]}"; do "$job"; done
