#!/usr/bin/env bash
# Builds the libraries that come with the build for Windows, SQLite and libxml2, from Debian's own source
# packages, and installs them into a directory (build/windows-dependencies if none is given): the DLLs in
# bin, their import libraries in lib, their headers in include, their licences in licenses.  Does nothing
# where that is done.
#
# The sources are fetched by apt with lists of its own, so that those of this machine stay as they are; apt
# checks them by Debian's keys.  VN_DEBIAN_MIRROR and VN_DEBIAN_SECURITY_MIRROR name other mirrors.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
target=${1:-$here/../../build/windows-dependencies}
mkdir -p "$target"
target=$(cd "$target" && pwd)
triple=x86_64-w64-mingw32
compiler=$(command -v $triple-gcc-posix || command -v $triple-gcc)
command -v ccache >/dev/null && launcher=(ccache) || launcher=()

# What Debian 12 has; any revision of it.
sqlite=3.40.1
libxml2=2.9.14
release=bookworm

made_of=$({ cat "${BASH_SOURCE[0]}"; "$compiler" --version; } | sha256sum | cut -c1-64)
exec 9>"$target/lock"
flock 9
if [ "$(cat "$target/made-of" 2>/dev/null)" = "$made_of" ]; then exit 0; fi
rm -rf "$target/made-of" "$target"/{bin,lib,include,licenses}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/{lists/partial,cache/archives/partial,source,sqlite,libxml2}

# run COMMAND...: what it says is shown only if it fails.
run() { "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }; }

# --- Sources -----------------------------------------------------------------------------------

keyring=/usr/share/keyrings/debian-archive-keyring.gpg
cat >"$work/sources.list" <<END
deb-src [signed-by=$keyring] ${VN_DEBIAN_MIRROR:-http://deb.debian.org/debian} $release main
deb-src [signed-by=$keyring] ${VN_DEBIAN_SECURITY_MIRROR:-http://deb.debian.org/debian-security} $release-security main
END
apt() {
  local tool=$1
  shift
  "$tool" -q -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts=/dev/null \
          -o Dir::State::lists="$work/lists" -o Dir::Cache="$work/cache" \
          -o APT::Sandbox::User="$(id -un)" -o APT::Get::AllowUnauthenticated=false "$@"
}
run apt apt-get update

# fetch PACKAGE VERSION DIRECTORY: the newest revision of that version, with Debian's changes.
fetch() {
  local version
  version=$(apt apt-cache showsrc "$1" | sed -n "s/^Version: \($2[-+].*\)/\1/p" | sort -V | tail -1)
  [ -n "$version" ] || { echo "Debian $release has no $1 $2" >&2; exit 1; }
  echo "Building $1 $version for Windows" >&2
  (cd "$work/source" && run apt apt-get source "$1=$version")
  mv "$work/source/$1-$2"*/ "$work/$3/source"
}
fetch sqlite3 $sqlite sqlite
fetch libxml2 $libxml2 libxml2

# --- SQLite ------------------------------------------------------------------------------------

# As Debian builds it, so that a document meets the same engine on both systems.
options=(
  -DSQLITE_SECURE_DELETE -DSQLITE_ENABLE_COLUMN_METADATA
  -DSQLITE_ENABLE_FTS3 -DSQLITE_ENABLE_FTS3_PARENTHESIS -DSQLITE_ENABLE_FTS3_TOKENIZER=1
  -DSQLITE_ENABLE_RTREE=1 -DSQLITE_SOUNDEX=1 -DSQLITE_ENABLE_UNLOCK_NOTIFY
  -DSQLITE_OMIT_LOOKASIDE=1 -DSQLITE_ENABLE_DBSTAT_VTAB -DSQLITE_ALLOW_ROWID_IN_VIEW
  -DSQLITE_ENABLE_UPDATE_DELETE_LIMIT=1 -DSQLITE_ENABLE_LOAD_EXTENSION -DSQLITE_ENABLE_JSON1
  -DSQLITE_LIKE_DOESNT_MATCH_BLOBS -DSQLITE_THREADSAFE=1 -DSQLITE_USE_URI=1
  -DSQLITE_MAX_SCHEMA_RETRY=25 -DSQLITE_ENABLE_PREUPDATE_HOOK -DSQLITE_ENABLE_SESSION
  -DSQLITE_ENABLE_STMTVTAB -DSQLITE_MAX_VARIABLE_NUMBER=250000
  # What its configuration adds to that.
  -DSQLITE_ENABLE_FTS4 -DSQLITE_ENABLE_FTS5 -DSQLITE_ENABLE_MATH_FUNCTIONS -DSQLITE_TEMP_STORE=1
  -DHAVE_ISNAN
)
(
  # The one file of the engine, whose grammar depends on the options.
  cd "$work/sqlite"
  run env CFLAGS="${options[*]}" ./source/configure --disable-tcl --disable-readline
  run make sqlite3.c sqlite3.h
  run "${launcher[@]}" "$compiler" -O2 -fno-strict-aliasing "${options[@]}" \
      "-DSQLITE_API=__declspec(dllexport)" -c sqlite3.c -o sqlite3.o
  mkdir -p "$target"/{bin,lib,include,licenses}
  # By a name of ours: a program that loads us may have an engine of its own, of another version.
  run "$compiler" -shared -s -static-libgcc -o "$target/bin/VnSqlite3.dll" sqlite3.o \
      "-Wl,--out-implib,$target/lib/libVnSqlite3.dll.a"
  cp sqlite3.h "$target/include/"
  cp source/debian/copyright "$target/licenses/sqlite3.txt"
)

# --- libxml2 -----------------------------------------------------------------------------------

(
  cd "$work/libxml2"
  features=()
  for feature in PYTHON ICONV ICU LZMA ZLIB FTP HTTP PROGRAMS TESTS MODULES DEBUG DOCB LEGACY; do
    features+=("-DLIBXML2_WITH_$feature=OFF")
  done
  for feature in SCHEMAS PATTERN REGEXPS XPATH READER WRITER SAX1 TREE OUTPUT PUSH THREADS VALID; do
    features+=("-DLIBXML2_WITH_$feature=ON")
  done
  # By a name of ours too.
  echo 'cmake_language(DEFER CALL set_target_properties LibXml2 PROPERTIES PREFIX "" OUTPUT_NAME VnXml2
        IMPORT_PREFIX lib)' >name.cmake
  run cmake -S source -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON \
      -DCMAKE_TOOLCHAIN_FILE="$here/../cmake/WindowsToolchain.cmake" \
      ${launcher[0]:+-DCMAKE_C_COMPILER_LAUNCHER=${launcher[0]}} \
      -DCMAKE_PROJECT_libxml2_INCLUDE="$PWD/name.cmake" \
      -DCMAKE_SHARED_LINKER_FLAGS="-s -static-libgcc" "${features[@]}"
  run cmake --build build
  run cmake --install build --prefix "$PWD/installed"
  cp installed/bin/VnXml2.dll "$target/bin/"
  cp installed/lib/libVnXml2.dll.a "$target/lib/"
  cp -r installed/include/libxml2/libxml "$target/include/"
  cp source/Copyright "$target/licenses/libxml2.txt"
)

echo "$made_of" >"$target/made-of"
