#!/usr/bin/env bash
# Kills the tool again and again while it writes a flat file: under the file's name there
# is what was there before, or the whole new file, and never a part.
#   flat_kill.sh TOOL [KILLS]
set -euo pipefail
tool=$(realpath "$1") kills=${2:-20}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config
cd "$work"

echo '{"tovalin:formato": "fijo", "fields": [{"name": "A", "tovalin:ancho": 20},
  {"name": "B", "type": "integer", "tovalin:ancho": 10, "tovalin:relleno": "0"}]}' >layout.json
awk 'BEGIN { print "A,B"; for (i = 0; i < 40000; ++i) printf "Texto %d,%d\n", i, i }' >in.csv
start=$(date +%s%N)
"$tool" flat write --layout layout.json in.csv -o whole.txt
length=$((($(date +%s%N) - start) / 1000))  # microseconds
echo before >old.txt

old=0 new=0
for ((i = 0; i < kills; ++i)); do
  cp old.txt out.txt
  "$tool" flat write --layout layout.json in.csv -o out.txt &
  writer=$!
  # At every part of the writing, and a little behind its end.
  sleep "$(awk -v i="$i" -v n="$kills" -v t="$length" 'BEGIN { printf "%.6f", 1.2 * t * i / n / 1e6 }')"
  kill -KILL "$writer" 2>/dev/null || true
  { wait "$writer" || true; } 2>/dev/null
  if cmp -s out.txt old.txt; then
    old=$((old + 1))
  elif cmp -s out.txt whole.txt; then
    new=$((new + 1))
  else
    echo "Kill $i left a part"
    exit 1
  fi
done
echo "$kills kills: $old left the old file, $new the new one"
# Both must have been met, or the kills missed the writing.
((old > 0))
