#!/usr/bin/env bash
# Checks that a page and its translation have the same headings, code, tables and links.
#   translated_page.sh PAGE TRANSLATION
# Code is a block between ``` or a paragraph with four blanks in front; of a table the first
# column and the number of rows count, of the links where they lead.
set -euo pipefail
page=$1 translation=$2

# The levels of the headings, the lines of code and the rows of tables, in their order.
outline() {
  awk '
    /^```/ { fenced = !fenced; print; next }
    fenced || /^    / { print; next }
    /^#+ / { print $1; next }
    /^\| `/ { split($0, cells, " \\| "); print cells[1] }
  ' "$1"
}
# A page may lead to the other one.
links() { grep -oE '\]\([^)]+\)' "$1" | grep -vF -e "(${page##*/})" -e "(${translation##*/})" | sort; }

for part in outline links; do
  diff <("$part" "$1") <("$part" "$2") || {
    echo "$1 (<) and $2 (>) differ in their $part"
    exit 1
  }
done
[[ -n $(outline "$1") && -n $(links "$1") ]]
