#pragma once

#include <string>
#include <string_view>

#include "shells/terminal/screen.h"

/// Measures and cuts text by the columns that it takes. The C library's table of widths is used, as
/// curses does: any other table would break the frames.
namespace terminal {

/// Returns a text in the form that the screen can show: valid UTF-8 without control characters and
/// without characters of unknown width. The other functions here expect such text.
std::string shown(std::string_view text, const Screen& screen);

/// Returns the columns of a text: two for a wide character, none for a combining one.
int textColumns(std::string_view text);

/// Returns the longest beginning of a text that takes at most this many columns.
std::string_view beginning(std::string_view text, int columns);

/// Returns the text in exactly this many columns, cut with an ellipsis or filled with spaces.
std::string fitted(std::string_view text, int columns, const Screen& screen);

/// Returns the piece this many times, and "" for a count below 1.
std::string repeated(std::string_view piece, int count);

}  // namespace terminal
