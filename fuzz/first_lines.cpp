// Takes any lines for the first lines of session files, one file a line.

#include "fuzz/fuzz.h"
#include "sessions/ORVTaskList.h"
#include "tests/support/MemoryFiles.h"
#include "text/unicode.h"

namespace {

std::string familiesOf(const std::string& lines, std::size_t bytesPerRead) {
    MemoryFiles disk;
    disk.makeFolder("/s");
    disk.bytesPerRead = bytesPerRead;
    char digit = 'a';
    text::forEachLine(lines, [&](std::string_view line) {
        const std::string path = "/s/0000000a-0000-0000-0000-00000000000" + std::string(1, digit);
        disk.append(path + ".jsonl", std::string(line) + '\n');
        digit = digit == 'f' ? 'a' : static_cast<char>(digit + 1);
    });
    const ManualClock clock;
    ORVTaskList list(disk, clock, "/s");
    list.refresh(nullptr);
    std::string families;
    std::size_t count = 0;
    for (const ORVListedTask& head :
         list.heads({.helpers = ORVTaskList::Wanted::Helpers::counted})) {
        count += 1 + head.helpers;
        families += head.task.threadID + head.firstLine.folder.value_or("") +
                    std::to_string(head.helpers) + '\n';
        const auto own = list.headOfFamily(head.task.threadID, head.task.newestFile().path);
        fuzz::expect("a head is its own", own->task.threadID == head.task.threadID);
    }
    fuzz::expect("each task has a head", list.matching("").size() == count);
    return families;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string lines = fuzz::text(data, size);
    fuzz::expectEqual("reads may be short", familiesOf(lines, 1 + size % 97),
                      familiesOf(lines, std::size_t{1} << 20));
    return 0;
}
