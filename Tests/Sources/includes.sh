#!/usr/bin/env bash
# Each file includes only headers of its own room and of those below it, as allowed-includes.txt lists them.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$1"

rooms=()
for room in Console Platform Samples Server; do
  if [ -d "$room" ]; then rooms+=("$room"); fi
done
awk -f "$here/includes.awk" "$here/allowed-includes.txt" \
  <(grep -rE '^ *# *include "' --include='*.h' --include='*.cpp' --include='*.inc' "${rooms[@]}")
