#!/usr/bin/env bash
# Each public header can be included first, twice, and without a warning.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

include=$installed/include/VnCommonData10
work=$VN_WORK/public-headers
fresh "$work"
headers=$(cd "$include" && find . -name '*.h' | sed 's|^\./||' | sort)
[ "$(wc -l <<<"$headers")" -ge 30 ] || fail "few headers: $headers"

compile() {
  local source=$work/${1//\//_}.cpp
  printf '#include "%s"\n#include "%s"\n' "$1" "$1" >"$source"
  "$VN_CXX" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror \
    -I "$include" "$source" || { echo "FAILED: $1" >&2; return 1; }
}
export -f compile
export include work
xargs -P "$(nproc)" -I '{}' bash -c 'compile "{}"' <<<"$headers"
