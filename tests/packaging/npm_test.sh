#!/bin/sh
# Checks that the launcher of the npm package finds the program in every layout that package managers make:
#
#     tests/packaging/npm_test.sh
set -u
root=$(cd "$(dirname "$0")/../.." && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
top="$folder/a b"
failed=0

program() { # PACKAGES-FOLDER PLATFORM
    mkdir -p "$1/brimlet-$2/bin"
    printf '#!/bin/sh\necho "%s:$*"\n' "$2" >"$1/brimlet-$2/bin/brimletctl"
    chmod +x "$1/brimlet-$2/bin/brimletctl"
}
launcher() { # PACKAGE-FOLDER
    mkdir -p "$1/bin"
    cp "$root/packaging/npm/brimletctl.bin" "$1/bin"
}
expect() { # EXPECTED COMMAND...
    expected=$1
    shift
    got=$(PATH=$top/tools:$PATH "$@" 2>&1)
    # shellcheck disable=SC2254
    case $got in
        $expected) ;;
        *)
            echo "$*: expected $expected, got $got"
            failed=1
            ;;
    esac
}
tool() { # NAME WHAT-IT-ANSWERS
    mkdir -p "$top/tools"
    printf '#!/bin/sh\necho %s\n' "$2" >"$top/tools/$1"
    chmod +x "$top/tools/$1"
}
tool uname must-not-be-asked
tool readlink must-not-be-asked

# npm -g: the program's package lies inside, and prefix/bin has a relative link.
launcher "$top/global/lib/node_modules/brimlet"
program "$top/global/lib/node_modules/brimlet/node_modules" linux-arm64
mkdir -p "$top/global/bin"
ln -s ../lib/node_modules/brimlet/bin/brimletctl.bin "$top/global/bin/brimletctl"
ln -s "$top/global/bin/brimletctl" "$top/an absolute link"
expect 'linux-arm64:a  b c' "$top/global/bin/brimletctl" 'a  b' c
# shellcheck disable=SC2016
expect 'linux-arm64:x' sh -c 'cd "$1/global/bin" && sh brimletctl x' sh "$top"

# npm and yarn in a project: both packages side by side.
launcher "$top/project/node_modules/brimlet"
program "$top/project/node_modules" linux-x64
mkdir -p "$top/project/node_modules/.bin"
ln -s ../brimlet/bin/brimletctl.bin "$top/project/node_modules/.bin/brimletctl"
expect 'linux-x64:' "$top/project/node_modules/.bin/brimletctl"
rm "$top/tools/readlink"
expect 'linux-arm64:' "$top/an absolute link"

# pnpm: folders that are links into a store, and a script in .bin that starts the launcher through one.
store="$top/pnpm/node_modules/.pnpm"
launcher "$store/brimlet@1/node_modules/brimlet"
program "$store/brimlet-darwin@1/node_modules" darwin
ln -s ../../brimlet-darwin@1/node_modules/brimlet-darwin "$store/brimlet@1/node_modules/brimlet-darwin"
ln -s .pnpm/brimlet@1/node_modules/brimlet "$top/pnpm/node_modules/brimlet"
mkdir "$top/pnpm/node_modules/.bin"
expect 'darwin:' sh "$top/pnpm/node_modules/.bin/../brimlet/bin/brimletctl.bin"

# yarn's manner of pnpm, and yarn without node_modules.
launcher "$top/store/brimlet-npm-1/package"
program "$top/store/brimlet-npm-1/node_modules" linux-x64
expect 'linux-x64:' "$top/store/brimlet-npm-1/package/bin/brimletctl.bin"
unplugged="$top/.yarn/unplugged"
launcher "$unplugged/brimlet-npm-1/node_modules/brimlet"
program "$unplugged/brimlet-linux-x64-npm-1/node_modules" linux-x64
expect 'linux-x64:' "$unplugged/brimlet-npm-1/node_modules/brimlet/bin/brimletctl.bin"

# A folder that is shared between machines, and machines without a program.
program "$top/project/node_modules" linux-arm64
launcher "$top/none/node_modules/brimlet"
while IFS='|' read -r name where expected; do
    tool uname "$name"
    expect "$expected" "$top/$where/node_modules/brimlet/bin/brimletctl.bin"
done <<END
Linux aarch64|project|linux-arm64:
Linux x86_64|project|linux-x64:
Darwin arm64|project|*brimlet-darwin is missing*omit=optional*
Linux x86_64|none|*brimlet-linux-x64 is missing*
Linux riscv64|project|*no program for this machine (Linux riscv64)*
END
exit "$failed"
