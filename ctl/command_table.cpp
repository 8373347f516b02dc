// The tables of commands and options, and the help that is made from them.
// Tests: tests/ctl/arguments_test.cpp, tests/packaging/manual_test.sh.

#include "ctl/command_table.h"

#include <algorithm>

namespace ctl {
namespace {

constexpr Operands kNone{0, 0, ""};

constexpr Option kOptions[] = {
    {"json", 'j', "", "answer with one line of JSON"},
    {"format", 'f', "TEMPLATE",
     "answer with a line of text of your own, such as '{status} {title}'"},
    {"waybar", 'w', "", "write lines of JSON for Waybar, i3status-rust and others"},
    {"svg", 's', "", "draw an SVG document"},
    {"latest", 'l', "", "follow the newest task"},
    {"task", 't', "ID", "follow the task with this thread identifier"},
    {"here", 'e', "", "follow the newest task that works in this folder"},
    {"folder", 'd', "DIR", "use this folder in place of the current one"},
    {"limit", 'n', "N", "show at most N tasks; 0 means all (default: 20)"},
    {"since", 'i', "TIME", "show tasks that changed within this time: 30m, 2h, 7d"},
    {"codex-home", 'c', "DIR", "the Codex home (default: $CODEX_HOME, else ~/.codex)"},
    {"color", 'o', "WHEN", "auto, always or never; auto respects NO_COLOR and TERM"},
    {"help", 'h', "", "show help on a command"},
    {"version", 'V', "", "show the version"},
};

constexpr std::string_view kCommonOptions = "cohV";

constexpr Command kCommands[] = {
    {"watch", Call::watch, kNone, "jfwlted", "the status item and its menu, live",
     "Follows the task that the Codex desktop application has in view. Without that application,\n"
     "choose the task with --latest, --task ID or --here. On a terminal it shows the status item\n"
     "and its open menu; ? lists the keys, and q quits. Elsewhere it writes a line whenever that\n"
     "line has changed, as tmux, polybar and i3blocks need it.\n"
     "\n"
     "With --json it reads commands from standard input, one a line: choose ITEM, key r, key q.\n"
     "SIGHUP, SIGINT and SIGTERM end it with status 0. A background job of a script ignores\n"
     "SIGINT: end it with SIGTERM, or close its output.\n"
     "\n"
     "  brimletctl watch --latest\n"
     "  brimletctl watch --here --format '{percent}% {bar}'\n"
     "  brimletctl watch --latest --waybar\n"},
    {"latest", Call::latest, kNone, "jf", "the newest task",
     "Shows compactions, context usage and title of the task whose session file was written last.\n"
     "\n"
     "  brimletctl latest\n"
     "  brimletctl latest --format '{used} of {window} tokens, {left} left'\n"},
    {"task",
     Call::task,
     {1, 1, "ID"},
     "jf",
     "the task with this thread identifier",
     "  brimletctl task 01a20e72-983b-7e83-81c7-e87b7b63d181 --json\n"},
    {"here", Call::here, kNone, "jfd", "the newest task that works in this folder",
     "Looks for tasks that work in this folder or in one that holds it. Of several, it shows the\n"
     "one with the deepest folder, and among equals the newest.\n"
     "\n"
     "  brimletctl here\n"
     "  brimletctl here --folder ~/projects/site --format '{status}'\n"},
    {"tasks", Call::tasks, kNone, "jfni", "the newest tasks with their figures",
     "On a terminal it shows a table that fits the width. Elsewhere it writes one task a line:\n"
     "status, time of the last change, folder, title and thread identifier, separated by tabs.\n"
     "\n"
     "  brimletctl tasks --since 7d\n"
     "  brimletctl tasks --limit 0 --json\n"},
    {"history",
     Call::history,
     {0, 1, "[ID]"},
     "js",
     "how a task's context filled up, drawn",
     "Draws the history of the newest task, or of the task with this thread identifier, and marks\n"
     "compactions.\n"
     "\n"
     "  brimletctl history\n"
     "  brimletctl history --svg >history.svg\n"},
    {"focus", Call::focus, kNone, "j", "which task is in view, or why none is",
     "Reads the logs of the Codex desktop application.\n"},
    {"titles", Call::titles, kNone, "j", "all titles: thread identifier, tab, title",
     "Writes one title a line, sorted by identifier.\n"},
    {"doctor", Call::doctor, kNone, "", "every place that is read, and why nothing is shown",
     "Shows every place that is read, what was found there, and what watch would show. The status\n"
     "is 0 when a task can be shown, else 1.\n"},
    {"query", Call::query, kNone, "", "answers queries from standard input with JSON",
     "Reads one query a line: focus, latest, task ID, titles or refresh. Each is answered with a\n"
     "line of JSON before the next is read. Files that were read before are only read on.\n"
     "\n"
     "  printf 'latest\\ntitles\\n' | brimletctl query\n"},
    {"help", Call::help, {0, 1, "[COMMAND]"}, "", "this help, or help on a command", ""},
};

std::string padded(std::string text, std::size_t columns) {
    text.resize(std::max(text.size(), columns), ' ');
    return text;
}

/// The text with a line break in place of the last space that fits each line.
std::string wrapped(std::string text, const std::string& lineBreak) {
    constexpr std::size_t kColumns = 76;
    for (std::size_t start = 0; text.size() - start > kColumns;) {
        const std::size_t space = text.rfind(' ', start + kColumns);
        text.replace(space, 1, lineBreak);
        start = space + 1;
    }
    return text;
}

std::string describedOption(const Option& option) {
    constexpr std::size_t kColumns = 20;
    const bool hasShortForm = option.letter == 'h' || option.letter == 'V';
    std::string text = hasShortForm ? std::string("-") + option.letter + ", " : "";
    text += "--" + std::string(option.name) + (option.value.empty() ? "" : " ");
    return "  " + padded(text + std::string(option.value), kColumns) + " " +
           std::string(option.help) + '\n';
}

std::string helpOnEverything() {
    constexpr std::size_t kColumns = 20;
    std::string text =
        "brimletctl shows how full the context window of a Codex task is, and how often its\n"
        "conversation was compacted, from local files alone.\n"
        "\n"
        "usage: brimletctl COMMAND [OPTIONS]\n"
        "\n";
    for (const Command& command : kCommands) {
        const std::string name = std::string(command.name) +
                                 (command.operands.most > 0 ? " " : "") +
                                 std::string(command.operands.name);
        text += "  " + padded(name, kColumns) + " " + std::string(command.summary) + '\n';
    }
    text += "\nOptions of every command:\n";
    for (const Option& option : kOptions) {
        text += isCommon(option) ? describedOption(option) : "";
    }
    return text +
           "\n"
           "brimletctl help COMMAND shows a command's own options, with examples.\n"
           "Exit status: 0 an answer was given; 1 there is nothing to show, or it cannot be read\n"
           "or written; 2 the arguments were not understood.\n";
}

std::string helpOn(const Command& command) {
    std::string text = "usage: brimletctl " + std::string(command.name) +
                       (command.operands.most > 0 ? " " : "") + std::string(command.operands.name) +
                       " [OPTIONS]\n\n" + std::string(command.summary) + ".\n";
    if (!command.help.empty()) {
        text += '\n' + std::string(command.help);
    }
    text += "\nOptions:\n";
    for (const Option& option : kOptions) {
        const bool isTaken = command.options.find(option.letter) != std::string_view::npos;
        text += isTaken || isCommon(option) ? describedOption(option) : "";
    }
    if (command.options.find('f') != std::string_view::npos) {
        text +=
            "\nNames in a TEMPLATE; an unknown value becomes --, and {{ and }} are braces:\n  " +
            wrapped(ORVTemplate::names(), "\n  ") + '\n';
    }
    return text;
}

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

const Option& optionWithLetter(char letter) {
    return *std::find_if(std::begin(kOptions), std::end(kOptions),
                         [&](const Option& each) { return each.letter == letter; });
}

bool isCommon(const Option& option) {
    return kCommonOptions.find(option.letter) != std::string_view::npos;
}

std::string helpText(std::string_view commandName) {
    const Command* command = findCommand(commandName);
    return command ? helpOn(*command) : helpOnEverything();
}

}  // namespace ctl
