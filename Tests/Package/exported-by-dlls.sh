#!/usr/bin/env bash
# exported-by-dlls.sh OBJDUMP DLL...: the libraries for Windows export names of the namespaces Vn and
# Vrx and of the classes Tg... only, the add-in's its entry point too, and need no libraries but each other,
# those of the compiler and those of every Windows.
set -euo pipefail

objdump=$1
shift
needed='KERNEL32 msvcrt ole32 SHELL32 libgcc_s_seh-1 libquadmath-0 libstdc++-6 libwinpthread-1 VnSqlite3 VnXml2'
for library in "$@"; do needed+=" $(basename "$library" .dll)"; done

status=0
for library in "$@"; do
  tables=$("$objdump" -p "$library")
  names=$(sed -n '/^\[Ordinal\/Name Pointer\]/,/^$/s/^[[:space:]]*\[ *[0-9]*\] *//p' <<<"$tables")
  [ -n "$names" ] || { echo "FAILED: $library exports nothing" >&2; status=1; }
  echo "$library exports $(wc -l <<<"$names") names"
  if [ "$(basename "$library")" = VnCommonData10.dll ]; then
    grep -qx _GetIAddIn <<<"$names" || { echo "FAILED: $library doesn't offer _GetIAddIn" >&2; status=1; }
    names=$(grep -vx _GetIAddIn <<<"$names")
  fi
  # As they are mangled: a name, or the tables, the type information or the thunks of a class.
  if grep -vE '^_Z(T[VTIS]|Thn[0-9]+_)?(N[KVRO]*)?(2Vn|3Vrx|[0-9]+Tg[A-Z])' <<<"$names" >&2; then
    echo "FAILED: $library exports what is neither of Vn nor of Vrx nor of Tg" >&2
    status=1
  fi
  while read -r dll; do
    case " $needed " in
      *" ${dll%.dll} "*) ;;
      *) echo "FAILED: $library needs $dll" >&2; status=1 ;;
    esac
  done < <(sed -n 's/^[[:space:]]*DLL Name: //p' <<<"$tables")
done
exit $status
