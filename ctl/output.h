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

inline constexpr int kAnswered = 0;
inline constexpr int kNothingToShow = 1;  ///< Also when something cannot be read or written.
inline constexpr int kUsageError = 2;

/// Writes the answer. Returns `status` if that succeeds, kAnswered if the reader has closed its
/// end, which is no failure, and kNothingToShow if writing fails.
int finish(std::string_view answer, int status);

/// Writes "brimletctl: " and the text as a line to standard error, without control characters. A
/// long line is cut, and the line is dropped if writing would have to wait: the figures are more
/// important. Where there is no memory for it, the line says that instead.
void complain(std::string_view text);

/// Does the same without the program's name, for the lines after a complaint.
void note(std::string_view text);

/// Writes what was not understood, and how to get help, to standard error.
void explainMistake(const Mistake& mistake);

}  // namespace ctl
