#pragma once

#include <functional>
#include <string>

#include "platform/posix_run_loop.h"

/// Reads commands, one a line, from a descriptor; each is handed over in a turn of its own. The end
/// of the input ends the commands and nothing else. UI thread only.
class ORVCommandInput {
public:
    /// The loop must outlive the input, and the input the turns that it posted.
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
    bool lineIsTooLong_ = false;  ///< Its beginning is kept; what follows is dropped.
};
