# Completion of vnconsole in bash.  The program itself knows what can stand where.

# Takes the quotes off a word, in "word"; in "quote" remains the one that isn't closed.
_vnconsole_unquote() {
    local rest=$1 c
    word= quote=
    while [[ -n $rest ]]; do
        c=${rest:0:1}
        rest=${rest:1}
        if [[ $c == "$quote" ]]; then
            quote=
        elif [[ -z $quote && $c == [\'\"] ]]; then
            quote=$c
        elif [[ $c == \\ && -n $rest && (-z $quote || ($quote == \" && $rest == [\$\`\"\\]*)) ]]; then
            word+=${rest:0:1}
            rest=${rest:1}
        else
            word+=$c
        fi
    done
}

_vnconsole() {
    local word quote= front= joins= i program
    local -a words=() answers=()
    _vnconsole_unquote "$1"
    program=$word
    [[ $program == \~/* ]] && program=$HOME/${program:2}
    # A "=" stands here as a word of its own, as does what it parts.  Bash replaces only what
    # follows it; "front" is what it leaves.
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        _vnconsole_unquote "${COMP_WORDS[i]}"
        if [[ -n $joins || (${COMP_WORDS[i]} == = && ${#words[@]} -gt 0) ]]; then
            front=${words[${#words[@]} - 1]}
            words[${#words[@]} - 1]+=$word
            [[ ${COMP_WORDS[i]} == = ]] && front+==
        else
            front=
            words+=("$word")
        fi
        joins=
        [[ ${COMP_WORDS[i]} == = ]] && joins=yes
    done
    COMPREPLY=()
    mapfile -t answers < <("$program" shell-completion -- "${words[@]}" 2>/dev/null)
    if [[ ${answers[0]-} == :files ]]; then
        compopt -o default 2>/dev/null
        return 0
    fi
    for word in ${answers[@]+"${answers[@]}"}; do
        # A word that ends with "=" goes on.
        [[ $word == *= ]] && compopt -o nospace 2>/dev/null
        word=${word#"$front"}
        case $quote in
            \') [[ $word == *\'* ]] && continue ;;
            \")
                for i in \\ \" \$ \`; do word=${word//"$i"/\\"$i"}; done
                ;;
            *) [[ -n $word ]] && printf -v word %q "$word" ;;
        esac
        [[ -n $word ]] && COMPREPLY+=("$word")
    done
    return 0
}

complete -F _vnconsole vnconsole
