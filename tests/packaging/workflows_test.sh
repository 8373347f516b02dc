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
# Actions are pinned, to versions that run on the Node that runners have.
pin='@[0-9a-f]{40} # v'
others=$(echo "$workflows" | sed -n 's/.*uses: *//p' | sort -u |
    grep -vE "^actions/(checkout${pin}[5-9]|upload-artifact${pin}[6-9]|download-artifact${pin}[7-9])\." || true)
[ -z "$others" ] || complain "not pinned, too old, or unknown: $others"
exit "$failed"
