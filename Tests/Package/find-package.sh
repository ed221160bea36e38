#!/usr/bin/env bash
# Another project finds the package with CMake.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$VN_WORK/find-package
try_find_package "$installed" "$work"

if try_find_package "$installed" "$work-11" -DWANTED=11 >/dev/null 2>&1; then
  fail "version 11 was found"
fi
grep -q 'VnCommonData10' "$work-11/log" || fail "version 11 was missed for another reason"

if grep -rq 'Objects' "$installed/lib/cmake"; then fail "the objects are offered to others"; fi
