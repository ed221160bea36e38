# Completion of vnconsole in bash.  The program itself knows what can stand where.

_vnconsole() {
    local IFS=$'\n' word i
    local -a words=() answers=()
    # A "=" stands here as a word of its own, as does what it parts.
    local joins=
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if [[ -n $joins || ($word == = && ${#words[@]} -gt 0) ]]; then
            words[${#words[@]} - 1]+=$word
        else
            words+=("$word")
        fi
        joins=
        [[ $word == = ]] && joins=yes
    done
    COMPREPLY=()
    answers=($("$1" shell-completion -- "${words[@]}" 2>/dev/null))
    if [[ ${answers[0]-} == :files ]]; then
        compopt -o default 2>/dev/null
        return 0
    fi
    # Only what follows the "=" is replaced.
    local begun=${words[${#words[@]} - 1]}
    local front=
    [[ $begun == *=* && $COMP_WORDBREAKS == *=* ]] && front=${begun%%=*}=
    for word in ${answers[@]+"${answers[@]}"}; do
        [[ $word == *= ]] && compopt -o nospace 2>/dev/null
        word=${word#"$front"}
        COMPREPLY+=("$(printf '%q' "$word")")
    done
    return 0
}

complete -F _vnconsole vnconsole
