#!/usr/bin/env bash
# One step of the consumer's tests:
#   check.sh install|find_package|pkg_config|add_subdirectory SOURCE BUILD
set -euo pipefail
step=$1 source=$2 build=$3
consumer=$source/tests/hosts/consumer
work=$build/consumer
prefix=$work/prefix

install() {
  # What an earlier install left must not stand in for what this one forgot.
  rm -rf "$prefix"
  cmake --install "$build" --prefix "$prefix"
}

find_package() {
  rm -rf "$work/find_package"
  cmake -S "$consumer" -B "$work/find_package" -DCMAKE_PREFIX_PATH="$prefix"
  cmake --build "$work/find_package"
  "$work/find_package/consumer_tovalin"
  "$work/find_package/consumer_tovalin_static"
}

pkg_config() {
  local flags libdir
  PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name tovalin.pc)")
  export PKG_CONFIG_PATH
  flags=$(pkg-config --cflags --libs tovalin)
  libdir=$(pkg-config --variable=libdir tovalin)
  # shellcheck disable=SC2086  # several flags, no blanks within one
  "$CXX" $CXXFLAGS -std=c++20 "$consumer/main.cc" $flags -Wl,-rpath,"$libdir" -o "$work/with_pkg_config"
  "$work/with_pkg_config"
}

add_subdirectory() {
  # Up to the build: compiling the library once more would tell nothing new.
  rm -rf "$work/add_subdirectory"
  cmake -S "$consumer" -B "$work/add_subdirectory" -DTOVALIN_SOURCE="$source"
}

"$step"
