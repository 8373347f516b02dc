#!/bin/sh
# xbar and SwiftBar, on a Mac: `C3 · 47%` in the menu bar, and the tasks in its menu. Untried there: written
# after their documentation. Copy into the plug-in folder and make it executable; its name says that it
# runs every 10 seconds.
#
# In a line `|` begins parameters, which can run commands, and `--` at its beginning opens a submenu.
# Therefore each `|` of a title becomes `/`, and the status, which holds neither, begins the line.
PATH=$PATH:/opt/homebrew/bin:/usr/local/bin
brimletctl latest --format '{status}' 2>/dev/null || echo --
echo ---
brimletctl tasks --limit 10 --format '{status}  {age}  {title:40}' 2>/dev/null | tr '|' /
