#!/bin/sh
# Checks that docs/json.md names every key that the program writes, and no other:
#
#     tests/packaging/json_test.sh BRIMLETCTL
set -eu
program=$1
page=$(cd "$(dirname "$0")/../../docs" && pwd)/json.md
HOME=$(mktemp -d)
export HOME CODEX_HOME='' XDG_CONFIG_HOME=''
trap 'rm -rf "$HOME"' EXIT
head=01a20e72-983b-7e83-81c7-e87b7b63d181
helper=01a20e72-a408-7c60-a888-3804d9c9faff
mkdir -p "$HOME/.codex/sessions"
echo '{"id":"'$head'","thread_name":"A title"}' >"$HOME/.codex/session_index.jsonl"
usage='"last_token_usage":{"input_tokens":9,"total_tokens":9},"total_token_usage":{"total_tokens":9},"model_context_window":99'
limits='"rate_limits":{"primary":{"used_percent":1,"window_minutes":300,"resets_at":1}}'
{
    echo '{"type":"session_meta","payload":{"cwd":"/"}}'
    echo '{"type":"turn_context","payload":{"model":"m","effort":"e"}}'
    echo '{"timestamp":"2026-11-24T16:45:21Z","type":"event_msg","payload":{"type":"token_count","info":{'"$usage}",$limits'}}'
    echo '{"timestamp":"2026-11-24T16:45:22Z","type":"event_msg","payload":{"type":"context_compacted"}}'
    echo '{"timestamp":"2026-11-24T16:45:23Z","type":"event_msg","payload":{"type":"token_count","info":{'"$usage}",$limits'}}'
} >"$HOME/.codex/sessions/$head.jsonl"
echo '{"type":"session_meta","payload":{"cwd":"/","thread_source":"subagent","parent_thread_id":"'$head'"}}' \
    >"$HOME/.codex/sessions/$helper.jsonl"

written() { # Prints each key of an answer. Identifiers as keys are none, nor are texts with colons.
    "$@" 2>/dev/null | grep -oE '[{,]"[A-Za-z]+":' | tr -d '{,":' | sort -u
}
told() { # Prints the keys in the tables of these sections of the page.
    for section in "$@"; do
        awk -v section="$section:" '/^## / { isHere = $2 == section } isHere && /^\| `/' "$page" |
            cut -d '|' -f 2 | tr -d '` ' | tr , '\n'
    done | sort -u
}
failed=0
compare() { # SECTIONS COMMAND...
    told $1 >"$HOME/told"
    shift
    written "$@" >"$HOME/written"
    if ! grep -q . "$HOME/written" || grep -vxFf "$HOME/told" "$HOME/written"; then
        echo "docs/json.md does not name these keys of: $*"
        failed=1
    fi
    cat "$HOME/written" >>"$HOME/all"
}
compare task "$program" task $head --json
compare 'task tasks' "$program" tasks --helpers --json
compare 'task history' "$program" history $head --json
compare 'task history' "$program" limits --json
compare 'task focus error' "$program" focus --json
compare titles "$program" titles --json
compare doctor "$program" doctor --json
compare 'task watch' sh -c "$program watch --latest --json </dev/null | head -n 2"
compare 'task doctor waybar' sh -c "$program watch --latest --waybar </dev/null | head -n 2"
if told error task tasks history limits focus titles doctor watch waybar | grep -vxFf "$HOME/all"; then
    echo "docs/json.md names these keys, which no answer has."
    failed=1
fi
exit "$failed"
