// The tables of commands and options. Tests: tests/ctl/arguments_test.cpp,
// tests/packaging/manual_test.sh.

#include <algorithm>

#include "ctl/arguments.h"

namespace ctl {
namespace {

using enum OptionID;

constexpr Operands kNone{0, 0, ""};

constexpr Option kOptions[] = {
    {json, "json", 0, "", "answer with JSON, one object a line"},
    {format, "format", 0, "TEMPLATE", "answer in your own words: '{status} {title:30}'"},
    {waybar, "waybar", 0, "", "write JSON for Waybar, i3status-rust and others"},
    {svg, "svg", 0, "", "draw an SVG document"},
    {latest, "latest", 0, "", "the newest task"},
    {task, "task", 0, "ID", "the task with this identifier, or a part of it"},
    {here, "here", 0, "", "the newest task of this folder; of lists, its tasks"},
    {folder, "folder", 0, "DIR", "use this folder in place of the current one"},
    {limit, "limit", 0, "N", "show at most N tasks; 0 means all (default: 20)"},
    {since, "since", 0, "TIME", "only what is younger: 90s, 30m, 2h, 7d, 2w"},
    {helpers, "helpers", 0, "", "list the helpers of each task after it"},
    {codexHome, "codex-home", 0, "DIR", "the Codex home (default: $CODEX_HOME or ~/.codex)"},
    {color, "color", 0, "WHEN", "auto, always or never; auto respects NO_COLOR"},
    {OptionID::help, "help", 'h', "", "show help on a command"},
    {OptionID::version, "version", 'V', "", "show the version"},
};

constexpr Command kCommands[] = {
    {"watch",
     Call::watch,
     kNone,
     {json, format, waybar, latest, task, here, folder},
     "the status item and its menu, live",
     "Follows the task that the Codex desktop application has in view. Without that\n"
     "application, choose the task with --latest, --task ID or --here. On a terminal\n"
     "it shows the status item and its open menu; ? lists the keys, and q quits.\n"
     "Elsewhere it writes a line whenever that line has changed, as tmux, polybar and\n"
     "i3blocks need it.\n"
     "\n"
     "With --json it reads commands from standard input, one a line: choose ITEM,\n"
     "key r, key q. SIGHUP, SIGINT and SIGTERM end it with status 0. A background job\n"
     "of a script ignores SIGINT: end it with SIGTERM, or close its output.\n"
     "\n"
     "  brimletctl watch --latest\n"
     "  brimletctl watch --here --format '{percent}% {bar}'\n"
     "  brimletctl watch --latest --waybar\n"},
    {"top",
     Call::top,
     kNone,
     {json, limit, since, here, folder, helpers},
     "all tasks, live, with a history beside them",
     "Shows the tasks on the whole screen and the history of the selected one; Enter\n"
     "opens its menu, ? lists the keys, and q quits. With --json, and elsewhere than\n"
     "on a terminal, it writes the object of tasks --json whenever it has changed.\n"
     "\n"
     "  brimletctl top --since 7d\n"},
    {"latest",
     Call::latest,
     kNone,
     {json, format},
     "the newest task",
     "Shows compactions, context usage and title of the task that changed last. What\n"
     "its helpers do counts as a change of the task that they work for.\n"
     "\n"
     "  brimletctl latest\n"
     "  brimletctl latest --format '{used} of {window} tokens, {left} left'\n"},
    {"task",
     Call::task,
     {1, 1, "ID"},
     {json, format},
     "the task with this identifier",
     "A part of an identifier will do where only one task has it.\n"
     "\n"
     "  brimletctl task 7b63d181\n"
     "  brimletctl task 01a20e72-983b-7e83-81c7-e87b7b63d181 --json\n"},
    {"here",
     Call::here,
     kNone,
     {json, format, folder},
     "the newest task of this folder",
     "Looks for tasks that work in this folder or in one that holds it. Of several,\n"
     "it shows the one with the deepest folder, and among equals the newest.\n"
     "\n"
     "  brimletctl here\n"
     "  brimletctl here --folder ~/projects/site --format '{status}'\n"},
    {"tasks",
     Call::tasks,
     kNone,
     {json, format, limit, since, here, folder, helpers},
     "the newest tasks with their figures",
     "On a terminal it shows a table that fits the width. Elsewhere it writes one task\n"
     "a line: status, time of the last change, folder, title, thread identifier and,\n"
     "with --helpers, the parent's identifier, separated by tabs. --here keeps the\n"
     "tasks whose folder is this one, lies above it or in it.\n"
     "\n"
     "  brimletctl tasks --since 7d\n"
     "  brimletctl tasks --limit 0 --json\n"},
    {"history",
     Call::history,
     {0, 1, "[ID]"},
     {json, svg, latest, task, here, folder, since},
     "how a task's context filled up, drawn",
     "Draws the history of the newest task, or of the one with this identifier, marks\n"
     "compactions, and lists them below. Times are in the local time zone, in JSON as\n"
     "they were recorded.\n"
     "\n"
     "  brimletctl history\n"
     "  brimletctl history --here --since 2d\n"
     "  brimletctl history --svg >history.svg\n"},
    {"limits",
     Call::limits,
     kNone,
     {json},
     "rate limits, and when they reset",
     "Shows how much of the account's rate limits is used, as the newest session files\n"
     "tell it, and how old these figures are.\n"},
    {"focus",
     Call::focus,
     kNone,
     {json},
     "which task is in view, or why none is",
     "Reads the logs of the Codex desktop application.\n"},
    {"titles",
     Call::titles,
     kNone,
     {json},
     "all titles: thread identifier, tab, title",
     "Writes one title a line, sorted by identifier.\n"},
    {"doctor",
     Call::doctor,
     kNone,
     {json},
     "what is read, and why nothing is shown",
     "Shows every place that is read, what was found there, and what watch would show.\n"
     "The status is 0 when a task can be shown, else 1.\n"},
    {"query",
     Call::query,
     kNone,
     {},
     "answers queries from standard input with JSON",
     "Reads one query a line: focus, latest, task ID, titles or refresh. Each is\n"
     "answered with a line of JSON before the next is read. Files that were read\n"
     "before are only read on. It knows files alone, and no families of tasks.\n"
     "\n"
     "  printf 'latest\\ntitles\\n' | brimletctl query\n"},
    {"help", Call::help, {0, 1, "[COMMAND]"}, {}, "this help, or help on a command", ""},
};

}  // namespace

std::span<const Command> commands() {
    return kCommands;
}

std::span<const Option> options() {
    return kOptions;
}

const Command* findCommand(std::string_view name) {
    const auto* found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const Command& each) { return each.name == name; });
    return found == std::end(kCommands) ? nullptr : found;
}

const Option& optionWithID(OptionID id) {
    return *std::find_if(std::begin(kOptions), std::end(kOptions),
                         [&](const Option& each) { return each.id == id; });
}

}  // namespace ctl
