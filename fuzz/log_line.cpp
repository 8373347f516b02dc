// Every line of the input through the interpreter of log lines, beside the model.

#include <algorithm>

#include "focus/ORVCodexFocusLogSource.h"
#include "focus/markers.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/answers.h"
#include "fuzz/expect.h"
#include "fuzz/model/FocusModel.h"
#include "fuzz/model/text.h"

namespace {

bool holdsMarker(std::string_view line) {
    return model::contains(line, focus::kActivityMarker) ||
           model::contains(line, focus::kOwnerSyncMarker) ||
           model::contains(line, focus::kRenderStateMarker);
}

void checkWindows(const ORVFocusLogFileState& fileState) {
    for (const auto& [webContentsID, window] : fileState.windows) {
        fuzz::expect(!webContentsID.empty() && !window.windowID.empty(), "windows have names");
        const ORVFocusLogEvent* event = window.routeEvent.get();
        fuzz::expect(!event || (event->threadID ? 1 : 0) + (event->waitingForThread ? 1 : 0) +
                                       (event->incompatibleFormat ? 1 : 0) ==
                                   1,
                     "an event says exactly one thing");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 8192;
    constexpr std::size_t kLimitLines = 64;
    MemoryFiles files;
    files.write("/logs/empty.log", "");  // Without a log there is no answer.
    ORVCodexFocusLogSource source(files, "/logs", "/Info.plist");
    ORVFocusLogFileState fileState;
    model::LinesRead lines;
    const std::string input(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    for (const std::string& line : model::completeLines(input + '\n')) {
        if (lines.size() < kLimitLines && holdsMarker(line)) {
            lines.emplace_back(1, line);
            source.consumeLineData(line, fileState);
            checkWindows(fileState);
            fuzz::expectEqual(model::focusAfter(lines),
                              fuzz::described(source.currentFocusStateWithError(nullptr)), line);
        }
    }
    return 0;
}
