#!/usr/bin/env bash
# Collects the messages of the console and of the sample from their sources, and brings them into their
# catalogues:
#
#     Tools/translations.sh          renews the .pot and .po files in Translations/Console and
#                                    Samples/Blocks/Translations
#     Tools/translations.sh --check  only tells what would change, with status 1 if anything would
#
# A new message has no translation then, and one that isn't used any more is gone.  The texts of the
# library stand in Translations itself; these have keys, and are kept by hand.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# What Console/Messages.h and Samples/Blocks/Texts.h take, and the operations that build on them.
keywords=(--keyword --keyword=tr:1 --keyword=message:1 --keyword=messageUtf8:1
  --keyword=messageIn:1c,2 --keyword=cannot:1 --keyword=marked:1)

collect() { # collect TITLE DIRECTORY: the messages of the sources there
  cat <<HEADER
# $1
msgid ""
msgstr ""
"Project-Id-Version: VnCommonData 10\n"
"MIME-Version: 1.0\n"
"Content-Type: text/plain; charset=UTF-8\n"
"Content-Transfer-Encoding: 8bit\n"

HEADER
  # xgettext doesn't join wide literals, nor read UTF-8 in them: they are made narrow.
  find "$2" \( -name '*.cpp' -o -name '*.h' -o -name Materials.xml \) \
    ! -path Console/Messages.h ! -path Samples/Blocks/Texts.h | sort >"$work/sources"
  while read -r source; do
    mkdir -p "$work/$(dirname "$source")"
    case $source in
      *.xml) sed -nE 's/.* name=("[^"]*").*/tr(\1);/p' "$source" ;; # the names of materials
      *) sed -E 's/\bL(R?")/\1/g' "$source" ;;
    esac >"$work/$source"
  done <"$work/sources"
  xgettext --language=C++ --from-code=UTF-8 --directory="$work" --files-from="$work/sources" \
    --omit-header --no-wrap --add-location=file --add-comments=Translators: "${keywords[@]}" \
    --output=- |
    sed '/^#, .*format/d'
}

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

renew_catalogues() { # renew_catalogues TEMPLATE TITLE SOURCES
  local catalogue new
  collect "$2" "$3" >"$work/new.pot"
  renew "$work/new.pot" "$1"
  for catalogue in "${1%/*}"/*.po; do
    new=$work/${catalogue##*/}
    msgmerge --quiet --no-fuzzy-matching --no-wrap --add-location=file "$catalogue" "$work/new.pot" |
      msgattrib --no-obsolete --no-wrap >"$new"
    renew "$new" "$catalogue"
  done
}

if [ "${1:-}" = --check ]; then check=1; fi
renew_catalogues Translations/Console/VnConsole.pot "The messages of the console." Console
renew_catalogues Samples/Blocks/Translations/VnBlocks.pot "The messages of the sample." Samples/Blocks
exit $status
