#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the model needs to know of text. Everything here goes byte by byte.
namespace model {

bool isUTF8(std::string_view bytes);

bool contains(std::string_view text, std::string_view part);

/// ASCII letters in lower case.
std::string lowerCased(std::string_view text);

/// The complete lines of a file, line feeds cut off; not what follows the last one.
std::vector<std::string> completeLines(std::string_view bytes);

/// The lines of a text, ended by LF, CR, CR LF, U+0085, U+2028, U+2029 or the text's end.
std::vector<std::string> textLines(std::string_view text);

/// What stands before the first tab or space of any kind.
std::string firstWord(std::string_view text);

/// Whether the text is eight hexadecimal digits, then three times four, then twelve, with hyphens.
bool isThreadID(std::string_view text);

std::string fileName(std::string_view path);
std::string folder(std::string_view path);

/// What follows the last dot of a file's name, in lower case; "" without a dot.
std::string extension(std::string_view path);

}  // namespace model
