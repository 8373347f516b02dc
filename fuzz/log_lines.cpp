// Takes every line of the input for a line of a desktop log.

#include <map>

#include "focus/ORVCodexFocusLogSource.h"
#include "fuzz/fuzz.h"
#include "tests/support/MemoryFiles.h"

namespace {

/// Returns the current event and all windows after these lines, each of them repeated so many
/// times.
std::string meaning(const std::vector<std::string>& lines, int times, const std::string& ending) {
    MemoryFiles disk;
    disk.write("/h/Library/Logs/com.openai.codex/empty.log",
               "");  // Without any log there would be no answer.
    const ManualClock clock;
    ORVCodexFocusLogSource source(disk, clock, "/h/Library/Logs/com.openai.codex",
                                  "/Applications/Codex.app/Contents/Info.plist");
    ORVFocusLogFileState file;
    for (const std::string& line : lines) {
        for (int i = 0; i < times; ++i) {
            source.consumeLineData(line + ending, file);
        }
    }
    const ORVCodexFocusState state = source.currentFocusStateWithError(nullptr);
    std::string text = std::to_string(state.status()) + state.threadID().value_or("");
    for (const auto& [webContentsID, window] : std::map(file.windows.begin(), file.windows.end())) {
        fuzz::expect("windows have names", !webContentsID.empty() && !window.windowID.empty());
        text += ' ' + webContentsID + '/' + window.windowID;
        if (const auto event = window.routeEvent) {
            const int said = event->waitingForThread + event->incompatibleFormat;
            fuzz::expect("an event says one thing", said + event->threadID.has_value() == 1);
            text += event->timestamp + event->threadID.value_or("");
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> lines = fuzz::lines(fuzz::text(data, size));
    const std::string once = meaning(lines, 1, "");
    fuzz::expectEqual("a line twice says nothing else", once, meaning(lines, 2, ""));
    fuzz::expectEqual("nor does one with more in it", once, meaning(lines, 1, "\tunknown=1"));
    return 0;
}
