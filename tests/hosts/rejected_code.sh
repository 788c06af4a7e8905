#!/usr/bin/env bash
# Checks that what a host must not write is refused with a message that helps, as the
# compiler's first error.
#   rejected_code.sh COMPILER HEADERS
set -uo pipefail
compiler=$1 headers=$2
failures=0

# rejects STANDARD MESSAGE, the code on standard input
rejects() {
  local errors
  errors=$("$compiler" "-std=$1" -I"$headers" -Wfatal-errors -fsyntax-only -x c++ - 2>&1) && errors='(it compiles)'
  grep -m 1 -E 'error: |\(it compiles\)' <<<"$errors" | grep -qF -- "$2" && return
  ((++failures))
  printf 'Not refused with "%s":\n%s\n' "$2" "$(head -n 20 <<<"$errors")"
}

for header in "$headers"/tovalin/*.h; do
  [[ $header != */tovalin_c.h ]] || continue  # C, and any C++
  rejects c++17 'Tovalin needs C++20' <<<"#include <tovalin/${header##*/}>"
done

members=('[] { return 1L; }' '[](int*) {}' '[](auto) {}' '[](Text&&) {}' '[](std::size_t) {}'
  '[](Ref<int>) {}' '[] { return "a"; }' '5' '[] { return 1; }, [](unsigned) {}')
for member in "${members[@]}"; do
  rejects c++20 'A getter, setter or action of a control' <<EOF
#include <tovalin/control.h>
using namespace tovalin;
auto control = MakeControl(ControlKind::Other, {{u"M", $member}});
EOF
done

((failures == 0))
