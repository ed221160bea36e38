#!/usr/bin/env bash
# Collects the messages of the console, of the libraries and of the sample from their sources, and
# brings them into their catalogues:
#
#     Tools/translations.sh          renews the .pot and .po files of Translations/Console,
#                                    Translations/Libraries and Samples/Blocks/Translations
#     Tools/translations.sh --check  only tells what would change, with status 1 if anything would
#
# A new message has no translation then, and one that isn't used any more is gone.  The words of the
# expression language and the explanations of its failures stand in Translations itself; these have
# keys, and are kept by hand.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C.UTF-8

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
if [ "${1:-}" = --check ]; then check=1; fi

collect() { # collect TITLE KEYWORD...: what the sources in $work/sources say
  title=$1
  shift
  cat <<HEADER
# $title
msgid ""
msgstr ""
"Project-Id-Version: VnCommonData 10\n"
"MIME-Version: 1.0\n"
"Content-Type: text/plain; charset=UTF-8\n"
"Content-Transfer-Encoding: 8bit\n"

HEADER
  # xgettext doesn't join wide literals, nor read UTF-8 in them: they are made narrow.
  while read -r source; do
    mkdir -p "$work/$(dirname "$source")"
    case $source in
      *.xml) sed -nE 's/.* name=("[^"]*").*/tr(\1);/p' "$source" ;; # the names of materials
      *) sed -E 's/\bL(R?")/\1/g' "$source" ;;
    esac >"$work/$source"
  done <"$work/sources"
  xgettext --language=C++ --from-code=UTF-8 --directory="$work" --files-from="$work/sources" \
    --omit-header --no-wrap --add-location=file --add-comments=Translators: --keyword \
    "${@/#/--keyword=}" --output=- |
    sed '/^#, .*format/d'
}

renew() { # renew NEW OLD
  if cmp -s "$1" "$2"; then return; fi
  if [ "${check:-}" ]; then
    diff -u "$2" "$1" || true
    status=1
  else
    cp "$1" "$2"
  fi
}

renewAll() { # renewAll DIRECTORY TEMPLATE: the catalogues, with the messages of today
  renew "$work/template" "$1/$2"
  for catalogue in "$1"/*.po; do
    msgmerge --quiet --no-fuzzy-matching --no-wrap --add-location=file "$catalogue" "$work/template" |
      msgattrib --no-obsolete --no-wrap >"$work/catalogue"
    renew "$work/catalogue" "$catalogue"
  done
}

# What Console/Messages.h and the operations that build on it take.
find Console \( -name '*.cpp' -o -name '*.h' \) ! -path Console/Messages.h | sort >"$work/sources"
collect "The messages of the console." tr:1 message:1 messageUtf8:1 messageIn:1c,2 cannot:1 \
  >"$work/template"
renewAll Translations/Console VnConsole.pot

# What Platform/Base/LocalizedText.h takes.
if [ -d Translations/Libraries ]; then
  find Platform Server \( -name '*.cpp' -o -name '*.h' \) ! -path Platform/Base/LocalizedText.h |
    sort >"$work/sources"
  collect "What the libraries tell." localized:1 localizedIn:1c,2 localizable:1 >"$work/template"
  renewAll Translations/Libraries VnLibraries.pot
fi

# What Samples/Blocks/Texts.h takes, and the names of materials.
if [ -d Samples/Blocks/Translations ]; then
  find Samples/Blocks \( -name '*.cpp' -o -name '*.h' -o -name Materials.xml \) \
    ! -path Samples/Blocks/Texts.h | sort >"$work/sources"
  collect "The messages of the sample." tr:1 message:1 marked:1 >"$work/template"
  renewAll Samples/Blocks/Translations VnBlocks.pot
fi
exit $status
