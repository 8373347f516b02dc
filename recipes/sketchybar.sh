# shellcheck shell=sh
# SketchyBar, on a Mac: `C3 · 47%` in the bar. Untried: written after its documentation.
# Append to ~/.config/sketchybar/sketchybarrc, above the line `sketchybar --update`.
#
# The program runs every five seconds. If the bar's service does not find brimletctl on its PATH, write
# the whole path here. The label is an argument of its own and plain text.
sketchybar --add item brimlet right --set brimlet update_freq=5 icon.drawing=off \
    script="sketchybar --set brimlet label=\"\$(brimletctl latest --format '{status}')\""
