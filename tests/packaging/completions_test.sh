#!/usr/bin/env bash
# Checks what the three shells offer after the beginning of a call. Titles and identifiers look like
# commands, which no shell must run:
#
#     tests/packaging/completions_test.sh BRIMLETCTL
#
# fish and zsh are left out where they are not installed.
set -u
PATH=$(cd "$(dirname "$1")" && pwd):$PATH
completions=$(cd "$(dirname "$0")/../../packaging/completions" && pwd)
HOME=$(mktemp -d)
export PATH HOME CODEX_HOME=
trap 'rm -rf "$HOME"' EXIT
task=01a20e72-983b-7e83-81c7-e87b7b63d181
mkdir -p "$HOME/.codex" "$HOME/elsewhere" "$HOME/"'a $(touch pwned)'
cd "$HOME"
cat >.codex/session_index.jsonl <<END
{"id":"$task","thread_name":"\$(touch pwned) \`touch pwned\` \"'; touch pwned; %F{red}\\\\: \u001b[31m\n|"}
{"id":"02\$(touch pwned)","thread_name":"x"}
{"id":"03;touch pwned","thread_name":"x"}
{"id":"04:\\\\'\"","thread_name":"x"}
END
failed=0

expect() { # SHELL LINE EXPECTED GOT
    if [ "$3" != "$4" ]; then
        printf '%s: %s\nexpected %q\ngot      %q\n' "$1" "$2" "$3" "$4"
        failed=1
    fi
}

source "$completions/brimletctl.bash"
bashOffers() { # EXPECTED WORD...
    local expected=$1
    shift
    COMP_WORDS=(brimletctl "$@")
    COMP_CWORD=$#
    local word=${COMP_WORDS[COMP_CWORD]}
    _brimletctl brimletctl "${word#[\'\"=]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    expect bash "$*" "$expected" "${COMPREPLY[*]-}"
}
bashOffers 'task tasks' ta
bashOffers history --color never hi
bashOffers history help hi
bashOffers '--json --format --here --folder --limit --since --helpers --codex-home --color --help --version' \
    tasks ''
bashOffers '' history '--[js]*' # A word must not be taken for a pattern.
bashOffers "$task" task ''
bashOffers "$task" history 01
bashOffers "$task" watch --task ''
bashOffers "$task" watch --task = 01
bashOffers '' --codex-home /nowhere task ''
bashOffers '' --codex-home = /nowhere task ''
bashOffers "$task" --codex-home '~/.codex' task ''
bashOffers 'auto always never' latest --color ''
bashOffers 'auto always' latest --color = a
bashOffers '{status}' latest --format "'{st"
bashOffers '{status} / {title}' latest --format '"{status} / {ti'
bashOffers '' tasks --since ''
bashOffers '' watch --folder el # bash itself offers folders then.

if command -v fish >/dev/null; then
    fishOffers() { # EXPECTED LINE
        expect fish "$2" "$1" "$(fish -N -c 'source $argv[1]; complete -C $argv[2]' \
            "$completions/brimletctl.fish" "brimletctl $2" | cut -f 1 | paste -sd ' ' -)"
    }
    fishOffers 'task tasks' ta
    fishOffers '--limit' 'tasks --l'
    fishOffers "$task" 'history 01'
    fishOffers '02$(touch pwned)' 'watch --task 02'
    fishOffers '' 'task --codex-home /nowhere 0'
    fishOffers "$task" '--codex-home ~/.codex task 01'
    fishOffers '--color=always --color=auto' 'focus --color=a'
    fishOffers '{status} / {title}' "here --format '{status} / {ti"
    fishOffers 'a $(touch pwned)/' 'here --folder a'
fi

if command -v zsh >/dev/null && [ "$failed" = 0 ]; then
    # zsh runs in a terminal of its own. Each read waits for the expected text, if need be until ctest
    # ends the test.
    COMPLETIONS=$completions TASK=$task zsh -f <<'END' || failed=1
zmodload zsh/zpty
zpty shell TERM=dumb zsh -f -i
zpty -w shell 'PS1=; fpath=($COMPLETIONS $fpath); autoload -Uz compinit; compinit -u -D; echo be${:-}gun'
zpty -r shell output '*begun*'
expect() { # KEYS TEXT
    zpty -w -n shell $'\x15'"brimletctl $1" # Ctrl-U empties the line before.
    zpty -r shell output "*${(b)2}*" || exit 1
}
expect $'task 01\t' "task $TASK"
expect $'task 02\t' 'task 02\$\(touch\ pwned\)'
expect $'history 0\t\t' "$TASK  \$(touch pwned) \`touch pwned\` \"'"
expect $'hi\t--sv\t' '--svg'
expect $'focus --color=n\t' 'focus --color=never'
expect $'here --format \'{status} / {ti\t' "--format '{status} / {title}"
expect $'here --folder a\t' 'a\ \$\(touch\ pwned\)/'
zpty -d shell
END
fi

if [ -e pwned ]; then
    echo "A shell ran what stands in a title, an identifier or a folder's name."
    failed=1
fi
exit "$failed"
