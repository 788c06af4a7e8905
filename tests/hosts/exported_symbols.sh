#!/usr/bin/env bash
# Checks that a shared library shows its public interface and nothing else: each
# exported symbol is of namespace tovalin, and what stands next in its name is
# declared in a public header. The functions of the C header are exported, and no others.
#   exported_symbols.sh LIBRARY HEADERS
set -euo pipefail
export LC_ALL=C
library=$1 headers=$2

symbols=$(nm -DC --defined-only "$library" | sed -E 's/^[0-9a-f]* +[[:alpha:]] //')
# What the compiler makes of a class counts as the class.
names=$(sed -E 's/^(vtable|VTT|typeinfo|typeinfo name|(non-)?virtual thunk) (for|to) //' <<<"$symbols" |
  sort -u)

foreign=$(grep -Ev '^(tovalin::|tov_)' <<<"$names" || true)
of_c=$(diff <(grep '^tov_' <<<"$names") \
  <(sed -nE 's/^TOV_API .*\b(tov_\w+)\(.*/\1/p' "$headers"/tovalin_c.h | sort -u) || true)
public=$(grep -Eoh '\w+' "$headers"/*.h | sort -u)
internal=$(sed -nE 's/^tovalin::(\w+).*/\1/p' <<<"$names" | sort -u | comm -23 - <(echo "$public"))

echo "$(wc -l <<<"$symbols") symbols"
[[ -z $foreign ]] || echo "Not of this library: $foreign"
[[ -z $internal ]] || echo "Not in a public header: $internal"
[[ -z $of_c ]] || echo "Of the C interface, exported (<) or declared (>) alone: $of_c"
# An empty list would be a library that nobody can use.
grep -q '^tovalin::CreateObject(' <<<"$names" || { echo "CreateObject is missing"; exit 1; }
[[ -z $foreign && -z $internal && -z $of_c ]]
