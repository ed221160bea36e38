#!/usr/bin/env bash
# The catalogues of the console, the libraries and the sample hold the messages that their sources have today, and
# those of the sample a translation of each.  The test is left out where xgettext isn't installed.
set -euo pipefail
shopt -s nullglob
for tool in xgettext msgmerge msgattrib; do
  if ! command -v "$tool" >/dev/null; then
    echo "$tool isn't installed"
    exit 77
  fi
done
if ! bash "$1/Tools/translations.sh" --check; then
  echo "Tools/translations.sh brings the messages into the catalogues"
  exit 1
fi
for catalogue in "$1"/Samples/Blocks/Translations/*.po; do
  missing=$(msgattrib --untranslated --no-wrap "$catalogue")
  if [ -n "$missing" ]; then
    echo "$catalogue lacks translations: $missing"
    exit 1
  fi
done
