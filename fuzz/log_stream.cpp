// Log files that grow piece by piece, one after the other, amount to the same as all of them read
// at once. In the input a zero byte stands for a refresh and a byte 1 for the next file.

#include <algorithm>
#include <utility>

#include "focus/ORVCodexFocusLogSource.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/answers.h"
#include "fuzz/expect.h"
#include "fuzz/model/FocusModel.h"
#include "fuzz/model/text.h"

namespace {

/// Log files, and a source that follows them.
class Follower {
public:
    explicit Follower(std::size_t bytesPerRead) { files_.bytesPerRead = bytesPerRead; }

    void append(int file, const std::string& piece) {
        files_.now = {file, 0};
        files_.append("/logs/" + std::to_string(file) + ".log", piece);
    }

    std::string refresh() { return fuzz::described(source_.currentFocusStateWithError(nullptr)); }

private:
    MemoryFiles files_;
    ORVCodexFocusLogSource source_{files_, "/logs", "/Info.plist"};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLimitBytes = 16 * 1024;
    constexpr std::size_t kLimitRefreshes = 32;
    constexpr int kLimitFiles = 8;
    std::string input(reinterpret_cast<const char*>(data), std::min(size, kLimitBytes));
    Follower whole(kLimitBytes);
    Follower pieces(1 + size % 97);
    model::LinesRead lines;
    std::size_t refreshes = 0;
    for (int file = 0; file < kLimitFiles && !input.empty(); ++file) {
        std::string all;
        std::string piece;
        const std::string grown = input.substr(0, input.find('\1'));
        input.erase(0, grown.size() + 1);
        for (const char c : grown + '\0') {
            if (c != 0) {
                piece += c;
                all += c;
            } else if (++refreshes < kLimitRefreshes) {
                pieces.append(file, std::exchange(piece, ""));
                pieces.refresh();
            }
        }
        pieces.append(file, piece);
        pieces.refresh();
        whole.append(file, all);
        for (const std::string& line : model::completeLines(all)) {
            lines.emplace_back(file, line);
        }
    }
    const std::string expected = lines.empty() ? whole.refresh() : model::focusAfter(lines);
    fuzz::expectEqual(expected, whole.refresh(), "at once");
    fuzz::expectEqual(expected, pieces.refresh(), "in pieces");
    return 0;
}
