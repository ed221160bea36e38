#!/usr/bin/env bash
# The manual page tells of every command and option, and its examples work.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

page=$installed/share/man/man1/vnconsole.1
plain=$(sed -e 's/\\(aq/'"'"'/g; s/\\(dq/"/g; s/\\f[A-Z]//g; s/\\-/-/g; s/\\\././g' "$page")

names=$("$installed/bin/vnconsole" --help | sed -n 's/^  \([a-z][a-z-]*\)  .*/\1/p' | sort -u)
[ "$(wc -l <<<"$names")" -ge 6 ] || fail "few commands in the help: $names"
for name in $names; do
  grep -q "^\.B $name\$\|vnconsole $name" <<<"$plain" || fail "nothing about the command $name"
  for option in $("$installed/bin/vnconsole" "$name" --help | grep -o -- '--[a-z]\+' | sort -u); do
    grep -q -- "$option" <<<"$plain" || fail "nothing about $name $option"
  done
done

PATH=$installed/bin:$PATH
fresh "$VN_WORK-man"
cd "$VN_WORK-man"
examples=$(sed -n '/^\.EX$/,/^\.EE$/p' <<<"$plain" | grep -v '^\.E')
[ "$(wc -l <<<"$examples")" -ge 5 ] || fail "few examples"
while read -r example; do
  echo "\$ $example"
  bash -c "$example" || fail "$example"
done <<<"$examples"

for language in de fr ja; do
  [ -s "$installed/share/man/$language/man1/vnconsole.1" ] || fail "no page in $language"
done

if command -v man >/dev/null; then
  warnings=$(man --warnings -l "$page" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "$warnings"
fi
