#!/bin/sh
# Checks that includes point one way: ctl -> shells -> app -> sessions, focus, l10n -> platform -> text.
# Each folder is listed with those that it may include.
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

# Only the AppKit shell and the Mac's sources of platform/ include a Mac's frameworks.
wrong=$(grep -rnE '^#(import|include) <(AppKit|Foundation)/' app ctl focus fuzz l10n platform sessions shells text |
    grep -vE '^(shells/appkit/|platform/[a-z_]*_apple\.)' || true)
if [ -n "$wrong" ]; then
    echo "$wrong"
    failed=1
fi
exit "$failed"
