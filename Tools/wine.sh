#!/usr/bin/env bash
# Runs a program for Windows under Wine, with a Windows of its own in the directory that VN_WINEPREFIX
# names, which is made if it isn't there.  Without a program, only makes it.
set -euo pipefail

export WINEPREFIX=${VN_WINEPREFIX:-${TMPDIR:-/tmp}/vn-wine-$(id -u)}
export WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
# Neither .NET nor a browser, nor menus for the desktop.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
unset DISPLAY

mkdir -p "$WINEPREFIX"
(
  flock 9
  if [ ! -e "$WINEPREFIX/ready" ]; then
    wine wineboot --init </dev/null >/dev/null 2>&1 9>&-
    wineserver -w 9>&-
    touch "$WINEPREFIX/ready"
  fi
  # A server that stays for a while: a program that starts while the server of another one ends would
  # fail.  If one is running already, it stays.
  wineserver -p30 </dev/null >/dev/null 2>&1 9>&- || true
) 9>"$WINEPREFIX/lock"

if [ $# -gt 0 ]; then exec wine "$@"; fi
