# From preprocessed C++ to the classes and functions that are marked for export, one a line:
#
#   class Vn::Units::Unit
#   function Vn::Units::catalogueIdentifier
#
# Looks only at the files in the directory `include`.  A declaration of namespace scope ends with its
# semicolon or its opening brace; of what stands in braces other than a namespace's, only friends count.

/^# [0-9]+ "/ {
  inside = index($0, "\"" include) > 0
  next
}
!inside { next }
{
  line = $0
  gsub(/__attribute__ *\(\(visibility *\("default"\)\)\)/, " EXPORTED ", line)
  gsub(/"([^"\\]|\\.)*"/, "\"\"", line)
  gsub(/'([^'\\]|\\.)+'/, "0", line)
  gsub(/[{};]/, " & ", line)
  count = split(line, words, /[ \t]+/)
  for (i = 1; i <= count; ++i) read(words[i])
}

function read(word) {
  if (word == "") return
  if (word == "{") {
    if (passed == 0 && statement ~ /^(inline )?namespace /) {
      name = statement
      sub(/^(inline )?namespace +/, "", name)
      sub(/ +$/, "", name)
      scopes[++depth] = name
    } else {
      declare()
      ++passed
    }
    statement = ""
  } else if (word == "}") {
    if (passed > 0) --passed
    else --depth
    statement = ""
  } else if (word == ";") {
    declare()
    statement = ""
  } else {
    statement = statement word " "
  }
}

function declare(    name, scope, i) {
  if (statement !~ (passed == 0 ? "(^| )EXPORTED " : "(^| )friend EXPORTED ")) return
  scope = ""
  for (i = 1; i <= depth; ++i) scope = scope scopes[i] "::"
  name = statement
  sub(/^template *<[^>]*> */, "", name)
  if (name ~ /^(class|struct) EXPORTED /) {
    sub(/^(class|struct) EXPORTED +/, "", name)
    sub(/[ :].*/, "", name)
    print "class " scope name
  } else {
    sub(/ *\(.*/, "", name)
    sub(/.*[ *&]/, "", name)
    print "function " scope name
  }
}
