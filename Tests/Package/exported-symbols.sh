#!/usr/bin/env bash
# The libraries export what the public headers declare, and nothing else.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs nm awk

include=$installed/include/VnCommonData10
work=$VN_WORK/exported-symbols
fresh "$work"
(cd "$include" && find . -name '*.h' | sort | sed 's|^\./\(.*\)|#include "\1"|') \
  >"$work/all.cpp"
"$VN_CXX" -std=c++20 -E -I "$include" "$work/all.cpp" |
  awk -v include="$include/" -f "$here/declarations.awk" | sort -u >"$work/declared"

status=0
for library in VnCommonData10.so libVnAddInMgr10.so libVnScene10.so libVrx.so libVnDataModel10.so \
  libtg218A.so libVnTypes10.so libVnBase10.so; do
  nm -D --defined-only -C "$installed/lib/$library" |
    sed 's/^[0-9a-f]* *[A-Za-z] //' >"$work/$library"
  [ -s "$work/$library" ] || fail "$library exports nothing"
  # An add-in also has what the add-in manager asks it for, which no header declares.
  if [ "$library" = VnCommonData10.so ]; then
    grep -qx _GetIAddIn "$work/$library" || fail "$library doesn't offer _GetIAddIn"
    sed -i '/^_GetIAddIn$/d' "$work/$library"
  fi
  # What a symbol belongs to: without what the compiler makes it of, its parameters and its ABI tags.
  awk '
    NR == FNR { if ($1 == "class") classes[$2]; else functions[$2]; next }
    {
      name = $0
      sub(/^(vtable for|typeinfo for|typeinfo name for|non-virtual thunk to) /, "", name)
      gsub(/\[abi:[a-z0-9]+\]/, "", name)
      while (gsub(/<[^<>]*>/, "", name)) {}
      sub(/\(.*/, "", name)
      if (name in functions) next
      for (scope = name; scope != ""; ) {
        if (scope in classes) next
        if (!sub(/::[^:]*$/, "", scope)) break
      }
      print
    }' "$work/declared" "$work/$library" >"$work/$library.undocumented"
  echo "$library exports $(wc -l <"$work/$library") symbols"
  if [ -s "$work/$library.undocumented" ]; then
    echo "FAILED: $library exports what no public header declares:" >&2
    cat "$work/$library.undocumented" >&2
    status=1
  fi
done
# The commands are for the program alone.
same "what VnConsole10.so exports" \
  "$(nm -D --defined-only "$installed/lib/VnConsole10.so" | sed 's/^[0-9a-f]* *//')" "T _GetIAddIn"
cat "$work/VnCommonData10.so"
exit $status
