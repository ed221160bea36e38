#!/usr/bin/env bash
# start-up.sh PROGRAM OTHER [COUNT]: how long two programs take to evaluate "1", by turns; OTHER with
# libxml2 loaded into it, which a console without preferences doesn't need.  Prints the median and the
# least of each in milliseconds.
set -euo pipefail
program=$1
other=$2
count=${3:-400}
library=$(ldconfig -p | sed -n 's/.*libxml2\.so\.2 .*=> //p' | head -1)
XDG_CONFIG_HOME=$(mktemp -d)
export XDG_CONFIG_HOME
trap 'rm -rf "$XDG_CONFIG_HOME"' EXIT

once() { # ENVIRONMENT PROGRAM: microseconds
  local begin=${EPOCHREALTIME/./}
  env $1 "$2" eval 1 >/dev/null
  echo $((${EPOCHREALTIME/./} - begin))
}
for ((i = 0; i < count; ++i)); do
  once PREFERENCES=1 "$program" >>"$XDG_CONFIG_HOME/program"
  once "LD_PRELOAD=$library" "$other" >>"$XDG_CONFIG_HOME/other"
done
for name in program other; do
  sort -n "$XDG_CONFIG_HOME/$name" |
    awk -v name="$name" '{ v[NR] = $1 } END { printf "%-8s median %.3f  least %.3f\n", name, v[int((NR+1)/2)]/1000, v[1]/1000 }'
done
