# fish: `C3 · 47%` at the right of the prompt, in folders that a task works in; nothing elsewhere.
# Copy to ~/.config/fish/conf.d/brimlet.fish. It replaces a right prompt of your own; to keep yours, leave
# out the last function and add its line to your own function.
#
# fish prints the text as it is. The program runs at most every five seconds, and after each change of
# folder, because an answer takes noticeable time with thousands of session files.
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
