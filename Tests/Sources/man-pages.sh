#!/usr/bin/env bash
# The manual page in another language has the calls, commands, options and examples of the English one, in the
# same order, and is clean.
set -euo pipefail
cd "$1"
english=Docs/vnconsole.1

calls() { awk '/^\.SH/ && found { exit } /^\.B vnconsole$/ { found = 1 } found' "$1"; }
entries() { sed -n '/^\.TP/{n;p}' "$1"; }
examples() { sed -n '/^\.EX$/,/^\.EE$/p' "$1"; }
options() { grep -o '\\-\\-[a-z][a-z\\-]*' "$1" | sort -u; }
sections() { grep -c '^\.SH' "$1"; }

status=0
for page in Docs/*/vnconsole.1; do
  for part in calls entries examples options sections; do
    if [ -z "$("$part" "$english")" ]; then
      echo "$english: no $part"
      status=1
    fi
    if ! diff -u --label "$english: $part" --label "$page: $part" <("$part" "$english") <("$part" "$page"); then
      status=1
    fi
  done
  # Where lines break in Japanese is told to the formatter by the place of an installed page.
  if command -v man >/dev/null; then
    warnings=$(LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l "$page" 2>&1 >/dev/null |
      grep -v "can't break line\|cannot adjust line" || true)
    if [ -n "$warnings" ]; then
      echo "$page: $warnings"
      status=1
    fi
  fi
done
# Names and options, which somebody may copy, aren't broken.
if command -v man >/dev/null; then
  for page in "$english" Docs/*/vnconsole.1; do
    if broken=$(MANWIDTH=80 LC_ALL=C.UTF-8 man -E UTF-8 -l "$page" 2>/dev/null | grep $'\xe2\x80\x90$'); then
      printf '%s: broken words\n%s\n' "$page" "$broken"
      status=1
    fi
  done
fi
exit $status
