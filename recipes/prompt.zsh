# zsh: `C3 · 47%` at the right of the prompt, in folders that a task works in; nothing elsewhere.
# Append to ~/.zshrc, below the line that sets the prompt.
#
# The text goes through psvar, since zsh expands no % and, with PROMPT_SUBST, no $( ) that comes from
# there. The program is asked at most every five seconds, and after each change of folder: with
# thousands of session files an answer takes long enough to be felt.
autoload -Uz add-zsh-hook
__brimlet_folder=
__brimlet_next=0

__brimlet() {
    [[ $PWD == "$__brimlet_folder" && $SECONDS -lt $__brimlet_next ]] && return
    __brimlet_folder=$PWD
    __brimlet_next=$((SECONDS + 5))
    psvar[9]=$(brimletctl here --format '{status}' 2>/dev/null)
}

add-zsh-hook precmd __brimlet
RPROMPT="%9v${RPROMPT:+ $RPROMPT}"
