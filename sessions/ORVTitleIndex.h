#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/files.h"

/// The titles of tasks: the file "session_index.jsonl" in the Codex home, to which the agent
/// appends a line at every rename. It is read as a whole, and again only when its date has changed.
class ORVTitleIndex {
public:
    using Titles = std::map<std::string, std::string>;

    /// `files` must outlive the index.
    ORVTitleIndex(ORVFiles& files, const std::string& codexHome)
        : files_(files), path_(codexHome + "/session_index.jsonl") {}

    /// Returns the path of the file, whether or not it exists.
    const std::string& path() const { return path_; }

    /// Reads the file if its date has changed. While it cannot be read, the titles stay. Throws
    /// std::bad_alloc when memory runs out.
    void refreshIfNeeded();

    /// Returns why the last refresh could not read the file; none when it is missing.
    const ORVErrorSlot& error() const { return error_; }

    /// Returns the date of the file that the titles come from; none before one was read.
    const std::optional<ORVFileDate>& modifiedAt() const { return modifiedAt_; }

    /// Returns the titles by thread identifier, as they were at the last refresh.
    const Titles& titles() const { return titles_; }

    /// Returns the task's title, and "Codex" for a task without one.
    std::string titleOf(const std::string& threadID) const;

private:
    std::optional<std::string> readText();
    static Titles titlesIn(std::string text);

    ORVFiles& files_;
    const std::string path_;
    Titles titles_;
    std::optional<ORVFileDate> modifiedAt_;  ///< Of the file when it was last read.
    ORVErrorSlot error_;
};
