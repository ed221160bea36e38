#!/usr/bin/env bash
# Collects the messages of the console from its sources, and brings them into its catalogues:
#
#     Tools/translations.sh          renews Translations/Console/VnConsole.pot and the .po files there
#     Tools/translations.sh --check  only tells what would change, with status 1 if anything would
#
# A new message has no translation then, and one that isn't used any more is gone.  The texts of the
# library stand in Translations itself; these have keys, and are kept by hand.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

catalogues=Translations/Console
template=$catalogues/VnConsole.pot
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What Console/Messages.h and the operations that build on it take.
keywords=(--keyword --keyword=tr:1 --keyword=message:1 --keyword=cannot:1)

collect() {
  cat <<'HEADER'
# The messages of the console.
msgid ""
msgstr ""
"Project-Id-Version: VnCommonData 10\n"
"MIME-Version: 1.0\n"
"Content-Type: text/plain; charset=UTF-8\n"
"Content-Transfer-Encoding: 8bit\n"

HEADER
  # xgettext doesn't join wide literals, nor read UTF-8 in them: they are made narrow.
  find Console \( -name '*.cpp' -o -name '*.h' \) ! -path Console/Messages.h | sort >"$work/sources"
  while read -r source; do
    mkdir -p "$work/$(dirname "$source")"
    sed 's/\bL"/"/g' "$source" >"$work/$source"
  done <"$work/sources"
  xgettext --language=C++ --from-code=UTF-8 --directory="$work" --files-from="$work/sources" \
    --omit-header --no-wrap --add-location=file --add-comments=Translators: "${keywords[@]}" \
    --output=- |
    sed '/^#, .*format/d'
}

merge() { # merge OLD: the catalogue with the messages of today
  msgmerge --quiet --no-fuzzy-matching --no-wrap --add-location=file "$1" "$work/VnConsole.pot" |
    msgattrib --no-obsolete --no-wrap
}

collect >"$work/VnConsole.pot"
status=0
renew() { # renew NEW OLD
  if cmp -s "$1" "$2"; then return; fi
  if [ "${check:-}" ]; then
    diff -u "$2" "$1" || true
    status=1
  else
    cp "$1" "$2"
  fi
}

if [ "${1:-}" = --check ]; then check=1; fi
renew "$work/VnConsole.pot" "$template"
for catalogue in "$catalogues"/*.po; do
  merge "$catalogue" >"$work/${catalogue##*/}"
  renew "$work/${catalogue##*/}" "$catalogue"
done
exit $status
