#!/usr/bin/env bash
# Builds the console if it is out of date and runs it with the given arguments; with none, shows a
# short tour.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

"$here/Tools/install-dependencies.sh"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake -S "$here" --preset release -DVN_BUILD_TESTS=OFF -DVN_BUILD_BENCHMARKS=OFF -B "$here/build/run" &&
       cmake --build "$here/build/run" --target vnconsole -j "$(nproc)"; } >"$log" 2>&1; then
  cat "$log" >&2
  exit 70
fi
rm -f "$log"
if [ $# -eq 0 ]; then set -- tour; fi
exec "$here/build/run/bin/vnconsole" "$@"
