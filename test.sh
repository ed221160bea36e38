#!/usr/bin/env bash
# Builds everything and runs all tests.  Arguments are the presets to test: release (the default),
# debug, asan, tsan, windows.  VN_LEAVE_OUT is a regular expression for the tests that aren't run.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here"

if [ $# -eq 0 ]; then set -- release; fi
case " $* " in
  *" windows "*) Tools/install-dependencies.sh windows ;;
  *) Tools/install-dependencies.sh ;;
esac
for locale in de_DE fr_FR ja_JP tr_TR; do # for the tests in other locales, where they may be made
  if [ "$(id -u)" -eq 0 ] && ! locale -a | grep -qi "^$locale.utf"; then
    localedef -i "$locale" -f UTF-8 "$locale.UTF-8" || true
  fi
done
for preset in "$@"; do
  echo "== $preset"
  cmake --preset "$preset"
  cmake --build --preset "$preset" -j "$(nproc)"
  ctest --preset "$preset" -j "$(nproc)" ${VN_LEAVE_OUT:+--exclude-regex "$VN_LEAVE_OUT"}
  if [ "$preset" = windows ]; then
    VN_WINEPREFIX=$here/build/windows/wine Tools/wine.sh build/windows/bin/vnconsole.exe self-test
    Tools/windows/left-out.sh build/windows
  else
    "build/$preset/bin/vnconsole" self-test
  fi
done
