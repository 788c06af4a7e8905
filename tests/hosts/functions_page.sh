#!/usr/bin/env bash
# Checks that the tables of a page are those of the vocabulary; with --update writes them.
#   functions_page.sh TOOL PAGE [--update]
# A table stands between "<!-- funciones: GROUP -->" and "<!-- fin -->".
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$1" functions --markdown >"$work/tables"
awk '
  NR == FNR { if (/^<!-- funciones:/) mark = $0; table[mark] = table[mark] $0 "\n"; next }
  /^<!-- funciones:/ { printf "%s", table[$0]; used[$0] = 1; within = 1 }
  !within
  /^<!-- fin -->/ { within = 0 }
  END { for (mark in table) if (!used[mark]) { print "No table: " mark; exit 1 } }
' "$work/tables" "$2" >"$work/page"
if [[ ${3-} == --update ]]; then
  cp "$work/page" "$2"
else
  diff "$2" "$work/page" || {
    echo "The tables of $2 differ: $0 $1 $2 --update"
    exit 1
  }
fi
