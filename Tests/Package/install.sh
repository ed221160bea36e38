#!/usr/bin/env bash
# Installs, and moves the tree: the other tests use it where it was not installed to.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

fresh "$VN_WORK"
"$VN_CMAKE" --install "$VN_BUILD" --prefix "$VN_WORK/first" >"$VN_WORK/log"
mkdir -p "$(dirname "$installed")"
mv "$VN_WORK/first" "$installed"

# Nothing in it remembers where it was made.
for place in "$VN_WORK" "$VN_BUILD" "$VN_SOURCES"; do
  found=$(grep -rlaF -- "$place" "$installed" || true)
  [ -z "$found" ] || fail "$place is mentioned in $found"
done

# What isn't for users isn't there.
found=$(find "$installed" -path '*/vncommondata10/Samples' -prune -o \( -name '*Internal.h' \
  -o -name LoadOrder.h -o -name '*.cpp' -o -path '*/DataModel/File/*' -o -path '*/DataModel/Log/*' \) -print)
[ -z "$found" ] || fail "internal: $found"

# The add-in manager finds what it reads below the root directory.
for file in AddInMgr/Configuration/Schema/AddinSchema.xsd CommonData/Configuration/VnCommonData10.xml; do
  [ -s "$installed/Server/$file" ] || fail "no Server/$file"
done

# There are the documents, with what they lead to, and the terms of what is shipped.
documents=$installed/share/doc/vncommondata10
for file in copyright README.md CHANGELOG.md Docs/embedding.md Docs/compatibility.md Docs/units.md; do
  [ -s "$documents/$file" ] || fail "no $file among the documents"
done
for document in "$documents"/*.md "$documents"/Docs/*.md; do
  for target in $(grep -o '](\([^)#]*\.md\)' "$document" | sed 's/^](//'); do
    [ -s "$(dirname "$document")/$target" ] || fail "$document leads to $target, which isn't there"
  done
done
for license in $(grep -o 'licenses/[a-z0-9-]*\.txt' "$documents/copyright"); do
  case $license in
    *sqlite3.txt | *libxml2.txt | *mingw*) ;; # in the zip for Windows
    *) [ -s "$documents/$license" ] || fail "no $license" ;;
  esac
done
