# bash: `C3 · 47% ` before the prompt, in folders that a task works in; nothing elsewhere.
# Append to ~/.bashrc, below the line that sets PS1.
#
# bash does not expand the program's output again, whatever the template holds. The program runs at most
# every five seconds, and after each change of folder, because an answer takes noticeable time with
# thousands of session files.
__brimlet_folder=
__brimlet_next=0
__brimlet_text=

__brimlet() {
    local status=$?
    if [[ $PWD != "$__brimlet_folder" || $SECONDS -ge $__brimlet_next ]]; then
        __brimlet_folder=$PWD
        __brimlet_next=$((SECONDS + 5))
        __brimlet_text=$(brimletctl here --format '{status} ' 2>/dev/null)
    fi
    return "$status" # The rest of PROMPT_COMMAND sees the status of the user's command.
}

PROMPT_COMMAND="__brimlet${PROMPT_COMMAND:+; $PROMPT_COMMAND}"
# Single quotes: bash looks the text up for every prompt.
PS1='${__brimlet_text}'$PS1
