// Takes any bytes for the title index.

#include "fuzz/fuzz.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/MemoryFiles.h"
#include "text/unicode.h"

namespace {

std::string titlesIn(const std::string& index, std::size_t bytesPerRead) {
    MemoryFiles disk;
    disk.write("/codex/session_index.jsonl", index);
    disk.bytesPerRead = bytesPerRead;
    const ManualClock clock;
    std::string titles;
    for (const auto& [id, title] : ORVCodexSessionSource(disk, clock, "/codex").threadTitles()) {
        fuzz::expect("both are text", text::isValidUTF8(id) && text::isValidUTF8(title));
        fuzz::expect("neither is empty", !id.empty() && !title.empty());
        titles += id + '\t' + title + '\n';
    }
    return titles;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string index = fuzz::text(data, size);
    const std::string titles = titlesIn(index, size);
    fuzz::expectEqual("reads may be short", titles, titlesIn(index, 1 + size % 97));
    fuzz::expectEqual("the last title counts", titles, titlesIn(index + '\n' + index, 9'999));
    fuzz::expectEqual("an empty line is none", titles, titlesIn(index + "\r\n\u2028", 9'999));
    return 0;
}
