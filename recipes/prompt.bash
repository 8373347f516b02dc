# bash: `C3 · 47% ` before the prompt, in folders that a task works in; nothing elsewhere.
# Append to ~/.bashrc, below the line that sets PS1.
#
# What the program prints is not expanded again, whatever is in the template. It is asked at most every
# five seconds, and after each change of folder: with thousands of session files an answer takes long
# enough to be felt.
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
    return "$status" # What follows in PROMPT_COMMAND sees the user's command's status.
}

PROMPT_COMMAND="__brimlet${PROMPT_COMMAND:+; $PROMPT_COMMAND}"
# Single quotes: bash looks the text up for every prompt.
PS1='${__brimlet_text}'$PS1
