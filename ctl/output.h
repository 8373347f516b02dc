#pragma once

#include <string_view>

#include "ctl/arguments.h"

/// Writes to standard output and standard error, without a buffer, so that every answer arrives at
/// once.
namespace ctl {

enum class WriteResult {
    written,
    readerLeft,  ///< The reader has closed its end. It wants no more; nothing went wrong.
    failed,      ///< The reason was written to standard error.
};

/// Opens something in the place of standard descriptors that were closed when the program began, so
/// that no file gets their numbers. Writing to a standard output that was closed still fails.
void holdStandardDescriptors();

/// Writes all of the bytes. Expects SIGPIPE to be ignored.
WriteResult writeOutput(std::string_view bytes);

/// Writes "brimletctl: " and the text as a line to standard error, without control characters. The
/// line is dropped if writing would have to wait: the figures are more important.
void complain(std::string_view text);

/// Writes what was not understood, and how to get help, to standard error.
void explainMistake(const Mistake& mistake);

}  // namespace ctl
