#!/usr/bin/env bash
# Checks that twice the text takes about twice the instructions, which valgrind counts:
# unlike the time, they are the same on a busy machine.
#   instruction_growth.sh TOOL
set -euo pipefail
tool=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/run

# repeated TEXT TIMES
repeated() {
  local text
  printf -v text '%*s' "$2" ''
  printf '%s' "${text// /$1}"
}

# instructions NAME FORMULA: of an evaluation with a variable and a function of that name
instructions() {
  printf '%s\n' "$2" >"$work/formulas"
  valgrind --tool=callgrind --callgrind-out-file=/dev/null \
    "$tool" eval --lines "$work/formulas" --var "$1=1" --function "$1" 2>"$work/log" >"$work/out" ||
    [[ $(<"$work/out") == LastError* ]]
  sed -n 's/.*Collected : //p' "$work/log"
}

# formula ROW SIZE
formula() {
  local name
  name=$(repeated a "$2")
  case $1 in
    'a long name') echo "$name + 1" ;;
    'a long name among others') repeated "$name*" 15 && echo 1 ;;
    'names that are none') repeated "$name " 16 ;;
    'brackets') echo "$(repeated '(' "$2")1$(repeated ')' "$2")" ;;
    'calls') echo "$(repeated 'ABS(' "$2")1$(repeated ')' "$2")" ;;
    'operators') echo "1$(repeated +1 "$2")" ;;
    'brackets that stay open') repeated '(' "$2" ;;
    'operators without operands') repeated + "$2" ;;
    'a long literal') echo "'$name' & 1" ;;
    'a long pattern') echo "FORMAT( 1 , '$(repeated '0' "$2")' )" ;;
  esac
}

size=2000
failures=0
base=$(instructions a 1)
while read -r row; do
  once=$(instructions "$(repeated a $size)" "$(formula "$row" $size)")
  twice=$(instructions "$(repeated a $((2 * size)))" "$(formula "$row" $((2 * size)))")
  # Quadratic would be four times.
  verdict=ok
  ((twice - base <= 3 * (once - base))) || { verdict='grows too fast' && ((++failures)); }
  printf '%-30s %12d %12d  %s\n' "$row" "$((once - base))" "$((twice - base))" "$verdict"
done <<'EOF'
a long name
a long name among others
names that are none
brackets
calls
operators
brackets that stay open
operators without operands
a long literal
a long pattern
EOF
((failures == 0))
