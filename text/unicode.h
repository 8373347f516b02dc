#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

/// Functions for UTF-8 text. Every function takes any bytes; none reports a failure.
namespace text {

bool isValidUTF8(std::string_view bytes);

/// One character, or bytes that are none.
struct Character {
    char32_t code = 0;      ///< kNotACharacter for bytes that are not UTF-8.
    std::size_t bytes = 0;  ///< At least 1; of ill-formed bytes, those that one U+FFFD replaces.
};
inline constexpr char32_t kNotACharacter = 0xFFFFFFFF;

/// Returns the first character of a text, which must not be empty.
Character nextCharacter(std::string_view text);

/// Whether `needle` stands anywhere in `text`, letter case disregarded. Bytes that are not UTF-8
/// are equal only to themselves; the letters of such a text are then compared as ASCII.
bool containsIgnoringCase(std::string_view text, std::string_view needle);

/// Returns the position of the first white space of a line at or after `start`, and the text's
/// length when there is none. White space is a tab or a space separator (Unicode category Zs); a
/// line end is not.
std::size_t findWhiteSpace(std::string_view text, std::size_t start = 0);

/// Calls `visit` with each line of a text, without its end: LF, CR, CR LF, U+0085, U+2028 and
/// U+2029 each end a line. What follows the last end is a line, too, unless it is empty.
void forEachLine(std::string_view text, const std::function<void(std::string_view)>& visit);

/// Returns the text with U+FFFD in the place of bytes that are not UTF-8, one for every longest
/// sequence that could have begun a character.
std::string withInvalidBytesReplaced(std::string_view bytes);

/// Does what withInvalidBytesReplaced does, and puts a space in the place of every character that
/// could steer a terminal or the text around it: control characters (C0, DEL, C1), separators of
/// lines and paragraphs, and those that embed, override or isolate a direction.
std::string forTerminal(std::string_view bytes);

/// Returns the text unchanged, or, when it has more than this many characters as a reader counts
/// them, the first ones of it with "…" at the end. A character with very many marks may be left
/// out, so that a text of any size takes little time.
std::string shortened(std::string_view bytes, std::size_t characters);

/// Returns the text with the five characters that have a meaning in XML, HTML and Pango's markup
/// escaped.
std::string escapedForMarkup(std::string_view text);

/// Returns the columns of a character, or of what stands for kNotACharacter.
using WidthOf = int (*)(char32_t code);

/// Returns the width that Unicode gives a character. A terminal may have another table.
int unicodeWidth(char32_t code);

/// Returns the columns that a text takes, and its longest beginning of at most so many columns.
int columnsOf(std::string_view text, WidthOf widthOf = unicodeWidth);
std::string_view beginning(std::string_view text, int columns, WidthOf widthOf = unicodeWidth);

/// Returns a text without the character that its end cuts through.
std::string_view wholeCharacters(std::string_view text);

}  // namespace text
