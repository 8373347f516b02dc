#!/bin/sh
# Every include points one way: ctl -> shells -> app -> sessions, focus, l10n -> platform -> text.
# What a folder may include of the others is listed; the core sees no shell and no platform source.
set -eu
cd "$(dirname "$0")/.."
failed=0

check() { # FOLDER ALLOWED...
    folder=$1
    shift
    allowed="$folder"
    for other in "$@"; do
        allowed="$allowed|$other"
    done
    wrong=$(grep -rnE '^#(include|import) "' "$folder" --include='*.h' --include='*.cpp' --include='*.mm' |
        grep -vE "#(include|import) \"($allowed)/[^\"]*\.h\"" || true)
    if [ -n "$wrong" ]; then
        echo "$wrong"
        failed=1
    fi
}

check text
check platform text
check l10n platform text
check sessions platform text
check focus platform text
check app sessions focus l10n platform text
check shells app sessions focus l10n platform text
check ctl shells app sessions focus l10n platform text
check fuzz tests/support ctl shells app sessions focus l10n platform text

# A Mac's frameworks stand where nothing else of the program can meet them.
wrong=$(grep -rnE '^#(import|include) <(AppKit|Foundation)/' app ctl focus fuzz l10n platform sessions shells text |
    grep -vE '^(shells/appkit/|platform/[a-z_]*_apple\.)' || true)
if [ -n "$wrong" ]; then
    echo "$wrong"
    failed=1
fi
exit "$failed"
