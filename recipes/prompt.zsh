# zsh: `C3 · 47%` at the right of the prompt, in folders that a task works in; nothing elsewhere.
# Append to ~/.zshrc, below the line that sets the prompt.
#
# The text is in psvar, because zsh expands neither % nor, with PROMPT_SUBST, $( ) in it. The program runs
# at most every five seconds, and after each change of folder, because an answer takes noticeable time
# with thousands of session files.
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
