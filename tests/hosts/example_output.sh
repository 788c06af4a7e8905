#!/usr/bin/env bash
# Checks that an example prints what a page shows in its block ```text.
#   example_output.sh PROGRAM PAGE
set -euo pipefail
# shellcheck disable=SC2016
block=$(sed -n '/^```text$/,/^```$/p' "$2" | sed '1d;$d')
[[ -n $block ]]
diff <(echo "$block") <("$1")
