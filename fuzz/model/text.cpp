#include "fuzz/model/text.h"

#include <algorithm>

namespace model {
namespace {

unsigned byteAt(std::string_view bytes, std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0;
}

/// The length of the character at the beginning of the bytes; 0 when none stands there.
std::size_t characterLength(std::string_view bytes) {
    const unsigned lead = byteAt(bytes, 0);
    if (lead < 0x80) {
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    unsigned value = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(bytes, i) & 0xC0U) != 0x80) {
            return 0;
        }
        value = value << 6U | (byteAt(bytes, i) & 0x3FU);
    }
    const unsigned least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    const bool isCharacter =
        lead >= 0xC2 && lead <= 0xF4 && value >= least[length] && value <= 0x10FFFF;
    return isCharacter && !isSurrogate ? length : 0;
}

/// The length of the first of the parts with which the text begins; 0 for none.
template <std::size_t Count>
std::size_t beginsWith(std::string_view text, const std::string_view (&parts)[Count]) {
    for (const std::string_view part : parts) {
        if (text.starts_with(part)) {
            return part.size();
        }
    }
    return 0;
}

}  // namespace

bool isUTF8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

bool contains(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end()) != text.end() ||
           part.empty();
}

std::string lowerCased(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return result;
}

std::vector<std::string> completeLines(std::string_view bytes) {
    std::vector<std::string> lines;
    std::string line;
    for (const char c : bytes) {
        if (c == '\n') {
            lines.push_back(line);
            line.clear();
        } else {
            line += c;
        }
    }
    return lines;
}

std::vector<std::string> textLines(std::string_view text) {
    static constexpr std::string_view kEnds[] = {"\r\n",     "\n",           "\r",
                                                 "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};
    std::vector<std::string> lines(1);
    while (!text.empty()) {
        if (const std::size_t length = beginsWith(text, kEnds)) {
            lines.emplace_back();
            text.remove_prefix(length);
        } else {
            lines.back() += text.front();
            text.remove_prefix(1);
        }
    }
    return lines;
}

std::string firstWord(std::string_view text) {
    static constexpr std::string_view kSpaces[] = {" ",
                                                   "\t",
                                                   "\xC2\xA0",
                                                   "\xE1\x9A\x80",
                                                   "\xE2\x80\x80",
                                                   "\xE2\x80\x81",
                                                   "\xE2\x80\x82",
                                                   "\xE2\x80\x83",
                                                   "\xE2\x80\x84",
                                                   "\xE2\x80\x85",
                                                   "\xE2\x80\x86",
                                                   "\xE2\x80\x87",
                                                   "\xE2\x80\x88",
                                                   "\xE2\x80\x89",
                                                   "\xE2\x80\x8A",
                                                   "\xE2\x80\xAF",
                                                   "\xE2\x81\x9F",
                                                   "\xE3\x80\x80"};
    std::string word;
    while (!text.empty() && beginsWith(text, kSpaces) == 0) {
        word += text.front();
        text.remove_prefix(1);
    }
    return word;
}

bool isThreadID(std::string_view text) {
    std::string form;
    for (const char c : lowerCased(text)) {
        form += (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') ? 'x' : c;
    }
    return form == "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" && !contains(lowerCased(text), "x");
}

std::string fileName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string folder(std::string_view path) {
    return std::string(path.substr(0, path.rfind('/')));
}

std::string extension(std::string_view path) {
    const std::string name = fileName(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : lowerCased(name.substr(dot + 1));
}

}  // namespace model
