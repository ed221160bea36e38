# Makes of a guide what Doxygen reads as others read Markdown.
#
# Code within a line gets double back-quotes, since single ones end at an apostrophe.  With a quotation mark in it it
# gets tags, since that mark would begin a text that ends elsewhere.  Code and links that go over the end of a line are
# put on one line.  Outside of code, what Doxygen would take for a command or a tag of its own is escaped.  Blocks of
# code stay as they are.

# How often a text that isn't a regular expression stands in a line.
function count(line, what,    found, at) {
    while ((at = index(line, what)) > 0) {
        ++found
        line = substr(line, at + length(what))
    }
    return found + 0
}

# Whether a link, or code, goes on in the next line.
function isOpen(line,    parts, n, i, text) {
    n = split(line, parts, "`")
    if (n % 2 == 0) return 1
    for (i = 1; i <= n; i += 2) text = text parts[i]
    return count(text, "[") > count(text, "]") || text ~ /\]\([^)]*$/
}

function code(text) {
    if (text !~ /"/) return "``" text "``"
    gsub(/\\/, "\\\\&", text)
    gsub(/[@%#*_|]/, "\\\\&", text)
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    gsub(/"/, "\\&quot;", text)
    return "<code>" text "</code>"
}

function escaped(line,    parts, n, i, text) {
    n = split(line, parts, "`")
    for (i = 1; i <= n; ++i) {
        if (i % 2 == 0) {
            text = text code(parts[i])
            continue
        }
        gsub(/\\/, "\\\\&", parts[i])
        gsub(/[@%]/, "\\\\&", parts[i])
        gsub(/"/, "\\&quot;", parts[i])
        gsub(/</, "\\&lt;", parts[i])
        text = text parts[i]
    }
    return text
}

/^```/ { isBlock = !isBlock; print; next }
isBlock { print; next }
/^    / && !isItem { print; next }
/^$/ { isItem = 0; print; next }
/^[-*] |^[0-9]+\. / { isItem = 1 }
{
    line = $0
    while (isOpen(line) && (getline further) > 0) {
        if (further ~ /^$/) { print escaped(line); line = ""; break }
        sub(/^ +/, "", further)
        line = line " " further
    }
    print escaped(line)
}
