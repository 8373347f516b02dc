#pragma once

#include <string>
#include <string_view>

#include "shells/terminal/screen.h"

/// Text by the columns that it takes. They are counted as curses counts them, by the C library's
/// table for the process's locale of characters: any other table would break the frames.
namespace terminal {

/// A text from outside as the screen can show it: valid, without controls, and in it only
/// characters whose columns the library knows. The other functions here take such text.
std::string shown(std::string_view text, const Screen& screen);

/// Two for a wide character, none for a combining one.
int textColumns(std::string_view text);

/// The longest beginning of a text that takes at most this many columns.
std::string_view beginning(std::string_view text, int columns);

/// The text in exactly this many columns, cut with an ellipsis or filled with spaces.
std::string fitted(std::string_view text, int columns, const Screen& screen);

/// Nothing for a count below 1.
std::string repeated(std::string_view piece, int count);

}  // namespace terminal
