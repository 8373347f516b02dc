#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "bench/Random.h"
#include "bench/WrittenFiles.h"

/// Writes the desktop application's logs: lines of every kind, rotated, shortened, replaced and
/// deleted all the time. Every line has a later time stamp than the ones before it.
///
/// No reader may meet the rest of a line where it expects a line: what stands first there is a time
/// stamp, which may be later than all that follow. So a log is shortened to whole lines, and not
/// written again before the readers have seen it short.
class LogsWriter {
public:
    LogsWriter(WrittenFiles& files, Random& random, std::string folder);

    void step();

    /// What the window in view shows from here on, as the application names it: "/local/" and a
    /// task, or "/" for a task that is yet to begin.
    void setRouteInView(const std::string& path) { routeInView_ = path; }

    /// Ends every line. The last line is about the window in view, so whatever a reader knew of
    /// files that are gone, nothing is newer. Every reader must have looked before the next step.
    void settle();

private:
    void changeLog();
    void shorten(WrittenFile& log);
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
