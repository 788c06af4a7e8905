#!/usr/bin/env bash
# Checks that the tool computes a table without keeping its rows: the most memory
# that one process held after 10,000 rows and after 200,000.
#   table_memory.sh TOOL
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config

mkfifo "$work/in"
printf '%s\n' 'Total = Precio * Cantidad' 'Letras = MontoEscrito(Total)' >"$work/formulas"
"$1" table "$work/in" --formulas "$work/formulas" -o "$work/out" &
tool=$!
exec 3>"$work/in"

write_rows() { awk -v first="$1" -v last="$2" 'BEGIN {
  for (i = first; i <= last; ++i) printf "%d,Artículo de prueba %d,12.5,%d\n", i, i, i % 1000 }' >&3; }
peak_kilobytes() { awk '/^VmHWM/ { print $2 }' "/proc/$tool/status"; }

echo 'Codigo,Nombre,Precio,Cantidad' >&3
write_rows 1 10000
first=$(peak_kilobytes)
write_rows 10001 200000
second=$(peak_kilobytes)
exec 3>&-
wait "$tool"

lines=$(wc -l <"$work/out")
echo "Peak after 10,000 rows $first KB, after 200,000 $second KB; $lines lines"
# Kept rows would be some 20 MB more.
((lines == 200001 && second - first < 2048))
