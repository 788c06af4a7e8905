# shellcheck shell=bash
# Sourced by the scripts of this repository: what each job needs from Debian,
# and how everything is configured.

declare -A packages=(
  [build]="g++ cmake ninja-build libcli11-dev nlohmann-json3-dev"
  [test]="libgtest-dev libgmock-dev libicu-dev libnumbertext-dev pkgconf valgrind
    mono-mcs mono-runtime"
  [windows]="cmake ninja-build g++-mingw-w64-x86-64-posix libcli11-dev nlohmann-json3-dev googletest
    wine wine64"
  [32]="g++ g++-multilib cmake ninja-build libcli11-dev nlohmann-json3-dev googletest pkgconf valgrind"
  [fuzz]="g++ cmake ninja-build clang-14 libclang-rt-14-dev nlohmann-json3-dev libcli11-dev"
  [bench]="libbenchmark-dev libmuparser-dev liblua5.4-dev pkgconf"
  [format]="git clang-format-14"
  [tidy]="git clang-tidy-14"
  [cache]="ccache"
)

# need JOB...: installs the packages of these jobs that are missing. The index is
# fetched only then: a machine that has everything needs no network.
need() {
  local job package missing=() as_root=()
  for job; do
    for package in ${packages[$job]}; do
      [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
        missing+=("$package")
    done
  done
  ((${#missing[@]})) || return 0
  ((EUID == 0)) || as_root=(sudo)
  {
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y -q --no-install-recommends "${missing[@]}"
  } >&2
}

# configure DIRECTORY OPTION...: for our own builds, which set TOVALIN_WERROR=ON, warnings
# are errors.
configure() {
  local directory=$1 launcher=() warnings=()
  shift
  if [[ ${TOVALIN_WERROR-} ]]; then warnings=(-DTOVALIN_WERROR="$TOVALIN_WERROR"); fi
  if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
  # From the environment the generator is a default only: a directory that was
  # configured by hand keeps its own.
  CMAKE_GENERATOR=Ninja cmake -S . -B "$directory" "${launcher[@]}" "${warnings[@]}" "$@"
}
