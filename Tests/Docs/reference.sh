#!/usr/bin/env bash
# reference.sh SOURCES HTML: the reference that was built has the README as its main page, each guide with its links
# and its code, and each class of the public headers.
set -euo pipefail
sources=$1
html=$2

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# The page of a document: its name, with what can't be in one replaced.
page_of() {
  case $1 in
    README.md) echo index.html ;;
    *) echo "md_$(sed 's,\.md$,,; s,[/-],_,g' <<<"$1").html" ;;
  esac
}

guides=0
cd "$sources"
for guide in README.md CHANGELOG.md CONTRIBUTING.md Docs/*.md; do
  page=$html/$(page_of "$guide")
  [ -s "$page" ] || fail "$guide has no page"
  guides=$((guides + 1))

  title=$(sed -n '1s/^# //p' "$guide")
  grep -qF "<div class=\"title\">$title" "$page" || fail "the page of $guide hasn't the title \"$title\""

  # Each heading is one.
  text=$(grep '</h[1-4]>' "$page" | sed 's/<[^>]*>//g' || true)
  while read -r heading; do
    plain=$(sed 's/`//g; s/&/\&amp;/g' <<<"$heading")
    grep -qF "$plain" <<<"$text" || fail "$guide has lost the heading \"$plain\""
  done < <(awk '/^```/ { block = !block } !block && /^###* / { sub(/^#+ /, ""); print }' "$guide")

  # Each link leads to the page of the other guide.
  while read -r target; do
    other=$(realpath -m --relative-to=. "$(dirname "$guide")/$target")
    grep -qF "href=\"$(page_of "$other")" "$page" || fail "$guide doesn't lead to $other"
  done < <(grep -o '](\([^):]*\.md\))' "$guide" | sed 's/^](//; s/)$//' | sort -u)

  # Each block of code is one, and nothing of the markup is left in the text.
  blocks=$(grep -c '^```.' "$guide" || true)
  shown=$(grep -o '<div class="fragment">' "$page" | wc -l || true)
  [ "$shown" -eq "$blocks" ] || fail "$guide has $blocks blocks of code, its page $shown"
  left=$(sed '/<div class="fragment">/,/<!-- fragment -->/d; /<pre/,/<\/pre>/d' "$page" |
    grep -n '```\|``\|@section\|@code\|@ref \|&lt;tt&gt;\|&lt;/tt\|&lt;code&gt;' || true)
  [ -z "$left" ] || fail "$guide: $left"
done
[ "$guides" -ge 14 ] || fail "there are $guides guides"

# Each class that a public header exports has a page.  (What isn't documented stops the building of the reference.)
classes=0
pages=$(ls "$html")
while read -r name; do
  grep -qE "^(class|struct)(.*_1_1)?$name\.html$" <<<"$pages" || fail "$name isn't in the reference"
  classes=$((classes + 1))
done < <(find Platform Server -name '*.h' ! -name '*Internal.h' ! -path '*/DataModel/File/*' ! -path '*/DataModel/Log/*' \
  -exec awk '
    /^namespace.* Detail \{/ { isDetail = 1 }
    /^}.*namespace.* Detail/ { isDetail = 0 }
    !isDetail && /^(class|struct) (VN_[A-Z]*_API|VRX_API|TG_API) [A-Za-z]+ *(final *)?[:{]/ {
      sub(/:.*/, "", $3)
      print $3
    }' {} + | sort -u)
[ "$classes" -ge 100 ] || fail "only $classes classes are exported"
echo "$guides guides, $classes classes"
