// Files that grow piece by piece must give the figures of the whole. The input is a session file
// and a log; a zero byte in it stands for a refresh.

#include "fuzz/Reader.h"
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes = fuzz::text(data, size);
    MemoryFiles disk;
    const ManualClock clock;
    Reader follower(disk, clock);
    disk.bytesPerRead = 1 + size % 97;
    for (int looks = 0; looks < 32 && !bytes.empty(); ++looks) {
        const std::size_t length = looks == 31 ? bytes.size() : bytes.find('\0');
        for (const char* path :
             {"/codex/sessions/notes.jsonl", "/h/Library/Logs/com.openai.codex/main.log"}) {
            disk.append(path, bytes.substr(0, length));
        }
        (void)follower.answers();
        bytes.erase(0, std::max(length, length + 1));
    }
    disk.bytesPerRead = disk.items().empty() ? 1 : size;
    fuzz::expectEqual("pieces say what the whole says", Reader(disk, clock).answers(),
                      follower.answers());
    return 0;
}
