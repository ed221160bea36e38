#!/usr/bin/env bash
# in-a-window.sh LOG PROGRAM...: runs a program of Windows where it has a console window, which Wine makes
# of a terminal.  Its output is shown in the end: what a window shows is full of escape sequences.
set -euo pipefail
log=$1
shift
printf -v command '%q ' "$@"
status=0
script -qec "exec $command >$(printf %q "$log") 2>&1" /dev/null </dev/null >/dev/null || status=$?
tr -d '\r' <"$log"
exit "$status"
