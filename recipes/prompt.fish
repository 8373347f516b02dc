# fish: `C3 · 47%` at the right of the prompt, in folders that a task works in; nothing elsewhere.
# Copy to ~/.config/fish/conf.d/brimlet.fish. It takes the place of a right prompt of your own; to keep
# that, leave out the last function and put its line into yours.
#
# fish prints the text as it is. The program is asked at most every five seconds, and after each change
# of folder: with thousands of session files an answer takes long enough to be felt.
function __brimlet --on-event fish_prompt
    set -l now (date +%s)
    if test "$PWD" != "$__brimlet_folder" -o "$now" -ge "$__brimlet_next"
        set -g __brimlet_folder $PWD
        set -g __brimlet_next (math $now + 5)
        set -g __brimlet_text (brimletctl here --format '{status}' 2>/dev/null)
    end
end

function fish_right_prompt
    echo -n $__brimlet_text
end
