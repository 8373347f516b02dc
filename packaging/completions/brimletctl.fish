# Completion of brimletctl for fish. Commands, options and names in templates are those that the
# program's help tells; tasks are those with a title.

function __brimletctl
    command -q brimletctl; or return
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    set -l commands (command brimletctl help | string replace -rf '^  ([a-z]+)( [^ ]+)? +(.+)' '$1\t$3')
    set -l command
    for each in $words[2..]
        if contains -- $each (string split -f 1 \t $commands)
            set command $each
            break
        end
    end
    set -l help (command brimletctl help $command)

    set -l before (string match -r '^--[a-z-]+=' -- $word; or echo)
    set -l option (string trim -rc = -- $before)
    test -n "$option"; or set option (string escape --style=regex -- $words[-1])
    set -l value (string replace -rf "^  $option ([A-Z]+) .*" '$1' -- $help)
    if test -z "$value"; and string match -qr '^(task|history):(?!-)' "$command:$word"
        set value ID
    end
    set -l candidates
    switch "$value"
        case ID
            set -l home (string match -- '--codex-home=*' $words)
            if set -l at (contains -i -- --codex-home $words)
                set home --codex-home (string replace -r '^~/' "$HOME/" -- $words[(math $at + 1)])
            end
            set candidates (command brimletctl titles $home 2>/dev/null)
        case DIR
            set candidates (__fish_complete_directories (string replace -- "$before" '' $word) '')
        case WHEN
            set candidates auto always never
        case TEMPLATE
            set before (string replace -r '\{[a-z]*$' '' -- (string replace -r '^[\'"]' '' -- $word))
            set candidates (string match -rag '(\{[a-z]+\})' -- $help | sort -u)
        case ''
            set candidates (string replace -rf '^  (-\w, )?(--[a-z-]+)( [A-Z]+)? +(.+)' '$2\t$4' -- $help)
            if test -z "$command" -o "$command" = help
                set -a candidates $commands
            end
    end
    printf '%s\n' $before$candidates
end

complete -c brimletctl -f -a '(__brimletctl)'
