// Any bytes as the title index.

#include <algorithm>

#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/expect.h"
#include "fuzz/model/SessionModel.h"
#include "sessions/ORVCodexSessionSource.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 16 * 1024;
    MemoryFiles files;
    const ManualClock clock;
    ORVCodexSessionSource source(files, clock, "/codex");
    model::SessionModel model(files, clock, "/codex");
    files.bytesPerRead = 1 + size % 97;
    files.write("/codex/session_index.jsonl",
                std::string(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes)));
    std::string titles;
    for (const auto& [id, title] : source.threadTitles()) {
        titles += id + '\t' + title + '\n';
    }
    fuzz::expectEqual(model.titles(), titles, "titles");
    return 0;
}
