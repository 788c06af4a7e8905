#!/usr/bin/env bash
# Checks that what a page shows in its blocks ```console is what the tool does.
#   page_cases.sh TOOL PAGE SOURCES
set -euo pipefail
cases=$(mktemp)
trap 'rm -f "$cases"' EXIT
# shellcheck disable=SC2016
sed -n '/^```console$/,/^```$/{/^```/!p}' "$2" >"$cases"
grep -q '^\$ ' "$cases"
"$(dirname "$0")/run_cases.sh" "$1" "$cases" "$3"
