#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "bench/Random.h"
#include "bench/WrittenFiles.h"

/// Writes the desktop application's logs: lines of every kind, rotated, shortened, replaced and
/// deleted all the time. Every line has a later time stamp than the ones before it.
class LogsWriter {
public:
    LogsWriter(WrittenFiles& files, Random& random, std::string folder);

    void step();

    /// What the window in view shows from here on, as the application names it: "/local/" and a
    /// task, or "/" for a task that is yet to begin.
    void setRouteInView(const std::string& path) { routeInView_ = path; }

    /// As SessionsWriter's. The last line is about the window in view, so whatever a reader knew of
    /// files that are gone, nothing is newer.
    void settle();

private:
    void changeLog();
    void rotate();
    WrittenFile& current() { return logs_.back(); }
    std::string lines();
    std::string line();
    std::string focusLine();
    std::string showLines();
    std::string render(std::uint64_t window, bool isFocused);
    std::string route(std::uint64_t window, const std::string& path);
    std::string timestamp();

    WrittenFiles& files_;
    Random& random_;
    const std::string folder_;
    std::deque<WrittenFile> logs_;  ///< The last is the one that is being written.
    std::string routeInView_ = "/";
    std::uint64_t lastNumber_ = 0;
    std::uint64_t milliseconds_ = 0;
};
