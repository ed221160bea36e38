#!/usr/bin/env bash
# Each source is as clang-format leaves it.  Another version of the tool has another opinion, so that the
# test is left out where version 14 isn't installed.
set -euo pipefail
cd "$1"

tool=
for candidate in clang-format-14 clang-format; do
  if command -v "$candidate" >/dev/null && "$candidate" --version | grep -q 'version 14\.'; then
    tool=$candidate
    break
  fi
done
if [ -z "$tool" ]; then
  echo "clang-format 14 isn't installed"
  exit 77
fi

rooms=()
for room in Benchmarks Console Docs Platform Server Tests Tools; do
  if [ -d "$room" ]; then rooms+=("$room"); fi
done
find "${rooms[@]}" \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 -n 16 -P "$(nproc)" "$tool" --dry-run --Werror
