#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/Random.h"
#include "bench/WrittenFiles.h"

/// Writes the session files of some tasks and the title index, as no agent would: everything that
/// may happen to such a file happens all the time. The files keep to a fixed set of paths.
class SessionsWriter {
public:
    SessionsWriter(WrittenFiles& files, Random& random, std::string codexHome);

    /// Does one thing to one file, more often to one of this task.
    void step(std::size_t taskInView);

    /// Ends every line and replaces every file that a reader may have misread, so that there is one
    /// right answer about each task.
    void settle();

    const std::vector<std::string>& tasks() const { return tasks_; }

private:
    void changeFile(WrittenFile& file);
    void appendRecord(WrittenFile& file);
    std::string record();
    std::string message();
    std::string compaction();
    std::string someRecords();
    void writeTitles();
    std::string titles();

    WrittenFiles& files_;
    Random& random_;
    const std::string filler_;
    std::vector<std::string> tasks_;
    std::vector<WrittenFile> sessions_;  ///< All files of the first task, all of the second, …
    WrittenFile titleIndex_;
    std::uint64_t lastNumber_ = 0;
};
