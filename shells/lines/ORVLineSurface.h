#pragma once

#include <functional>
#include <string>

#include "platform/posix_run_loop.h"
#include "shells/ORVPosixApplication.h"

/// Writes one line, of text or of JSON, whenever that line has changed, and never waits for its
/// reader.
///
/// A slow reader misses lines, but never the latest one and never a part of one: at most one line
/// is half written while one more waits. Used on the UI thread only.
class ORVLineSurface final : public ORVSurface {
public:
    /// `line` returns the line to show at this moment, without a line feed. `ended` is called once,
    /// when nothing more can be written: with 0 when the reader has closed its end, else with the
    /// errno. The loop must outlive the surface.
    ORVLineSurface(ORVPosixRunLoop& loop, int descriptor, std::function<std::string()> line,
                   std::function<void(int)> ended);
    ~ORVLineSurface() override;
    ORVLineSurface(const ORVLineSurface&) = delete;
    ORVLineSurface& operator=(const ORVLineSurface&) = delete;

    void show() override;

    /// Waits a moment for the reader to take what has not been written yet.
    void close() override;

private:
    void writeWhatFits();
    void watchForMore();
    bool hasMore() const { return !underWay_.empty() || waiting_ != shown_; }

    ORVPosixRunLoop& loop_;
    const int descriptor_;
    const std::function<std::string()> line_;
    const std::function<void(int)> ended_;
    std::string shown_;     ///< The last line of which something was written.
    std::string waiting_;   ///< The latest line; equal to shown_ when no line waits.
    std::string underWay_;  ///< The rest of shown_ that has not been written yet.
    bool hasEnded_ = false;
};

/// Reads commands, one a line, from a descriptor and passes each to a function in a turn of the
/// loop. The end of the input ends the commands, not the application. Used on the UI thread only.
class ORVCommandInput {
public:
    /// The loop must outlive the input, and the input every turn that it posted.
    ORVCommandInput(ORVPosixRunLoop& loop, int descriptor,
                    std::function<void(const std::string& line)> command);
    ~ORVCommandInput();
    ORVCommandInput(const ORVCommandInput&) = delete;
    ORVCommandInput& operator=(const ORVCommandInput&) = delete;

private:
    void readMore();
    void handOver(std::string line);

    ORVPosixRunLoop& loop_;
    const int descriptor_;
    const std::function<void(const std::string&)> command_;
    std::string pending_;
    bool lineIsTooLong_ = false;  ///< The rest of the line is dropped.
};
