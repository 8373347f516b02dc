#!/bin/sh
# Checks that what the workflows name exists: scripts, presets, tests, and what scripts make in build/.
set -eu
cd "$(dirname "$0")/../.."
failed=0
complain() {
    echo "$1" >&2
    failed=1
}
workflows=$(cat .github/workflows/*.yml)
named() { # PATTERN
    echo "$workflows" | grep -oE -- "$1" | sort -u
}

for script in $(named '(^|[ "(])(\./|\.\./)?(scripts|packaging|\.github|\.ci)/[a-z-]+|\./(test|run)\b' |
    sed 's/^[ "(]*//; s/^\.\.*\///'); do
    [ -x "$script" ] || complain "no script: $script"
done
for preset in $(named '(scripts/build|--preset) [a-z]+' | sed 's/.* //'); do
    grep -q "\"name\": \"$preset\"" CMakePresets.json || complain "no preset: $preset"
done
for test in $(named ' -R [A-Za-z_]+' | sed 's/.* //'); do
    grep -rqE "add_test\(NAME $test( |$)" tests --include=CMakeLists.txt || complain "no test: $test"
done
for made in $(named '\bbuild/[A-Za-z]+' | sed 's/build.//'); do
    grep -q "\"name\": \"$made\"" CMakePresets.json ||
        grep -rqE "build/$made|mkdir.* build/$made" scripts packaging .github || complain "not made: build/$made"
done
# Actions whose versions run on the Node that runners have.
for action in $(named 'uses: [^ ]+' | sed 's/uses: //'); do
    case $action in
    actions/checkout@v[5-9] | actions/upload-artifact@v[6-9] | actions/download-artifact@v[7-9]) ;;
    *) complain "too old, or unknown: $action" ;;
    esac
done
exit "$failed"
