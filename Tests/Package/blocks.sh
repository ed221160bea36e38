#!/usr/bin/env bash
# The sample of an add-in, as an engineer uses it: its sources are taken from what is installed and built against
# that by the commands of the guide, and used by the console in the session that stands there, in another, and in one
# that opens what that has saved.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$VN_WORK/blocks
fresh "$work"
cp -R "$installed" "$work/prefix"

files_of Docs/blocks.md "$work"

mkdir "$work/tools"
ln -s "$VN_CMAKE" "$work/tools/cmake"
(cd "$work" && PATH=$work/tools:$PATH PREFIX=$work/prefix CXX=$VN_CXX bash -e build.sh) >"$work/log" 2>&1 ||
  { cat "$work/log"; fail "it can't be built"; }

console=$work/prefix/bin/vnconsole
"$console" add-ins | grep -q '^Blocks .* loaded' || fail "it isn't loaded: $("$console" add-ins)"

# session LINE...: what the console answers, each line by its number if it is refused
session() { printf '%s\n' "$@" | "$console" --standard; }

same "what the session of the guide says" "$(cd "$work" && "$console" --standard <session.txt 2>&1)" \
  "$(cat "$work/answers.txt")"
for file in home.png corner.png rack.glb; do
  [ -s "$work/$file" ] || fail "there is no $file"
done

cp "$work/rack.vnd" "$work/called.vnd"
"$console" --standard document "$work/called.vnd" Blocks.Set 2 height '"4 in"', picture -o "$work/a.png" \
  >"$work/out" || fail "a call doesn't take its commands"
grep -q '^saved ' "$work/out" || fail "a call doesn't save what they change: $(cat "$work/out")"
"$console" --standard document "$work/called.vnd" Blocks.List >"$work/out"
grep -q '^2  Cylinder, 1.25 in x 4.00 in' "$work/out" || fail "nothing was changed: $(cat "$work/out")"

session "Document.New" \
  "Blocks.New block 2 3 '4 in'" "Blocks.New block 2 3 \"4 in\"" \
  "Blocks.New cylinder \"1 in\" \"1 ft\" 10 0 0" "Blocks.Material 2 oak" \
  "Blocks.Assemble Table 1 2" "Blocks.Duplicate 1 2" "Blocks.Mass" \
  "Document.Undo" "Document.Redo" "Blocks.List" "Document.SaveAs $work/a.vnd" \
  >"$work/out" 2>"$work/err" || true
grep -q "^line 2: " "$work/err" || fail "a bad expression is taken: $(cat "$work/err")"
same "the lines that are refused" "$(grep -c '^line' "$work/err")" 1
grep -q '^Material: (Various)$' "$work/out" || fail "the mass isn't told: $(cat "$work/out")"

# The last nine items that were told of are the list.
items() { grep -E '^ *[0-9/]+  (Assembly|Block|Cylinder)' | tail -9; }
listed=$(items <"$work/out")
same "the assemblies" "$(grep -c 'Assembly "Table"' <<<"$listed")" 3
same "what is opened" "$(session "Document.Open $work/a.vnd" "Blocks.List" | items)" "$listed"
for language in de:Masse fr:Masse ja:質量; do
  printf '%s\n' "Document.Open $work/a.vnd" "Blocks.Mass" |
    "$console" --language "${language%:*}" | grep -q "^${language#*:}" || fail "no ${language%:*}"
done

# Without the module the document is refused by the name of what is missing, and stays as it is.
before=$(sha256sum <"$work/a.vnd")
rm "$work/prefix/Server/Blocks/Configuration/VnBlocks10.xml"
if "$console" document "$work/a.vnd" tree >"$work/out" 2>&1; then fail "it opens without the module"; fi
grep -q 'LoosePartsMetaType' "$work/out" || fail "it doesn't say what is missing: $(cat "$work/out")"
same "the document" "$(sha256sum <"$work/a.vnd")" "$before"
