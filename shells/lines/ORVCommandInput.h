#pragma once

#include <functional>
#include <string>

#include "platform/posix_run_loop.h"

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
