#!/usr/bin/env bash
# The catalogues of the console hold the messages that its sources have today.  The test is left out where
# xgettext isn't installed.
set -euo pipefail
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
