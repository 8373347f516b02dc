#pragma once

#include <functional>
#include <string>

#include "platform/posix_run_loop.h"

/// Writes the latest line to a descriptor and never waits for its reader.
///
/// A slow reader misses lines, but never the latest one and never a part of one: at most one line
/// is half written while one more waits. Used on the UI thread only.
class ORVLineOutput {
public:
    /// `ended` is called once, when nothing more can be written: with 0 when the reader has closed
    /// its end, else with the errno. The loop must outlive the output.
    ORVLineOutput(ORVPosixRunLoop& loop, int descriptor, std::function<void(int)> ended);
    ~ORVLineOutput();
    ORVLineOutput(const ORVLineOutput&) = delete;
    ORVLineOutput& operator=(const ORVLineOutput&) = delete;

    /// Writes the line, which is given without its line feed, unless it equals the last one.
    void show(const std::string& line);

    /// Waits a moment for the reader to take what has not been written yet.
    void flush();

private:
    void writeWhatFits();
    void watchForMore();
    bool hasMore() const { return !underWay_.empty() || waiting_ != shown_; }

    ORVPosixRunLoop& loop_;
    const int descriptor_;
    const std::function<void(int)> ended_;
    std::string shown_;     ///< The last line of which something was written.
    std::string waiting_;   ///< The latest line; equal to shown_ when no line waits.
    std::string underWay_;  ///< The rest of shown_ that has not been written yet.
    bool hasEnded_ = false;
};
