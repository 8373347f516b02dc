#!/bin/sh
# Xfce's panel, by the plug-in Generic Monitor: `C3 · 47%`, and the title in the tool tip.
# Copy to ~/.local/bin/brimlet-genmon, make it executable, add a "Generic Monitor" to the panel, and give it
# the script's whole path as its command and 5 seconds as its period.
#
# The plug-in takes both texts for Pango markup, so the title's <, > and & are replaced. No title is in
# <click>, which would run it.
text=$(brimletctl latest --format '{status}' 2>/dev/null) || text=--
title=$(brimletctl latest --format '{title:60}' 2>/dev/null |
    sed 's/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g')
printf '<txt>%s</txt>\n<tool>%s</tool>\n' "$text" "$title"
