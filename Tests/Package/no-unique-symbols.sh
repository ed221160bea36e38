#!/usr/bin/env bash
# Add-ins can be unloaded: they have no symbols that exist once in the process, and nothing that is to be
# destroyed when a thread ends.  The system would keep a module for either, without a word.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs readelf

module=$installed/lib/VnCommonData10.so
readelf --wide --symbols "$module" >"$VN_WORK/symbols"
grep -q ' _ZN2Vn' "$VN_WORK/symbols" || fail "$module has no symbols of ours"
for pin in ' UNIQUE ' '__cxa_thread_atexit'; do
  found=$(grep -F -- "$pin" "$VN_WORK/symbols" || true)
  [ -z "$found" ] || fail "the system would keep the module for $found"
done
