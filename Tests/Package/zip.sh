#!/usr/bin/env bash
# The zip for Windows, made in the build directory, as a user gets it: unpacked in an empty directory,
# run there with nothing on the path, and built against by another project.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs unzip

work=$VN_WORK/zip
fresh "$work"
"$VN_CPACK" --config "$VN_BUILD/CPackConfig.cmake" -B "$VN_BUILD" >"$work/log" 2>&1 ||
  { cat "$work/log"; fail "the package isn't made"; }
zip=$VN_BUILD/VnCommonData10-$VN_VERSION-windows-x86_64.zip
installed="$work/empty directory ä 日本"
mkdir "$installed"
unzip -q "$zip" -d "$installed"

# What is there.
for file in bin/vnconsole.exe bin/VnCommonData10.dll bin/VnConsole10.dll bin/VnSqlite3.dll bin/VnXml2.dll lib/libVnCommonData10.dll.a \
    lib/cmake/VnCommonData10/VnCommonData10Config.cmake licenses/sqlite3.txt licenses/libxml2.txt licenses/gcc-mingw-w64-base.txt \
    licenses/libboost-dev.txt licenses/mingw-w64-common.txt doc/copyright doc/README.md doc/Docs/embedding.md \
    include/VnCommonData10/Server/CommonData/Units/Unit.h share/locale/de/LC_MESSAGES/VnCommonData.mo \
    share/locale/ja/LC_MESSAGES/VnConsole.mo share/locale/fr/LC_MESSAGES/VnLibraries.mo \
    Server/AddInMgr/Configuration/Schema/AddinSchema.xsd Server/CommonData/Configuration/VnCommonData10.xml; do
  [ -s "$installed/$file" ] || fail "no $file"
done

# Every DLL that one of ours needs is beside it, or a part of Windows.
for file in "$installed"/bin/*; do
  "$VN_OBJDUMP" -p "$file" | sed -n 's/^\tDLL Name: //p'
done | sort -u | while read -r dll; do
  [ -e "$installed/bin/$dll" ] && continue
  case $(tr '[:upper:]' '[:lower:]' <<<"$dll") in
    kernel32.dll | msvcrt.dll | ole32.dll | shell32.dll | advapi32.dll | user32.dll | ws2_32.dll) ;;
    *) fail "$dll isn't in the zip" ;;
  esac
done

# It runs there, and finds its languages.
run() { (cd "$installed" && env WINEPATH= "$VN_WINE" "$@" | tr -d '\r'); }
same "the version" "$(run bin/vnconsole.exe --version)" "vnconsole $VN_VERSION"
run bin/vnconsole.exe eval --standard --unit cm '1 in + 1' | grep -q '^formatted  3\.54 cm$' || fail "1 in + 1"
run bin/vnconsole.exe --language de eval 'wurzel(16)' | grep -q '^neu gebildet  wurzel(16)$' || fail "German"
run bin/vnconsole.exe document --new 'a ä.vnd' new, make, add 0 2 >/dev/null || fail "no document is made"
same "the document" "$(run bin/vnconsole.exe document 'a ä.vnd' tree Groups | wc -l)" 4
same "the add-ins" "$(run bin/vnconsole.exe add-ins | awk 'NR > 1 { print $1, $2, $4 }')" \
  "$(printf '%s\n' 'CommonData VnCommonData10.dll loaded' 'Console VnConsole10.dll loaded')"
run bin/vnconsole.exe self-test >/dev/null || fail "the self-test"

# Another project is built against it, and runs beside the DLLs.
"$VN_CMAKE" -S "$here/Consumer" -B "$work/consumer" -DCMAKE_TOOLCHAIN_FILE="$VN_TOOLCHAIN" \
  -DCMAKE_BUILD_TYPE=Release -DVnCommonData10_DIR="$installed/lib/cmake/VnCommonData10" \
  -DCMAKE_MODULE_PATH="$here/HeadersOfThisMachine" >"$work/log" 2>&1 ||
  { cat "$work/log"; fail "the consumer isn't configured"; }
"$VN_CMAKE" --build "$work/consumer" >"$work/log" 2>&1 || { cat "$work/log"; fail "the consumer isn't built"; }
cp "$work/consumer/consumer.exe" "$installed/bin/"
same "the consumer's output" "$(run bin/consumer.exe notes.vnd)" "$(consumer_output)"

(cd "$installed" && find . -type f | sed 's,^\./,,' | grep -v '^include/' | sort)
