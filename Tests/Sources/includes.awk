# Reads allowed-includes.txt, then lines "FILE:#include "HEADER"", and prints those that aren't allowed.

function matches(name, pattern) {
    if (pattern ~ /\*$/) return index(name, substr(pattern, 1, length(pattern) - 1)) == 1
    return name == pattern
}

# The longest room in which a file stands; empty if it is in none.
function roomOf(file,    directory) {
    directory = file
    while (sub(/\/[^\/]*$/, "", directory))
        if (directory in allowed) return directory
    return ""
}

FNR == NR {
    if ($0 ~ /^#/ || NF == 0) next
    subject = $1
    sub(/^[^ ]+ */, "")
    allowed[subject] = $0
    next
}

{
    file = $0
    sub(/:.*/, "", file)
    header = $0
    sub(/^[^"]*"/, "", header)
    sub(/".*/, "", header)
    from = roomOf(file)
    to = roomOf(header)
    if (from == "" || from == to) next
    isAllowed = 0
    count = split(allowed[from] " " allowed[file], patterns, " ")
    for (i = 1; i <= count; ++i)
        if (matches(to, patterns[i])) isAllowed = 1
    if (isAllowed) next
    print file " includes " header ", which " (to == "" ? "is in no room" : "is in " to)
    found = 1
}

END { exit found }
