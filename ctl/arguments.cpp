// The command line, by getopt: an argument parser that brings the standard streams along would make
// up a tenth of the program's resident memory.

#include "ctl/arguments.h"

#include <getopt.h>

#include <algorithm>
#include <iterator>

namespace ctl {
namespace {

struct Command {
    std::string_view name;
    Call call;
    int operands;  ///< Behind the name.
    bool takesFormat;
};

constexpr Command kCommands[] = {
    {"latest", Call::latest, 0, true}, {"task", Call::task, 1, true},
    {"focus", Call::focus, 0, true},   {"titles", Call::titles, 0, true},
    {"query", Call::query, 0, false},  {"watch", Call::watch, 0, true},
};

Arguments notUnderstood(std::string complaint) {
    Arguments result;
    result.complaint = std::move(complaint);
    return result;
}

}  // namespace

const std::string_view kUsage =
    "usage: brimletctl watch              the status item and its menu in this terminal, live; "
    "without\n"
    "                                     a terminal lines of text\n"
    "       brimletctl watch --json       the same as lines of JSON; commands on standard input:\n"
    "                                     choose ITEM, key r, key q\n"
    "       brimletctl latest [--json]    the newest task: compactions, context usage, title\n"
    "       brimletctl task ID [--json]   the task with this thread identifier\n"
    "       brimletctl focus [--json]     which task is in view in the desktop application, or "
    "why\n"
    "                                     none is\n"
    "       brimletctl titles [--json]    thread identifier, tab, title: one a line\n"
    "       brimletctl query              answers queries from standard input, one a line, with\n"
    "                                     lines of JSON: focus, latest, task ID, titles, refresh\n"
    "       brimletctl --help | --version\n"
    "\n"
    "With --json the answer is one line of JSON.\n"
    "Exit status: 0 an answer was given; 1 there is nothing to show, or it cannot be read; 2 the\n"
    "arguments were not understood.\n";

Arguments parseArguments(int count, char** arguments) {
    static constexpr option kOptions[] = {{"json", no_argument, nullptr, 'j'},
                                          {"help", no_argument, nullptr, 'h'},
                                          {"version", no_argument, nullptr, 'v'},
                                          {nullptr, 0, nullptr, 0}};
    Arguments result;
    int found = 0;
    while ((found = getopt_long(count, arguments, "h", kOptions, nullptr)) != -1) {
        switch (found) {
            case 'j':
                result.format = Format::json;
                break;
            case 'h':
                result.call = Call::help;
                return result;
            case 'v':
                result.call = Call::version;
                return result;
            default:
                return {};
        }
    }
    if (optind == count) {
        return notUnderstood("a command is missing");
    }
    const std::string_view name = arguments[optind];
    const auto* command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                       [&](const Command& c) { return c.name == name; });
    if (command == std::end(kCommands)) {
        return notUnderstood("unknown command: " + std::string(name));
    }
    if (count - optind - 1 != command->operands) {
        return notUnderstood(std::string(name) + (command->operands == 0
                                                      ? " takes no arguments"
                                                      : " takes one thread identifier"));
    }
    if (result.format == Format::json && !command->takesFormat) {
        return notUnderstood(std::string(name) + " always answers with JSON");
    }
    result.call = command->call;
    if (command->operands == 1) {
        result.threadID = arguments[optind + 1];
    }
    return result;
}

}  // namespace ctl
