#!/bin/sh
# Checks that the man page names the same commands, options and template names as `brimletctl help`:
#
#     tests/packaging/manual_test.sh BRIMLETCTL
set -eu
program=$1
page=$(dirname "$0")/../../packaging/man/brimletctl.1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Prints the first column of lines such as "  -h, --help   help on a command".
options() {
    sed -nE 's/^  (-[A-Za-z], )?(--[a-z-]+( [A-Z]+)?) .*/\2/p'
}
commands=$("$program" help | sed -nE 's/^  ([a-z]+)( [][A-Z]+)? .*/\1/p')
"$program" help | options >"$folder/common"
{
    "$program" help | sed -nE 's/^  ([a-z]+( [][A-Z]+)?) .*/synopsis \1/p'
    for command in $commands; do
        echo "command $command"
        "$program" help "$command" | options | grep -vxFf "$folder/common" | sed "s/^/synopsis $command /"
        "$program" help "$command" | options | sed 's/^/option /'
        "$program" help "$command" | sed -n '/^Names in a TEMPLATE/,$p' | grep -o '{[a-z]*}' |
            sed 's/^/name /'
    done
    sed 's/^/common /' "$folder/common"
} | sort -u >"$folder/help"

awk '
    /^\.S[hs] / { section = substr($0, 5); command = "" }
    section == "SYNOPSIS" && $1 == ".Cm" { command = $2; operand = "" }
    section == "SYNOPSIS" && ($1 == ".Ar" || $0 ~ /^\.Op Ar/) {
        print "synopsis " command ($1 == ".Ar" ? " " $2 : " [" $3 "]")
        hasOperand[command] = 1
    }
    section == "SYNOPSIS" && $1 == ".Op" {
        for (i = 2; i <= NF; ++i) {
            if ($i == "Fl") {
                print "synopsis " command " -" $(i + 1) ($(i + 2) == "Ar" ? " " $(i + 3) : "")
            }
        }
    }
    section == "SYNOPSIS" && command != "" { named[command] = 1 }
    section == "DESCRIPTION" && /^\.It Cm/ { print "command " $3 }
    section ~ /^Options/ && /^\.It Fl/ {
        option = $0
        sub(/^.*Fl -/, "--", option)
        sub(/ Ar/, "", option)
        print "option " option
        if (section == "Options of every command") {
            print "common " option
        }
    }
    section == "TEMPLATES" && /^\.It Ql/ { print "name " $3 }
    END {
        for (command in named) {
            if (!hasOperand[command]) {
                print "synopsis " command
            }
        }
    }
' "$page" | sort -u >"$folder/page"

echo "What help tells (-), and what the man page does (+):"
diff -U0 "$folder/help" "$folder/page"
[ "$(wc -l <"$folder/help")" -gt 50 ] # Two empty lists would agree, too.

if command -v mandoc >/dev/null; then
    mandoc -T lint "$page"
else
    echo "mandoc is not installed, so the form of the page was not checked."
fi
