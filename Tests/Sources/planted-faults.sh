#!/usr/bin/env bash
# The other tests of sources find what is wrong, and pass what is right.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$1/.clang-format" "$work"

# expect PASSES|FAILS SCRIPT
expect() {
  local status=0
  bash "$here/$2" "$work" >"$work/output" 2>&1 || status=$?
  if [ "$status" -eq 77 ]; then return; fi
  local told=PASSES
  if [ "$status" -ne 0 ]; then told=FAILS; fi
  if [ "$told" = "$1" ]; then return; fi
  echo "$2: $told, expected $1" >&2
  cat "$work/output" >&2
  exit 1
}

# plant FILE TEXT
plant() {
  rm -rf "$work/Platform" "$work/Server"
  mkdir -p "$(dirname "$work/$1")"
  printf '%s\n' "$2" >"$work/$1"
}

plant Platform/Base/Good.cpp 'int * good() { return nullptr; }'
expect PASSES formatted.sh
plant Platform/Base/Bad.cpp 'int* bad() { return nullptr; }'
expect FAILS formatted.sh

plant Platform/DataModel/Good.h '#include "Platform/Base/Status.h"'
expect PASSES includes.sh
plant Platform/Base/Bad.h '#include "Platform/DataModel/Asset.h"'
expect FAILS includes.sh
plant Server/CommonData/Units/UnitTextCommands.cpp \
  '#include "Server/CommonData/Expressions/ValueFormatter.h"'
expect PASSES includes.sh
plant Server/CommonData/Units/Unit.cpp '#include "Server/CommonData/Expressions/ValueFormatter.h"'
expect FAILS includes.sh

# The messages of the console, without a line of its own and with one.
catalogues=$work/Translations/Console
mkdir -p "$work/Tools" "$work/Console" "$catalogues"
cp "$1/Tools/translations.sh" "$work/Tools"
plant Console/Good.cpp 'auto text = message(L"a " L"message");'
printf '%s\n' 'msgid ""' 'msgstr ""' '"Content-Type: text/plain; charset=UTF-8\n"' >"$catalogues/de.po"
if command -v xgettext >/dev/null; then
  bash "$work/Tools/translations.sh"
  grep -qx 'msgid "a message"' "$catalogues/VnConsole.pot"
  grep -qx 'msgid "a message"' "$catalogues/de.po"
fi
expect PASSES messages.sh
plant Console/Bad.cpp 'auto text = tr(L"another");'
expect FAILS messages.sh
