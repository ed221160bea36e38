#!/usr/bin/env bash
# Builds everything and runs all tests.  Arguments are the presets to test: release (the default),
# debug, asan, tsan.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here"

Tools/install-dependencies.sh
for locale in de_DE fr_FR ja_JP tr_TR; do # for the tests in other locales, where they may be made
  if [ "$(id -u)" -eq 0 ] && ! locale -a | grep -qi "^$locale.utf"; then
    localedef -i "$locale" -f UTF-8 "$locale.UTF-8" || true
  fi
done
if [ $# -eq 0 ]; then set -- release; fi
for preset in "$@"; do
  echo "== $preset"
  cmake --preset "$preset"
  cmake --build --preset "$preset" -j "$(nproc)"
  ctest --preset "$preset" -j "$(nproc)"
  "build/$preset/bin/vnconsole" self-test
done
