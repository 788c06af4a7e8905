#!/usr/bin/env bash
# Compiles the example in C# and runs it with the library beside it.
#   csharp.sh MCS MONO SOURCES LIBRARY DIRECTORY
set -euo pipefail
mcs=$1 mono=$2 sources=$3 library=$4 directory=$5

mkdir -p "$directory"
"$mcs" -warnaserror -out:"$directory/tarifa.exe" "$sources"/*.cs
LD_LIBRARY_PATH=$(dirname "$library") "$mono" "$directory/tarifa.exe"
