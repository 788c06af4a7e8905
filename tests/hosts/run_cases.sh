#!/usr/bin/env bash
# Runs the cases of one file against the tool, in an empty directory.
#   run_cases.sh TOOL CASES SOURCES [LEFT_OUT...]
# A case is a shell line behind "$ ", then what it must print, line by line; "! "
# stands before a part of what it must print on standard error (without any, that
# must be empty), "= " before its exit code if that is not 0. A line "# " between
# the cases is a comment, and empty lines count for nothing: "(empty)" stands for one
# that must be printed. In the shell lines, `tovalin` is the tool and $sources
# the directory of the sources. A case whose line fits a pattern LEFT_OUT is left out.
set -uo pipefail
tool=$(realpath "$1") cases=$(realpath "$2") sources=$3
shift 3
left_out=("$@")
export sources

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/bin" "$work/here"
ln -s "$tool" "$work/bin/tovalin"
PATH=$work/bin:$PATH
export XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/run
cd "$work/here" || exit 1

count=0 failures=0 command=
begin() {
  local pattern
  command=$1 expected='' parts=() code=0
  for pattern in "${left_out[@]}"; do
    # shellcheck disable=SC2053  # a pattern
    [[ $command != $pattern ]] || command=
  done
}

report() {
  ((++failures))
  printf '%s\n$ %s\n' "$1" "$command"
  printf '%s' "$2" | sed 's/^/    /'
  echo
}

check() {
  [[ -n $command ]] || return 0
  ((++count))
  bash -c "$command" >"$work/out" 2>"$work/err" </dev/null
  local got=$? part
  ((got == code)) || report "Exit code $got, not $code:" "$(cat "$work/err")"
  printf '%s' "$expected" | diff - "$work/out" >"$work/difference" ||
    report "Expected (<), printed (>):" "$(cat "$work/difference")"
  ((${#parts[@]} == 0)) && [[ -s $work/err ]] && report "On standard error:" "$(cat "$work/err")"
  for part in "${parts[@]}"; do
    grep -qF -- "$part" "$work/err" || report "Not on standard error: $part" "$(cat "$work/err")"
  done
}

begin ''
while IFS= read -r line; do
  case $line in
    '$ '*) check && begin "${line#'$ '}" ;;
    '! '*) parts+=("${line#'! '}") ;;
    '= '*) code=${line#'= '} ;;
    '') ;;
    '(empty)') expected+=$'\n' ;;
    '# '*) check && begin '' ;;
    *) [[ -z $command ]] || expected+=$line$'\n' ;;
  esac
done <"$cases"
check

echo "$count cases, $failures failures"
((count > 0 && failures == 0))
