#!/usr/bin/env bash
# Lists the tests that aren't run on Windows, each with the reason, and how many those are: what the
# sources leave out, in a block after "#ifndef _WIN32 // reason" or in a file that says "// Not on
# Windows: reason"; and what skipped itself in the last run of the build directory that is given.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=${1:-$here/build/windows}

{
  find "$here/Tests" -name '*.cpp' -print0 | sort -z | xargs -0 awk '
    function show(name) {
      gsub(/[ ,]+/, ".", name)
      why = file
      for (i = depth; i > 0 && why == ""; --i) why = reason[i]
      if (why != "") print name ": " why
    }
    FNR == 1 { depth = 0; file = ""; open = "" }
    /^\/\/ Not on Windows: / { file = substr($0, 20) }
    /^#if/ { ++depth; reason[depth] = "" }
    /^#ifndef _WIN32/ { reason[depth] = /\/\/ / ? substr($0, index($0, "// ") + 3) : "no reason is given" }
    /^#else|^#elif/ { reason[depth] = "" }
    /^#endif/ { --depth }
    open != "" || /^TEST(_F|_P)?\(/ { # a name may begin on the next line
      open = open $0
      if (open ~ /\)/) {
        sub(/^TEST(_F|_P)?\( */, "", open)
        sub(/ *\).*/, "", open)
        show(open)
        open = ""
      }
    }'
  log=$build/Testing/Temporary/LastTest.log
  if [ -e "$log" ]; then
    tr -d '\r' <"$log" | awk '
      /: Skipped$/ { getline why }
      /^\[  SKIPPED \] .* \([0-9]+ ms\)$/ { print $4 ": " why }'
  fi
} | { count=0; while read -r line; do echo "  $line"; count=$((count + 1)); done
      echo "Left out on Windows: $count tests"; }
