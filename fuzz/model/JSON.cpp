#include "fuzz/model/JSON.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "fuzz/model/text.h"

namespace model {
namespace {

constexpr int kMaxDepth = 512;

/// Each function reads one thing from the front of the rest; false where it does not stand there.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool document(JSON& value) {
        skipSpace();
        if (!readValue(value, 1)) {
            return false;
        }
        skipSpace();
        return rest_.empty();
    }

private:
    bool take(std::string_view token) {
        const bool stands = rest_.starts_with(token);
        rest_.remove_prefix(stands ? token.size() : 0);
        return stands;
    }

    void skipSpace() {
        while (take(" ") || take("\t") || take("\n") || take("\r")) {
        }
    }

    bool readValue(JSON& value, int depth) {
        if (rest_.starts_with('{')) {
            value.kind = JSON::Kind::object;
            return depth <= kMaxDepth && readObject(value, depth);
        }
        if (rest_.starts_with('[')) {
            value.kind = JSON::Kind::array;
            return depth <= kMaxDepth && readArray(depth);
        }
        if (rest_.starts_with('"')) {
            value.kind = JSON::Kind::string;
            return readString(value.text);
        }
        if (take("true") || take("false")) {
            value.kind = JSON::Kind::boolean;
            return true;
        }
        value.kind = take("null") ? JSON::Kind::null : JSON::Kind::number;
        return value.kind == JSON::Kind::null || readNumber(value.text);
    }

    bool readObject(JSON& value, int depth) {
        take("{");
        skipSpace();
        if (take("}")) {
            return true;
        }
        do {
            skipSpace();
            if (!readString(value.keys.emplace_back())) {
                return false;
            }
            skipSpace();
            if (!take(":")) {
                return false;
            }
            skipSpace();
            if (!readValue(value.values.emplace_back(), depth + 1)) {
                return false;
            }
            skipSpace();
        } while (take(","));
        return take("}");
    }

    bool readArray(int depth) {
        take("[");
        skipSpace();
        if (take("]")) {
            return true;
        }
        do {
            JSON ignored;
            skipSpace();
            if (!readValue(ignored, depth + 1)) {
                return false;
            }
            skipSpace();
        } while (take(","));
        return take("]");
    }

    bool readDigits(std::string& literal) {
        const std::size_t before = literal.size();
        while (!rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9') {
            literal += rest_.front();
            rest_.remove_prefix(1);
        }
        return literal.size() > before;
    }

    bool readNumber(std::string& literal) {
        literal = take("-") ? "-" : "";
        if (take("0")) {
            literal += '0';
        } else if (!readDigits(literal)) {
            return false;
        }
        if (take(".")) {
            literal += '.';
            if (!readDigits(literal)) {
                return false;
            }
        }
        if (take("e") || take("E")) {
            literal += take("-") ? "e-" : "e";
            if (!literal.ends_with('-')) {
                take("+");
            }
            return readDigits(literal);
        }
        return true;
    }

    bool readString(std::string& text) {
        if (!take("\"")) {
            return false;
        }
        while (!take("\"")) {
            if (rest_.empty() || static_cast<unsigned char>(rest_.front()) < 0x20) {
                return false;
            }
            if (take("\\")) {
                if (!readEscape(text)) {
                    return false;
                }
            } else {
                text += rest_.front();
                rest_.remove_prefix(1);
            }
        }
        return true;
    }

    bool readEscape(std::string& text) {
        static constexpr std::string_view kNames = "\"\\/bfnrt";
        static constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
        if (take("u")) {
            return readCharacter(text);
        }
        const std::size_t name = rest_.empty() ? std::string_view::npos : kNames.find(rest_[0]);
        if (name == std::string_view::npos) {
            return false;
        }
        text += kMeanings[name];
        rest_.remove_prefix(1);
        return true;
    }

    bool readUnit(unsigned& unit) {
        const std::string digits(rest_.substr(0, 4));
        const bool areDigits =
            digits.size() == 4 &&
            digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        if (areDigits) {
            unit = static_cast<unsigned>(std::strtoul(digits.c_str(), nullptr, 16));
            rest_.remove_prefix(4);
        }
        return areDigits;
    }

    bool readCharacter(std::string& text) {
        unsigned character = 0;
        if (!readUnit(character)) {
            return false;
        }
        if (character >= 0xD800 && character <= 0xDFFF) {
            unsigned low = 0;
            const bool isPair = character <= 0xDBFF && take("\\u") && readUnit(low) &&
                                low >= 0xDC00 && low <= 0xDFFF;
            if (!isPair) {
                return false;
            }
            character = 0x10000 + ((character - 0xD800) << 10U) + (low - 0xDC00);
        }
        appendUTF8(character, text);
        return true;
    }

    static void appendUTF8(unsigned character, std::string& text) {
        const auto append = [&](unsigned byte) { text += static_cast<char>(byte); };
        if (character < 0x80) {
            append(character);
            return;
        }
        if (character < 0x800) {
            append(0xC0 | character >> 6U);
        } else {
            if (character < 0x10000) {
                append(0xE0 | character >> 12U);
            } else {
                append(0xF0 | character >> 18U);
                append(0x80 | (character >> 12U & 0x3FU));
            }
            append(0x80 | (character >> 6U & 0x3FU));
        }
        append(0x80 | (character & 0x3FU));
    }

    std::string_view rest_;
};

}  // namespace

std::optional<JSON> JSON::object(std::string_view text) {
    JSON value;
    if (!isUTF8(text) || !Reader(text).document(value) || value.kind != Kind::object) {
        return std::nullopt;
    }
    return value;
}

const JSON* JSON::member(std::string_view key) const {
    const auto found = std::find(keys.rbegin(), keys.rend(), key);
    return found == keys.rend() ? nullptr
                                : &values[static_cast<std::size_t>(keys.rend() - found) - 1];
}

const JSON* JSON::member(std::string_view key, Kind wanted) const {
    const JSON* found = member(key);
    return found && found->kind == wanted ? found : nullptr;
}

std::string JSON::stringMember(std::string_view key) const {
    const JSON* found = member(key, Kind::string);
    return found ? found->text : "";
}

std::optional<std::uint64_t> JSON::wholeNumber() const {
    constexpr std::uint64_t kLargest = std::uint64_t{1} << 63U;
    if (kind != Kind::number) {
        return std::nullopt;
    }
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        errno = 0;
        const std::uint64_t value = std::strtoull(text.c_str(), nullptr, 10);
        return errno == 0 && value <= kLargest ? std::optional(value) : std::nullopt;
    }
    const double value = std::strtod(text.c_str(), nullptr);
    if (!(value >= 0 && value <= static_cast<double>(kLargest)) || std::floor(value) != value) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(value);
}

}  // namespace model
