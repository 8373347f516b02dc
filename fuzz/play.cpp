// Changes files and brings about faults while long-lived sources follow them; the input's bytes
// decide what happens. When all faults are over, those sources must answer what fresh ones do.
//
// Two things cannot be noticed later and so do not happen here: a file that grows after it was
// shortened in place, with no refresh in between; and a file that is replaced while the file system
// tells no numbers. The latest event of the logs stays even when its file is removed, so every play
// ends with a later one.

#include "fuzz/Reader.h"
#include "fuzz/fuzz.h"
#include "tests/support/records.h"

namespace {

using Fault = MemoryFiles::Fault;

constexpr const char* kLogs[] = {"/h/Library/Logs/com.openai.codex/main.log",
                                 "/h/Library/Logs/com.openai.codex/a/main.log"};
// clang-format off
const std::string kFiles[] = {
    kLogs[0], kLogs[0], kLogs[1], "/codex/sessions/notes.jsonl",
    "/codex/sessions/1/x-" + records::kTask + ".jsonl",
    "/codex/sessions/2/y-" + records::kTask + ".jsonl",
    "/codex/sessions/1/z-" + records::kOther + ".jsonl"};
const std::string kRecords[] = {
    records::tokenCount("0"), records::tokenCount("1000"), records::tokenCount("null"),
    records::compacted("w1"), records::compacted("w2"), records::compacted("w3"),
    records::contextCompacted("t1"), records::contextCompacted(""),
    records::message("to an end"), "{\"type\":\"compacted\"}\n", "\n"};
constexpr const char* kStories[] = {
    "window", "window Focused=false", "window Visible=false", "window Visible=", "window 8/4",
    "window 7/9", "route /local/TASK", "route /local/OTHER", "route 7/9 /", "route /other",
    "route 8/4 /local/TASK", "activity TASK", "activity OTHER", "activity", "both OTHER",
    "both 8/4 TASK"};
constexpr Fault kFaults[] = {
    Fault::error, Fault::unseenFolder, Fault::largerSize, Fault::smallerSize, Fault::noSize,
    Fault::noDate, Fault::shortRead, Fault::earlyEnd};
// clang-format on

class Play {
public:
    explicit Play(std::string choices) : choices_(std::move(choices)) {}

    bool choicesAreLeft() const { return next_ < choices_.size(); }

    void step() {
        path_ = below(4) == 0 ? pick(kFiles) : path_;
        const std::string content = contentOf(path_);
        // After half a line, the first word of this one would not be a time.
        const std::size_t lineStart = content.rfind('\n', below(256) * content.size() / 256) + 1;
        switch (below(16)) {
            case 0:
                disk_.failingCall = 0;
                settle();
                disk_.write(path_, content.substr(0, lineStart));
                unwritten_.clear();
                return (void)follower_.answers();
            case 1:
                return replace(content.substr(lineStart) + content);
            case 2:
                return replace(lines());
            case 3:
                return rename();
            case 4:
                unwritten_.erase(path_);
                return disk_.remove(path_);
            case 5:
                return disk_.append("/codex/session_index.jsonl",
                                    records::title(pick(Reader::kTasks), "name"));
            case 6:
                if (disk_.items().contains(path_)) {
                    disk_.setDate(path_, static_cast<std::int64_t>(below(3)));
                }
                return;
            case 7:
                clock_.time += std::chrono::seconds(below(2) == 0 ? 5 : -7);
                latest_ = std::max(latest_, clock_.time);
                return;
            case 8:
            case 9:
                disk_.fault = pick(kFaults);
                disk_.failingCall = disk_.calls + 1 + static_cast<int>(below(64));
                return;
            case 10:
                return settle();
            case 11:
                return (void)follower_.answers();
            default:
                return extend();
        }
    }

    /// Ends all faults, completes half lines, and compares the answers of both readers.
    void settle() {
        disk_.failingCall = 0;
        clock_.time = latest_ += std::chrono::seconds(10);  // A search is kept for ten seconds.
        disk_.append("/codex/session_index.jsonl", "\n");
        std::string story = "activity TASK";
        for (std::size_t i = below(4) + 1; i > 0; --i) {
            const std::string time = 'A' + std::to_string(1'000'000 + ++lines_) + ' ';
            disk_.append(pick(kLogs), '\n' + records::log(time + story));
            story = pick(kStories);
        }
        unwritten_.clear();
        fuzz::expectEqual("who followed says what a fresh reader says",
                          Reader(disk_, clock_).answers(), follower_.answers());
    }

private:
    /// Returns a number from 0 to bound - 1; the bound is at most 256.
    std::size_t below(std::size_t bound) {
        return choicesAreLeft() ? static_cast<unsigned char>(choices_[next_++]) % bound : 0;
    }

    template <typename T, std::size_t Count>
    const T& pick(const T (&table)[Count]) {
        return table[below(Count)];
    }

    std::string contentOf(const std::string& path) const {
        const auto found = disk_.items().find(path);
        return found == disk_.items().end() ? "" : found->second.content;
    }

    std::string lines() {
        std::string text;
        for (std::size_t i = below(4) + 1; i > 0; --i) {
            text += path_.starts_with("/h/Library/Logs/com.openai.codex")
                        ? records::log(std::to_string(below(9)) + ' ' + pick(kStories))
                        : pick(kRecords);
        }
        return text;
    }

    /// Appends lines, or a part of them, or the rest of lines that were begun.
    void extend() {
        std::string& rest = unwritten_[path_];
        rest += rest.empty() ? lines() : "";
        const std::size_t lengths[] = {rest.size(), rest.size(), rest.size() - 1, below(200)};
        const std::size_t length = pick(lengths);
        disk_.append(path_, rest.substr(0, length));
        rest.erase(0, length);
    }

    void replace(const std::string& content) {
        constexpr std::size_t kLimitBytes = 8192;
        if (content.size() < kLimitBytes) {
            unwritten_.erase(path_);
            disk_.replace(path_, content);
        }
    }

    /// Moves a file to a new path: no path ever gets the same file again.
    void rename() {
        if (!disk_.items().contains(path_)) {
            return;
        }
        const bool isLog = path_.starts_with("/h/Library/Logs/com.openai.codex");
        const std::string path =
            (isLog ? "/h/Library/Logs/com.openai.codex/" : "/codex/sessions/3/") +
            std::to_string(++lines_) + (isLog ? ".log" : "-" + records::kTask + ".jsonl");
        unwritten_.erase(path_);
        disk_.rename(path_, path);
        path_ = path;
    }

    const std::string choices_;  ///< Each byte makes one choice.
    std::size_t next_ = 0;
    MemoryFiles disk_;
    ManualClock clock_;
    ManualClock::TimePoint latest_ = clock_.time;
    Reader follower_{disk_, clock_};
    std::string path_ = kFiles[0];
    std::map<std::string, std::string> unwritten_;  ///< The rest of the lines that were begun.
    int lines_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kLimitSteps = 100;
    Play play(fuzz::text(data, size));
    for (int i = 0; i < kLimitSteps && play.choicesAreLeft(); ++i) {
        play.step();
    }
    play.settle();
    return 0;
}
