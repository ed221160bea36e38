#!/usr/bin/env bash
# The host and the add-in of the guide, built and run against an installation as it says there.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$VN_WORK/hosting
fresh "$work"
cp -R "$installed" "$work/prefix"

# A block that names a file is that file, and the one of output what the host prints.
awk -v work="$work" '
  /^```[a-z]+ [A-Za-z.]+$/ { file = work "/" $2; next }
  /^```output$/ { file = work "/expected"; next }
  /^```$/ { file = "" }
  file != "" { print > file }' "$VN_SOURCES/Docs/hosting.md"
lines=$(wc -l <"$work/host.cpp")
[ "$lines" -le 60 ] || fail "the host has $lines lines"

"$VN_CMAKE" -S "$work" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCMAKE_INSTALL_PREFIX="$work/prefix" -DCMAKE_CXX_COMPILER="$VN_CXX" -DCMAKE_BUILD_TYPE=Release \
  >"$work/log" 2>&1 || { cat "$work/log"; fail "it can't be configured"; }
"$VN_CMAKE" --build "$work/build" --target install >>"$work/log" 2>&1 ||
  { cat "$work/log"; fail "it can't be built"; }

if readelf -d "$work/prefix/bin/host" | grep -q VnCommonData10; then fail "the host links an add-in"; fi
same "what the host prints" "$("$work/prefix/bin/host" "$work/a.vnd")" "$(cat "$work/expected")"

# Without its server, the add-in is refused and says why.
rm "$work/prefix/Server/CommonData/Configuration/VnCommonData10.xml"
if "$work/prefix/bin/host" "$work/b.vnd" >"$work/out"; then fail "it runs without the server"; fi
grep -q 'CommonData' "$work/out" || fail "it doesn't say what is missing: $(cat "$work/out")"
