#!/usr/bin/env bash
# The programs of the guide for those who embed the library, built against an installation and run by the commands
# that stand there, with what they print.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs pkg-config

work=$VN_WORK/embedding
fresh "$work"

files_of Docs/embedding.md "$work"

mkdir "$work/tools"
ln -s "$VN_CMAKE" "$work/tools/cmake"
ln -s "$(command -v "$VN_CXX")" "$work/tools/g++"
export PATH=$work/tools:$PATH PREFIX=$installed CXX=$VN_CXX
cd "$work"
first=$(bash -e with-cmake.sh 2>log | tail -n "$(wc -l <expressions.txt)") || { cat log; fail "with-cmake.sh"; }
same "what it prints, with CMake" "$first" "$(cat expressions.txt)"
same "what it prints, with pkg-config" "$(bash -e with-pkg-config.sh)" "$(cat expressions.txt)"
same "what the document says" "$(build/documents "$work/a.vnd")" "$(cat documents.txt)"
same "what the threads say" "$(build/threads)" "$(cat threads.txt)"
