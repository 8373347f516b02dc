#pragma once

#include <string_view>

#include "ctl/arguments.h"

/// Standard output of brimletctl: unbuffered, so that whoever reads it has every answer at once.
namespace ctl {

enum class WriteResult {
    written,
    readerLeft,  ///< The other end of the pipe was closed: a wish to stop, no failure.
    failed,      ///< Told on standard error.
};

/// Puts something in the place of standard descriptors that were closed when the program began, so
/// that nothing else gets their numbers. Writing to a standard output that was closed still fails.
void holdStandardDescriptors();

/// Writes all of the bytes. Expects SIGPIPE to be ignored.
WriteResult writeOutput(std::string_view bytes);

/// "brimletctl: " and the text, as a line on standard error; control characters made harmless.
/// The line is dropped where writing would have to wait: the figures matter more.
void complain(std::string_view text);

/// What was not understood, and where to find help: two lines on standard error.
void explainMistake(const Mistake& mistake);

}  // namespace ctl
