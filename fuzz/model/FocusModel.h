#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/MemoryFiles.h"

namespace model {

/// The lines that were read, in the order of reading, each with the reading that it belongs to: the
/// windows of one reading of a file are not those of another.
using LinesRead = std::vector<std::pair<int, std::string>>;

/// The focus status, and for a task in view its identifier, after these lines: "0 <identifier>",
/// "1", "3" or "4".
std::string focusAfter(const LinesRead& lines);

/// Answers as the focus source must, slowly: thinks through every line ever read at every question.
/// It keeps those lines, because an event outlives its file, and which bytes of a file they were.
class FocusModel {
public:
    FocusModel(MemoryFiles& files, std::string logs) : files_(files), logs_(std::move(logs)) {}

    /// Like focusAfter; "2" without a log. An error as "domain code" where the source would put it.
    std::string focus(std::string& error);

private:
    struct Reading {
        int number = 0;
        std::string bytes;
        std::optional<std::uint64_t> fileNumber;
    };

    std::vector<std::string> walkedFiles(std::string& error);
    void lookAt(const std::string& path, std::string& error);
    void readMore(Reading& reading, const MemoryFiles::Item& item, std::string& error);

    MemoryFiles& files_;
    const std::string logs_;
    std::map<std::string, Reading> readings_;
    int readingsBegun_ = 0;
    LinesRead lines_;
};

}  // namespace model
