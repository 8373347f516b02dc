// brimletctl: the figures of Brimlet for terminals, scripts and status bars.

#include <signal.h>

#include <CLI/CLI.hpp>
#include <iostream>

#include "app/version.h"
#include "ctl/commands.h"
#include "ctl/output.h"

namespace {

struct Call {
    std::function<int(ctl::Sources&, ctl::Format)> run;
    ctl::Format format = ctl::Format::text;
};

void addCalls(CLI::App& program, Call& call, std::string& threadID) {
    const auto add = [&](const char* name, const char* description, bool takesFormat,
                         std::function<int(ctl::Sources&, ctl::Format)> run) {
        CLI::App* command = program.add_subcommand(name, description);
        if (takesFormat) {
            command
                ->add_flag_callback(
                    "--json", [&call] { call.format = ctl::Format::json; },
                    "Answer with one line of JSON")
                ->disable_flag_override();
        }
        command->final_callback([&call, run] { call.run = run; });
        return command;
    };
    add("latest", "The newest task: compactions, context usage, title", true, ctl::showLatest);
    add("task", "The task with this thread identifier", true,
        [&threadID](ctl::Sources& sources, ctl::Format format) {
            return ctl::showTask(sources, threadID, format);
        })
        ->add_option("ID", threadID, "Thread identifier")
        ->required();
    add("focus", "Which task is in view in the desktop application, or why none is", true,
        ctl::showFocus);
    add("titles", "Thread identifier, tab, title: one a line", true, ctl::showTitles);
    add("query", "Answer queries from standard input with lines of JSON", false,
        [](ctl::Sources& sources, ctl::Format) { return ctl::answerQueries(sources, std::cin); });
    program.require_subcommand(1);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    // A reader that leaves shows in the result of a write.
    signal(SIGPIPE, SIG_IGN);
    CLI::App program("How full the context window of a Codex task is, and how often it was compacted",
                     "brimletctl");
    Call call;
    std::string threadID;
    addCalls(program, call, threadID);
    program.set_version_flag("--version", "brimletctl " BRIMLET_VERSION);
    try {
        program.parse(argumentCount, arguments);
    } catch (const CLI::Success& help) {
        return program.exit(help);
    } catch (const CLI::ParseError& failure) {
        ctl::complain(failure.what());
        std::cerr << program.help();
        return ctl::kUsageError;
    }
    ctl::Sources sources;
    return call.run(sources, call.format);
}
