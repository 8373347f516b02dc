#pragma once

#include <functional>
#include <string>

#include "platform/posix_run_loop.h"

/// Writes the latest line to a descriptor and never waits for its reader.
///
/// While a reader is slow, lines are left out, never the latest and never a piece of one: at most
/// one line is under way and one waits. UI thread only.
class ORVLineOutput {
public:
    /// `ended` is called once, when no more can be written: with 0 when the reader left, else with the
    /// errno. The loop must outlive the output.
    ORVLineOutput(ORVPosixRunLoop& loop, int descriptor, std::function<void(int)> ended);
    ~ORVLineOutput();
    ORVLineOutput(const ORVLineOutput&) = delete;
    ORVLineOutput& operator=(const ORVLineOutput&) = delete;

    /// Writes the line, without its line feed, unless it is the one shown last.
    void show(const std::string& line);

    /// Waits a moment for a line under way to be taken.
    void flush();

private:
    void writeWhatFits();
    void watchForMore();
    bool hasMore() const { return !underWay_.empty() || waiting_ != shown_; }

    ORVPosixRunLoop& loop_;
    const int descriptor_;
    const std::function<void(int)> ended_;
    std::string shown_;     ///< The line written last, or under way.
    std::string waiting_;   ///< The latest; equal to shown_ when nothing waits.
    std::string underWay_;  ///< What is left of a line that was begun.
    bool hasEnded_ = false;
};
