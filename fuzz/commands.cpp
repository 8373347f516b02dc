// Any bytes on the standard input of `query` and of `watch --json`: every line is dealt with, and
// everything that is written is a line of JSON.

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "app/ORVAppDelegate.h"
#include "ctl/commands.h"
#include "fuzz/ManualHost.h"
#include "fuzz/expect.h"
#include "fuzz/lines.h"
#include "fuzz/model/JSON.h"
#include "fuzz/model/text.h"
#include "shells/ORVCommandInput.h"
#include "shells/json/status_item_json.h"

namespace {

/// A home with a task in view.
void fillHome(MemoryFiles& files) {
    setenv("HOME", "/h", 1);
    const std::string threadID = fuzz::kThreadIDs[0];
    files.write("/h/.codex/sessions/" + threadID + ".jsonl",
                "{\"type\":\"event_msg\",\"payload\":{\"type\":\"token_count\",\"info\":{"
                "\"last_token_usage\":{\"input_tokens\":7},\"model_context_window\":9}}}\n");
    files.write("/h/.codex/session_index.jsonl",
                "{\"id\":\"" + threadID + "\",\"title\":\"a \\\" \\u0000 \\u2028\"}");
    files.write("/h/Library/Logs/com.openai.codex/a.log",
                "1 thread_stream_view_activity_changed active=true rendererWindowAppearance="
                "primary rendererWindowFocused=true conversationId=" +
                    threadID + '\n');
}

/// What the function writes to standard output. The file that takes it has no name.
std::string outputOf(const std::function<void()>& function) {
    static std::FILE* const file = std::tmpfile();
    static const bool isRedirected = dup2(fileno(file), STDOUT_FILENO) == STDOUT_FILENO;
    fuzz::expect(isRedirected && ftruncate(STDOUT_FILENO, 0) == 0, "output can be taken");
    lseek(STDOUT_FILENO, 0, SEEK_SET);
    function();
    std::string output(static_cast<std::size_t>(lseek(STDOUT_FILENO, 0, SEEK_CUR)), ' ');
    const ssize_t count = pread(STDOUT_FILENO, output.data(), output.size(), 0);
    fuzz::expect(count == static_cast<ssize_t>(output.size()), "output can be read");
    return output;
}

void checkQueries(std::string input, std::size_t lineCount) {
    auto files = std::make_unique<MemoryFiles>();
    fillHome(*files);
    ctl::Sources sources("/h/.codex", std::move(files));
    std::FILE* stream = fmemopen(input.data(), input.size(), "r");
    const std::string output = outputOf([&] { ctl::answerQueries(sources, stream); });
    std::fclose(stream);
    const std::vector<std::string> answers = model::completeLines(output);
    fuzz::expect(answers.size() == lineCount, "every query has an answer");
    fuzz::expect(output.ends_with('\n'), "every answer is a whole line");
    for (const std::string& answer : answers) {
        fuzz::expect(model::JSON::object(answer).has_value(), answer.c_str());
    }
}

/// The lines that a reader of commands hands over.
std::vector<std::string> commandsOf(const std::string& input, std::size_t lineCount) {
    std::vector<std::string> commands;
    int ends[2];
    fuzz::expect(pipe(ends) == 0, "there are descriptors left");
    const ssize_t written = write(ends[1], input.data(), input.size());
    fuzz::expect(written == static_cast<ssize_t>(input.size()), "a pipe takes the input");
    close(ends[1]);
    ORVPosixRunLoop loop;
    const ORVCommandInput reader(loop, ends[0], [&](const std::string& line) {
        commands.push_back(line);
        if (commands.size() == lineCount) {
            loop.stop(0);
        }
    });
    loop.run();
    close(ends[0]);
    return commands;
}

void checkCommands(const std::vector<std::string>& commands) {
    ManualHost host;
    fillHome(host.memoryFiles);
    const auto delegate = std::make_shared<ORVAppDelegate>(host);
    delegate->applicationDidFinishLaunching();
    for (const std::string& command : commands) {
        const std::string rest =
            command.substr(std::min(command.find(' '), command.size() - 1) + 1);
        if (command.starts_with("choose ")) {
            delegate->chooseItemNamed(rest);
        } else if (command.starts_with("key ")) {
            delegate->performKeyEquivalent(rest);
        }
        host.advance(std::chrono::milliseconds(700));
        const std::string shown = json::statusItem(delegate->statusItem());
        fuzz::expect(model::JSON::object(shown).has_value(), shown.c_str());
        fuzz::expect(!model::contains(shown, "\n"), "what is shown is one line");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 9000;  // Longer than the longest command, less than a pipe.
    constexpr std::size_t kLimitLines = 32;
    constexpr std::size_t kLongestCommand = 4096;
    std::string input(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    std::vector<std::string> lines = model::completeLines(input);
    if (!input.ends_with('\n')) {
        lines.push_back(input.substr(input.rfind('\n') + 1));
    }
    if (input.empty() || lines.size() > kLimitLines) {
        return 0;
    }
    checkQueries(input, lines.size());
    for (std::string& line : lines) {
        line.resize(std::min(line.size(), kLongestCommand));
    }
    fuzz::expect(commandsOf(input, lines.size()) == lines, "commands are handed over whole");
    checkCommands(lines);
    return 0;
}
