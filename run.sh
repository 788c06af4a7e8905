#!/usr/bin/env bash
# Builds the library and the tool, and evaluates the formulas of a small payroll.
# The table goes to standard output, everything else to standard error.
set -euo pipefail
cd "$(dirname "$0")"
source cmake/build.sh

need build
[[ -f build/build.ninja ]] || configure build -DCMAKE_BUILD_TYPE=Release >&2
cmake --build build --target tovalin_shared tovalin_static tovalin_tool >&2

build/tovalin table examples/nomina.csv --formulas examples/nomina.formulas
