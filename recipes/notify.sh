#!/bin/sh
# Notifies once when a task's context window is 85 % full, and again only after it was below that.
# Copy to ~/.local/bin/brimlet-notify, make it executable and start it with your session:
#
#     brimlet-notify [PERCENT]
#
# It uses notify-send on Linux (package libnotify-bin), and osascript on a Mac, which is untried. The
# title is an argument of its own: nothing in it is run or taken for markup or an option.
set -eu
limit=${1:-85}

tell() { # PERCENT TITLE
    if command -v notify-send >/dev/null; then
        notify-send -a Brimlet -- "$2" "$1 % of the context window is in use"
    else
        osascript -e 'on run {used, task}' -e 'display notification used with title task' -e 'end run' \
            "$1 % of the context window is in use" "$2"
    fi || true # A later notification may still arrive.
}

# Through a named pipe and not `|`, so that the end of this script ends the program.
folder=$(mktemp -d)
mkfifo "$folder/lines"
brimletctl watch --latest --format '{percent} {id} {title}' >"$folder/lines" &
exec <"$folder/lines"
rm -r "$folder"

told= # The identifiers of the tasks that were told, each between two spaces.
while read -r percent id title; do
    case $percent in '' | *[!0-9]*) continue ;; esac
    case $told in *" $id "*) known=1 ;; *) known=0 ;; esac
    if [ "$percent" -ge "$limit" ] && [ "$known" = 0 ]; then
        told="$told $id "
        tell "$percent" "$title"
    elif [ "$percent" -lt "$limit" ] && [ "$known" = 1 ]; then
        told="${told%%" $id "*} ${told#*" $id "}"
    fi
done
