# Makes documentation of the plain comments of a header, for Doxygen.
#
# A comment in front of declarations heads all of them, up to the next blank line, comment or
# closing brace: it becomes a group whose text each of them gets.  A comment after a declaration
# belongs to that.  A comment with a blank line after it belongs to nothing and stays, but for the
# first of the file, which tells what the file is for and also heads the class after which the file
# is named, if that has no comment of its own.  Function bodies are left alone.  What is deleted, or
# is defaulted without a comment, needs no words and is left out, as are macros without a comment.

BEGIN {
    print "/// \\file"
    depth = 0      # of braces
    bodies = 0     # how many of these are function bodies or initialisers
    statement = "" # since the last ";", "{" or "}"
    pending = 0    # lines of a comment whose fate the next line tells
    atTop = 1
    groupDepth = -1
    inMacro = 0
    tops = 0       # lines of the first comment
}

FNR == 1 {
    own = FILENAME
    sub(/^.*\//, "", own)
    sub(/\.h$/, "", own)
    own = tolower(own)
}

# The text of a comment for Doxygen: what is indented is code, and what isn't code has no markup.
function documentation(line,    parts, count, i, text) {
    sub(/\/\/ ?/, "/// ", line)
    if (line ~ /^[ \t]*\/\/\/    ?/) {
        sub(/\/\/\/ /, "///   ", line)
        return line
    }
    count = split(line, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1) {
            gsub(/[@<>#]/, "\\\\&", parts[i])
            gsub(/"/, "\\\"", parts[i])
        }
        text = text (i > 1 ? "`" : "") parts[i]
    }
    return text
}

function inEnum() { return depth > 0 && kind[depth] == "enum" }

# Follows the braces of a line of code.
function follow(line,    i, c) {
    sub(/[ \t]*\/\/.*$/, "", line)
    gsub(/'[{}";]'/, "''", line)
    gsub(/"([^"\\]|\\.)*"/, "\"\"", line)
    if (line ~ /^[ \t]*#/) return
    for (i = 1; i <= length(line); ++i) {
        c = substr(line, i, 1)
        if (c == "{") {
            ++depth
            sub(/^[ \t]+/, "", statement)
            sub(/^(public|protected|private):[ \t]*/, "", statement)
            while (sub(/^template[ \t]*<[^>]*>[ \t]*/, "", statement)) {}
            if (statement ~ /^(typedef )?enum/) kind[depth] = "enum"
            else if (statement ~ /^(inline )?namespace/) kind[depth] = "namespace"
            else if (statement ~ /^(class|struct|union)[ \t][^=(]*$/) kind[depth] = "class"
            else { kind[depth] = "body"; ++bodies }
            statement = ""
        } else if (c == "}") {
            if (kind[depth] == "body") --bodies
            --depth
            statement = ""
        } else if (c == ";") {
            statement = ""
        } else {
            statement = statement c
        }
    }
    statement = statement " "
}

function closeGroup() {
    if (groupDepth >= 0) print "///@}"
    groupDepth = -1
}

# Prints the comment that was kept, as documentation or as it is.
function printPending(documented,    i) {
    for (i = 1; i <= pending; ++i) {
        if (documented && atTop) top[++tops] = documentation(comment[i])
        print documented ? documentation(comment[i]) : comment[i]
    }
    pending = 0
}

# The name of the class that a line opens, in lower case; empty if it opens none.
function className(line) {
    if (line !~ /^(class|struct) / || line ~ /;[ \t]*$/) return ""
    sub(/^(class|struct) ([A-Z_]+_API )?/, "", line)
    sub(/[^A-Za-z0-9].*$/, "", line)
    return tolower(line)
}

function opensScope(line) {
    return line ~ /^[ \t]*(class|struct|union|enum|namespace|extern|typedef enum)([ \t<]|$)/
}

bodies > 0 && (inMacro || /^[ \t]*#/) { inMacro = /\\$/; print ""; next }
bodies > 0 { print; follow($0); next }

/^[ \t]*\/\// {
    if (!pending) closeGroup()
    comment[++pending] = $0
    next
}

/^[ \t]*$/ {
    closeGroup()
    printPending(atTop && pending > 0)
    atTop = 0
    print
    next
}

inMacro { inMacro = /\\$/; print ""; next }

/^[ \t]*#/ {
    closeGroup()
    if (/^[ \t]*#[ \t]*define/ && !(pending && !atTop) || /\.inc"/) {
        inMacro = /\\$/
        printPending(atTop && pending > 0)
        atTop = 0
        print ""
        next
    }
    if (pending && /^[ \t]*#[ \t]*define/) {
        printPending(1)
        print
        next
    }
    printPending(atTop && pending > 0)
    atTop = 0
    print
    next
}

{
    atTop = 0
    line = $0
    heading = "" # the parameters of a template; what it is stands on the next line
    if (line ~ /^[ \t]*template[ \t]*<.*>[ \t]*$/) {
        heading = line
        getline line
    }
    if (line ~ /= delete;/ || (line ~ /= default;/ && !pending && groupDepth < 0)) {
        pending = 0
        print ""
        follow(line)
        next
    }
    if (line ~ /^[ \t]*(}|public:|protected:|private:)/) closeGroup()
    if (pending) {
        if (!opensScope(line) && !inEnum()) {
            print "///@{"
            groupDepth = depth
        }
        printPending(1)
    } else if (tops && className(line) == own) {
        for (i = 1; i <= tops; ++i) print top[i]
    }
    # Doxygen doesn't find what a template inherits through another template.
    sub(/: public Identified<X, Base, Interfaces\.\.\.>/, ": public Base, public Identified<X, Base, Interfaces...>", line)
    if (heading != "") {
        print heading
        follow(heading)
    }
    if (line ~ /[;,{][ \t]*\/\/ / || (inEnum() && line ~ /\/\/ /)) sub(/\/\/ /, "///< ", line)
    print line
    follow(line)
}

END { printPending(0); closeGroup() }
