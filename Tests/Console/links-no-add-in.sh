#!/usr/bin/env bash
# links-no-add-in.sh OBJDUMP PROGRAM: the program names the add-in manager among what it needs, and no
# add-in.
set -euo pipefail

needed=$("$1" -p "$2" | sed -n 's/^ *NEEDED *//p; s/^\tDLL Name: //p')
echo "$needed"
grep -q VnAddInMgr10 <<<"$needed" || { echo "FAILED: the add-in manager isn't needed" >&2; exit 1; }
if grep -E 'VnCommonData10|VnConsole10' <<<"$needed"; then
  echo "FAILED: an add-in is linked" >&2
  exit 1
fi
