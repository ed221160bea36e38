#!/usr/bin/env bash
# Builds the fuzz targets and runs each of them for SECONDS (300 if not given), one after the other,
# then prints how many inputs each has tried.  Fails if one of them found something; the input stands
# in the build directory then.  VN_FUZZ_BUILD names another build directory, VN_FUZZ_TARGETS a choice
# of targets.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
seconds=${1:-300}
build=${VN_FUZZ_BUILD:-$here/../../build/fuzz}
targets=${VN_FUZZ_TARGETS:-Tokenize Parse Format Rebuild Document History Options}

"$here/../install-dependencies.sh" fuzz
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DCMAKE_CXX_COMPILER=clang++-14 >/dev/null
cmake --build "$build" -j "$(nproc)" >&2

cd "$build"
status=0
report=""
for target in $targets; do
  mkdir -p "corpus/$target" findings
  log="$target.log"
  # Documents are longer than expressions, and start from documents.
  if [ "$target" = Document ]; then
    inputs=(-max_len=65536 "corpus/$target" corpus/documents)
  elif [ "$target" = Options ]; then
    inputs=(-max_len=4096 -dict=corpus/options.dict "corpus/$target" corpus/options)
  elif [ "$target" = History ]; then
    inputs=(-max_len=2048 -len_control=0 "corpus/$target")
  else
    inputs=(-max_len=4096 -dict=corpus/words.dict "corpus/$target" corpus/seeds)
  fi
  if ! "bin/Vn${target}Fuzzer" -max_total_time="$seconds" -timeout=20 \
       -print_final_stats=1 -artifact_prefix="findings/$target-" \
       "${inputs[@]}" >"$log" 2>&1; then
    status=1
    echo "Vn${target}Fuzzer found something:" >&2
    grep -v -e '^#' -e '^stat::' "$log" | tail -40 >&2
  fi
  tried=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  report+=$(printf '%-10s %12s inputs in %s s' "$target" "${tried:-?}" "$seconds")$'\n'
done
printf '%s' "$report"
exit "$status"
