// A session file that grows piece by piece amounts to the same as the whole file read at once. In
// the input a zero byte stands for a refresh; the rest is the file.

#include <algorithm>
#include <utility>

#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/answers.h"
#include "fuzz/expect.h"
#include "fuzz/model/SessionModel.h"
#include "fuzz/model/text.h"
#include "sessions/ORVCodexSessionSource.h"

namespace {

constexpr const char* kFile = "/codex/sessions/a.jsonl";

/// A session file and a source that follows it.
class Follower {
public:
    explicit Follower(std::size_t bytesPerRead) { files_.bytesPerRead = bytesPerRead; }

    void append(const std::string& piece) { files_.append(kFile, piece); }

    void refresh() {
        if (const MemoryFiles::Item* item = files_.find(kFile)) {
            const bool isRead = source_.updateState(state, kFile, item->size(), nullptr);
            fuzz::expect(isRead && state.offset == item->size(), "all of the file is read");
            fuzz::expect(state.pendingScanOffset == state.pendingData.size(), "all is searched");
        }
    }

    ORVSessionParseState state;

private:
    MemoryFiles files_;
    ManualClock clock_;
    ORVCodexSessionSource source_{files_, clock_, "/codex"};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 16 * 1024;
    constexpr std::size_t kLimitRefreshes = 64;
    const std::string input(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    Follower whole(kLimitBytes);
    Follower pieces(1 + size % 97);
    std::string piece;
    std::string all;
    std::size_t refreshes = 0;
    for (const char c : input) {
        if (c != 0) {
            piece += c;
        } else if (++refreshes < kLimitRefreshes) {
            pieces.append(piece);
            pieces.refresh();
            all += std::exchange(piece, "");
        }
    }
    pieces.append(piece);
    pieces.refresh();
    all += piece;
    whole.append(all);
    whole.refresh();
    model::Figures figures;
    for (const std::string& line : model::completeLines(all)) {
        figures.read(line);
    }
    fuzz::expectEqual(model::described(figures), fuzz::described(whole.state), "at once");
    fuzz::expectEqual(model::described(figures), fuzz::described(pieces.state), "in pieces");
    fuzz::expectEqual(std::string(whole.state.pendingData.bytes()),
                      std::string(pieces.state.pendingData.bytes()), "what waits");
    return 0;
}
