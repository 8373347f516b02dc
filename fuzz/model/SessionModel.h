#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/MemoryFiles.h"
#include "platform/clock.h"

namespace model {

struct JSON;

/// What the records of one session file amount to.
struct Figures {
    bool toldOfCompaction = false;
    int compactionStatus = 0;
    std::set<std::string> compactions;
    std::int64_t namelessCompactions = 0;
    std::optional<std::pair<std::int64_t, std::int64_t>> usage;  ///< Input tokens, window.
    int contextStatus = 1;

    /// Lets one line, whatever it is, change the figures.
    void read(std::string_view line);

private:
    void readCompaction(const std::string& name);
    void readTokenCount(const JSON& payload);
};

/// The figures as text, for comparing.
std::string described(const std::optional<std::pair<std::int64_t, std::int64_t>>& usage,
                      std::int64_t contextStatus, std::int64_t compactions,
                      std::int64_t compactionStatus);

std::string described(const Figures& figures);

/// Answers as the session source must, slowly: reads every file whole whenever it is asked.
///
/// All that it keeps is what the answers depend on and the files no longer tell: which bytes of a
/// file have been read, when a task's files were searched for, and the index that was read last.
/// Errors are told as "domain code" and put where the source would put them; "" for none.
class SessionModel {
public:
    SessionModel(MemoryFiles& files, const ORVClock& clock, std::string home)
        : files_(files), clock_(clock), home_(std::move(home)) {}

    /// Snapshots as text, one property a line; "none" for none.
    std::string latest(std::string& error);
    std::string task(const std::string& threadID, std::string& error);

    /// The index as text: identifier, tab, title, line feed.
    std::string titles();

private:
    struct Reading {
        std::string bytes;
        std::optional<std::uint64_t> fileNumber;
    };
    struct Search {
        std::vector<std::string> paths;
        std::optional<ORVFileDate> folderDate;
        ORVClock::TimePoint at;
    };
    /// What one file says, beside what the task sums up.
    struct FileAnswer {
        std::string title;
        std::string threadID;
        Figures figures;
        ORVFileDate date;
    };

    bool walkedFiles(std::vector<std::pair<std::string, ORVFileDate>>& found, std::string& error);
    std::optional<ORVFileDate> folderDateOf(const std::string& path);
    bool searchIsGood(const Search& search);
    std::vector<std::string> filesOfTask(const std::string& threadID, std::string& error);
    std::optional<FileAnswer> fileAnswer(const std::string& path, std::string& error);
    bool readMore(Reading& reading, const MemoryFiles::Item& item, std::string& error);
    void lookAtIndex();
    std::map<std::string, std::string> titlesByID() const;

    MemoryFiles& files_;
    const ORVClock& clock_;
    const std::string home_;
    std::map<std::string, Reading> readings_;
    std::map<std::string, Search> searches_;
    std::string index_;
    std::optional<ORVFileDate> indexDate_;
};

/// One snapshot as text, for comparing.
std::string described(const std::string& title, const std::string& threadID,
                      const std::string& path, const std::string& figures, ORVFileDate date);

}  // namespace model
