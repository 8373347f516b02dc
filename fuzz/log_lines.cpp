// Every line of the input as a line of a desktop log.

#include <map>

#include "focus/ORVCodexFocusLogSource.h"
#include "fuzz/fuzz.h"
#include "tests/support/MemoryFiles.h"

namespace {

/// The current event and all windows after these lines, each of which stands there so many times.
std::string meaning(const std::string& lines, int times, const std::string& ending) {
    MemoryFiles disk;
    disk.write("/logs/empty.log", "");  // Without a log there is no answer.
    ORVCodexFocusLogSource source(disk, "/logs", "/Info.plist");
    ORVFocusLogFileState file;
    for (std::size_t start = 0, end = 0; start < lines.size(); start = end + 1) {
        end = std::min(lines.find('\n', start), lines.size());
        const std::string line = lines.substr(start, end - start) + ending;
        for (int i = 0; i < times; ++i) {
            source.consumeLineData(line, file);
        }
    }
    const ORVCodexFocusState state = source.currentFocusStateWithError(nullptr);
    std::string text = std::to_string(state.status()) + state.threadID().value_or("");
    for (const auto& [webContentsID, window] : std::map(file.windows.begin(), file.windows.end())) {
        fuzz::expect("windows have names", !webContentsID.empty() && !window.windowID.empty());
        text += ' ' + webContentsID + '/' + window.windowID;
        if (const auto event = window.routeEvent) {
            fuzz::expect(
                "an event says one thing",
                event->threadID.has_value() + event->waitingForThread + event->incompatibleFormat ==
                    1);
            text += event->timestamp + event->threadID.value_or("");
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string lines = fuzz::text(data, size);
    const std::string expected = meaning(lines, 1, "");
    fuzz::expectEqual("a line twice says nothing else", expected, meaning(lines, 2, ""));
    fuzz::expectEqual("nor does one with more in it", expected, meaning(lines, 1, "\tunknown=1"));
    return 0;
}
