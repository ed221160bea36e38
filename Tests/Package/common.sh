# What the scripts of these tests share.  They find in their environment the tools, the sources, the
# build and a directory of their own.
set -euo pipefail
unset LD_LIBRARY_PATH LANGUAGE PKG_CONFIG_PATH CMAKE_PREFIX_PATH
export LC_ALL=C.UTF-8

here=$(dirname "${BASH_SOURCE[0]}")
installed=$VN_WORK/moved/to/another/prefix

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# needs PROGRAM...: skips the test on a machine without one of them.
needs() {
  for program in "$@"; do
    command -v "$program" >/dev/null || { echo "skipped: no $program here"; exit 77; }
  done
}

# same WHAT GOT WANTED
same() {
  [ "$2" = "$3" ] || fail "$1 is \"$2\", not \"$3\""
}

# fresh DIRECTORY: makes it, empty.
fresh() {
  rm -rf "$1"
  mkdir -p "$1"
}

# What the consumer prints.
consumer_output() {
  cat <<END
2' 6 3/4" = 78.105 cm = 2'-6 3/4"
1 km / hr = 27.77777777777778 cm / s
meter is a base unit, newton isn't
12 in by default: 30.48 cm
sqrt(16) is read, wurzel(16) isn't
Notes/CmnData[0]: a note that was saved
END
}

# try_console PREFIX: the console of an installed tree knows its library and its languages.
try_console() {
  local console=$1/bin/vnconsole
  same "the version" "$("$console" --version)" "vnconsole $VN_VERSION"
  "$console" eval --standard --unit cm '1 in + 1' | grep -q '^formatted  3\.54 cm$' ||
    fail "1 in + 1"
  "$console" --language de eval 'wurzel(16)' | grep -q '^neu gebildet  wurzel(16)$' || fail "German"
  "$console" --language fr eval 'racine(16)' | grep -q '^reconstruite  racine(16)$' || fail "French"
  "$console" --language ja units meter | grep -q '長さ' || fail "Japanese"
  "$console" self-test >/dev/null || fail "the self-test"
  same "the add-ins" "$("$console" add-ins | awk 'NR > 1 { print $1, $2, $4 }')" \
    "$(printf '%s\n' 'CommonData VnCommonData10.so loaded' 'Console VnConsole10.so loaded')"
  if "$console" eval '1 +' 2>/dev/null; then fail "an unfinished text is good"; fi
}

# files_of GUIDE WORK: the blocks of a guide that name a file, as these files.
files_of() {
  awk -v work="$2" '
    /^```[a-z]+ [A-Za-z.-]+$/ { file = work "/" $2; next }
    /^```$/ { file = "" }
    file != "" { print > file }' "$VN_SOURCES/$1"
}

# try_find_package PREFIX WORK: the consumer, built by find_package.
try_find_package() {
  fresh "$2"
  "$VN_CMAKE" -S "$here/Consumer" -B "$2" -DCMAKE_PREFIX_PATH="$1" -DCMAKE_CXX_COMPILER="$VN_CXX" \
    -DCMAKE_BUILD_TYPE=Release "${@:3}" >"$2/log" 2>&1 || { cat "$2/log"; return 1; }
  "$VN_CMAKE" --build "$2" >>"$2/log" 2>&1 || { cat "$2/log"; return 1; }
  same "the consumer's output" "$("$2/consumer" "$2/notes.vnd")" "$(consumer_output)"
}

# try_pkg_config PREFIX WORK: the consumer, built by pkg-config.
try_pkg_config() {
  fresh "$2"
  local flags libdir
  export PKG_CONFIG_PATH=$1/lib/pkgconfig
  same "the version" "$(pkg-config --modversion VnCommonData10)" "$VN_VERSION"
  read -ra flags <<<"$(pkg-config --cflags --libs VnCommonData10)"
  libdir=$(pkg-config --variable=libdir VnCommonData10)
  "$VN_CXX" -std=c++20 -o "$2/consumer" "$here/Consumer/consumer.cpp" "${flags[@]}" \
    "-Wl,-rpath,$libdir"
  same "the consumer's output" "$("$2/consumer" "$2/notes.vnd")" "$(consumer_output)"
}
