// The account's rate limits, which every task's token counts repeat: what the newest of some files
// says. Tests: tests/sessions/agent_facts_test.cpp.

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "sessions/ORVCodexSessionSource.h"
#include "text/timestamps.h"

namespace {

/// The first look at a file's end, and how many times as much each further look reads, because the
/// last rate limits usually stand in the last bytes. A file without any is read 1.14 times.
constexpr std::uint64_t kFirstLookBytes = 256 * 1024;
constexpr std::uint64_t kGrowth = 8;

std::optional<ORVFileDate> dateOf(std::string_view timestamp) {
    const auto time = text::timeOf(timestamp);
    return time ? std::optional(
                      ORVFileDate{time->time_since_epoch().count(), text::nanosecondsOf(timestamp)})
                : std::nullopt;
}

/// Whether a file is older than the longest window of its rate limits, which say nothing then.
bool isOutdated(const std::vector<ORVRateLimit>& limits, ORVFileDate date,
                ORVClock::TimePoint now) {
    constexpr double kSecondsInAMinute = 60;
    std::optional<std::int64_t> longest;
    for (const ORVRateLimit& limit : limits) {
        longest = std::max(longest, limit.minutes);  // None is less than any number.
    }
    // In doubles, because an inode may hold any number of seconds.
    const double age = std::chrono::duration<double>(now.time_since_epoch()).count() -
                       static_cast<double>(date.seconds) - 1e-9 * date.nanoseconds;
    return longest && age > static_cast<double>(*longest) * kSecondsInAMinute;
}

}  // namespace

std::optional<ORVRecordedFacts> ORVSessionReader::lastRateLimits(const ORVWalkedFile& file,
                                                                 ORVReadingMemory& memory,
                                                                 ORVErrorSlot* error) const {
    ORVRecordedFacts found;
    std::uint64_t length = kFirstLookBytes;
    while (true) {
        length = std::min(length, file.size);
        ORVFollowedFile tail;
        tail.offset = file.size - length;
        tail.isPassingOverLine = tail.offset > 0;  // The look may begin within a line.
        const auto result = follower_.readOn(
            tail, file.path, file.size, memory, {},
            [&](auto lines) { takeFacts(lines, found, memory.json); }, error);
        if (result == ORVFileFollower::Result::failed) {
            return std::nullopt;
        }
        if (!found.facts.rateLimits.empty() || length == file.size) {
            return found;
        }
        length = length > file.size / kGrowth ? file.size : length * kGrowth;
    }
}

std::optional<ORVAccountLimits> ORVCodexSessionSource::accountLimits(
    std::vector<const ORVWalkedFile*> files, std::vector<ORVUnreadable>* unreadable) const {
    constexpr std::size_t kMostFiles = 20;
    const std::size_t count = std::min(kMostFiles, files.size());
    std::partial_sort(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(count),
                      files.end(), [](const ORVWalkedFile* a, const ORVWalkedFile* b) {
                          return std::tie(b->modifiedAt, a->path) <
                                 std::tie(a->modifiedAt, b->path);
                      });
    files.resize(count);
    ORVReadingMemory memory;
    std::optional<ORVAccountLimits> best;
    for (const ORVWalkedFile* const file : files) {
        ORVErrorSlot error;
        auto found = reader_.lastRateLimits(*file, memory, &error);
        if (!found && error->code != ENOENT) {
            unreadable->push_back({file->path, std::move(*error)});
        }
        if (!found || found->facts.rateLimits.empty() ||
            isOutdated(found->facts.rateLimits, file->modifiedAt, clock_.now())) {
            continue;
        }
        const ORVFileDate date = dateOf(found->rateLimitsAt).value_or(file->modifiedAt);
        if (!best || date > best->date) {
            best = {std::move(found->facts.rateLimits), std::move(found->rateLimitsAt), date};
        }
    }
    return best;
}
