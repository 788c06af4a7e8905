#!/usr/bin/env bash
# Checks that `tovalin trace --follow` shows each new trace, and ends well when it
# is asked to.
#   follow_trace.sh TOOL
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/run
tool=$1

# Waits until the output has a line, for as long as the one who runs this test does.
shown() {
  until grep -qxF -- "$1" "$work/out"; do sleep 0.1; done
}

for signal in INT TERM; do
  "$tool" eval "1 + 1" >"$work/result"
  : >"$work/out"
  "$tool" trace --follow >"$work/out" &
  follower=$!
  shown "Resultado=2"
  "$tool" eval "20 * 2" >"$work/result"
  shown "Resultado=40"
  shown "Expresion=20 * 2"
  # Nothing new: nothing more is shown.
  lines=$(wc -l <"$work/out")
  sleep 0.6
  [[ $(wc -l <"$work/out") == "$lines" ]]
  kill -"$signal" "$follower"
  wait "$follower"
done

# That there is no trace at one moment, or settings that cannot be read, does not end it.
rm -rf "$work/config" "$work/run"
mkdir -p "$work/config/tovalin/Evaluador.ini"
"$tool" trace --follow >"$work/out" &
follower=$!
sleep 0.5
rmdir "$work/config/tovalin/Evaluador.ini"
shown "Expresion="
"$tool" eval '"más tarde"' >"$work/result"
shown "Resultado=más tarde"
kill "$follower"
wait "$follower"
