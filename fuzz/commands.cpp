// Passes any bytes to the standard input of `query` and of `watch --json`. Every line must be
// handled, and everything that is written must be a line of JSON.

#include <simdjson.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "app/ORVAppDelegate.h"
#include "ctl/commands.h"
#include "fuzz/fuzz.h"
#include "shells/lines/ORVCommandInput.h"
#include "shells/lines/status_item_json.h"
#include "tests/support/ManualHost.h"
#include "tests/support/records.h"

namespace {

/// A home in which a task is in view.
void fill(MemoryFiles& disk) {
    setenv("HOME", "/h", 1);
    disk.write(std::string("/h/.codex/sessions/") + records::kTask + ".jsonl",
               records::compacted("w1") + records::tokenCount("128000"));
    disk.write("/h/.codex/session_index.jsonl",
               records::title(records::kTask, "a \\\" \\u0000 \\u2028"));
    disk.write("/h/Library/Logs/com.openai.codex/a.log", records::log("1 activity TASK"));
}

void expectLinesOfJSON(const std::string& output, std::size_t count) {
    simdjson::dom::parser parser;
    const std::vector<std::string> lines = fuzz::lines(output);
    fuzz::expect("every line is answered", lines.size() == count + 1 && lines.back().empty());
    for (std::size_t i = 0; i < count; ++i) {
        fuzz::expect(lines[i], parser.parse(lines[i]).is_object());
    }
}

/// Returns what `query` writes to standard output, which is redirected to a file without a name.
std::string answersTo(std::string queries) {
    static std::FILE* const file = std::tmpfile();
    static const bool isTaken = dup2(fileno(file), STDOUT_FILENO) == STDOUT_FILENO;
    fuzz::expect("output can be taken", isTaken && ftruncate(STDOUT_FILENO, 0) == 0);
    lseek(STDOUT_FILENO, 0, SEEK_SET);
    MemoryFiles disk;
    fill(disk);
    const ORVSystemClock clock;
    ORVTaskViewer viewer(disk, clock, "/h/.codex", {});
    std::FILE* input = fmemopen(queries.data(), queries.size(), "r");
    ctl::answerQueries(viewer, input);
    std::fclose(input);
    std::string output(static_cast<std::size_t>(lseek(STDOUT_FILENO, 0, SEEK_CUR)), ' ');
    const ssize_t count = pread(STDOUT_FILENO, output.data(), output.size(), 0);
    fuzz::expect("output can be read", count == static_cast<ssize_t>(output.size()));
    return output;
}

/// Returns the status item's JSON after each command that ORVCommandInput has read.
std::string shownAfter(const std::string& commands, std::size_t count) {
    int ends[2];
    fuzz::expect("there are descriptors left", pipe(ends) == 0);
    const ssize_t written = write(ends[1], commands.data(), commands.size());
    fuzz::expect("a pipe takes the input", written == static_cast<ssize_t>(commands.size()));
    close(ends[1]);
    ManualHost host;
    fill(host.disk);
    const auto delegate = std::make_shared<ORVAppDelegate>(host);
    delegate->applicationDidFinishLaunching();
    std::string shown;
    ORVPosixRunLoop loop;
    const ORVCommandInput input(loop, ends[0], [&](const std::string& line) {
        const std::size_t space = std::min(line.find(' '), line.size());
        delegate->chooseItemNamed(line.substr(space).erase(0, 1));
        delegate->performKeyEquivalent(line.substr(space).erase(0, 1));
        host.loop.advance(std::chrono::milliseconds(700));
        host.runDispatched();
        shown += json::statusItem(delegate->statusItem()) + '\n';
        if (--count == 0) {
            loop.stop(0);
        }
    });
    loop.run();
    close(ends[0]);
    return shown;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitLines = 32;
    const std::string input = fuzz::text(data, size);
    const std::size_t count = fuzz::lines(input).size() - (input.ends_with('\n') ? 1 : 0);
    if (!input.empty() && count <= kLimitLines) {
        expectLinesOfJSON(answersTo(input), count);
        expectLinesOfJSON(shownAfter(input, count), count);
    }
    return 0;
}
