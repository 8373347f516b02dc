# Completion of brimletctl for bash. Commands, options and names in templates are those that the
# program's help tells; identifiers are those of tasks with a title.
#
# Identifiers are whatever stands in the agent's files, and bash reads what it inserts as its own
# language: only those of harmless characters are offered.

_brimletctl() {
    local word="$2" previous="$3" command="" home="" value="" before="" i each IFS=$' \t\n'
    local overview="$(command brimletctl help 2>/dev/null)"
    [[ $previous != = ]] || previous="${COMP_WORDS[COMP_CWORD - 2]}" # --option=word is three words.
    for ((i = 1; i < COMP_CWORD; ++i)); do
        each="${COMP_WORDS[i]}"
        if [[ -z $command && $each == [a-z]* && $overview == *$'\n'"  $each "* ]]; then
            command="$each"
        elif [[ $each == --codex-home ]]; then
            home="${COMP_WORDS[i + 1]-}"
            [[ $home != = ]] || home="${COMP_WORDS[i + 2]-}"
        fi
    done
    local help="$(command brimletctl help $command 2>/dev/null)"
    if [[ $help =~ "  $previous "([A-Z]+)" " ]]; then
        value="${BASH_REMATCH[1]}"
    elif [[ $command == task || $command == history ]] && [[ $word != -* ]]; then
        value=ID
    fi

    local choices=""
    case "$value" in
        ID)
            choices="$(command brimletctl titles ${home:+--codex-home "${home/#~\//$HOME/}"} 2>/dev/null |
                cut -f 1 | LC_ALL=C grep -xE '[0-9A-Za-z][0-9A-Za-z-]*')"
            ;;
        WHEN) choices="auto always never" ;;
        TEMPLATE)
            before="$word"
            [[ ${word##*\}} != *{* ]] || before="${word%\{*}"
            choices="$(grep -o '{[a-z][a-z]*}' <<<"$help" | sort -u)"
            compopt -o nospace 2>/dev/null
            ;;
        "")
            choices="$(sed -nE 's/^  (-[A-Za-z], )?(--[a-z-]+) .*/\2/p' <<<"$help")"
            [[ -n $command && $command != help ]] ||
                choices+=" $(sed -nE 's/^  ([a-z]+) .*/\1/p' <<<"$overview")"
            ;;
    esac
    [[ $value == DIR ]] || compopt +o dirnames 2>/dev/null # bash itself offers folders, quoted.
    COMPREPLY=()
    for each in $choices; do
        [[ $before$each != "$word"* ]] || COMPREPLY+=("$before$each")
    done
}

complete -o dirnames -F _brimletctl brimletctl
