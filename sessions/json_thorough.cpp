// The thorough parser: Boost.JSON's event parser with a handler that keeps the wanted fields. It
// holds nothing of the line but those.

#include <algorithm>
#include <boost/json/basic_parser_impl.hpp>
#include <cstddef>
#include <vector>

#include "sessions/json_object.h"

namespace {

using boost::json::error_code;
using boost::json::string_view;
using Kind = ORVJSONValue::Kind;

/// Follows the parser's events. An object is open in `open_` while it is the root or a wanted
/// field of the one before; containers that nobody wants are only counted.
class WantedFieldsHandler {
public:
    static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
    static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

    explicit WantedFieldsHandler(const ORVJSONShape& shape) : nextShape_(&shape), next_(&root_) {}

    ORVJSONValue takeRoot() { return std::move(root_); }

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }

    bool on_object_begin(error_code&) {
        if (next_) {
            next_->kind = Kind::object;
            open_.push_back({nextShape_, next_});
            next_ = nullptr;
        } else {
            ++unwantedDepth_;
        }
        return true;
    }
    bool on_object_end(std::size_t, error_code&) {
        if (unwantedDepth_ > 0) {
            --unwantedDepth_;
        } else {
            open_.pop_back();
        }
        return true;
    }
    bool on_array_begin(error_code&) {
        takeKind(Kind::array);
        ++unwantedDepth_;
        return true;
    }
    bool on_array_end(std::size_t, error_code&) {
        --unwantedDepth_;
        return true;
    }

    bool on_key_part(string_view part, std::size_t, error_code&) {
        appendToKey(part);
        return true;
    }
    bool on_key(string_view part, std::size_t, error_code&) {
        appendToKey(part);
        if (unwantedDepth_ == 0) {
            const Open& parent = open_.back();
            nextShape_ = sessions::wantedField(*parent.shape, key_);
            next_ = nextShape_ ? &sessions::addMember(*parent.object, *nextShape_) : nullptr;
        }
        key_.clear();
        return true;
    }

    bool on_string_part(string_view part, std::size_t, error_code&) {
        appendToText(part);
        return true;
    }
    bool on_string(string_view part, std::size_t, error_code&) {
        appendToText(part);
        takeKind(Kind::string);
        return true;
    }

    bool on_number_part(string_view part, error_code&) {
        appendToLiteral(part);
        return true;
    }
    bool on_int64(std::int64_t, string_view part, error_code&) { return takeNumber(part); }
    bool on_uint64(std::uint64_t, string_view part, error_code&) { return takeNumber(part); }
    bool on_double(double, string_view part, error_code&) { return takeNumber(part); }

    bool on_bool(bool, error_code&) {
        takeKind(Kind::boolean);
        return true;
    }
    bool on_null(error_code&) {
        takeKind(Kind::null);
        return true;
    }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }

private:
    struct Open {
        const ORVJSONShape* shape;
        ORVJSONValue* object;
    };

    void takeKind(Kind kind) {
        if (next_) {
            next_->kind = kind;
            next_ = nullptr;
        }
    }
    void appendToKey(string_view part) {
        if (unwantedDepth_ == 0) {
            key_.append(part.data(), part.size());
        }
    }
    void appendToText(string_view part) {
        if (next_ && nextShape_->keepsText) {
            next_->text.append(part.data(), part.size());
        }
    }
    void appendToLiteral(string_view part) {
        if (next_) {
            literal_.append(part.data(), part.size());
        }
    }
    bool takeNumber(string_view part) {
        appendToLiteral(part);
        if (next_) {
            next_->integer = sessions::wholeNumber(literal_);
            literal_.clear();
        }
        takeKind(Kind::number);
        return true;
    }

    ORVJSONValue root_;
    std::vector<Open> open_;
    std::size_t unwantedDepth_ = 0;
    const ORVJSONShape* nextShape_;
    ORVJSONValue* next_;  ///< Where the next value goes; null when it is not wanted.
    std::string key_;
    std::string literal_;
};

/// Boost.JSON refuses an exponent that does not fit into an int, though any is standard JSON.
/// Exponents are therefore cut to this many digits, which changes no double: what has more digits
/// is infinite or zero either way.
constexpr std::size_t kExponentDigits = 8;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The next run of digits of an exponent that is too long: digits of a text outside its strings
/// that follow an e, E, e+ or e-.
struct LongExponent {
    std::size_t digits;  ///< Position of its first digit.
    std::size_t end;
};

std::optional<LongExponent> nextLongExponent(std::string_view text, std::size_t& position) {
    bool isInString = false;
    for (; position < text.size(); ++position) {
        const char c = text[position];
        if (isInString && c == '\\') {
            ++position;
        } else if (c == '"') {
            isInString = !isInString;
        } else if (!isInString && (c == 'e' || c == 'E')) {
            std::size_t digits = position + 1;
            if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) {
                ++digits;
            }
            std::size_t end = digits;
            while (end < text.size() && isDigit(text[end])) {
                ++end;
            }
            position = end - 1;
            if (end - digits > kExponentDigits) {
                position = end;
                return LongExponent{digits, end};
            }
        }
    }
    return std::nullopt;
}

}  // namespace

namespace sessions {

std::optional<ORVJSONValue> readObjectThoroughly(std::string_view text, const ORVJSONShape& shape) {
    boost::json::parse_options options;
    options.max_depth = ORVJSONReader::kMaxDepth;
    boost::json::basic_parser<WantedFieldsHandler> parser(options, shape);
    const auto feed = [&](bool more, std::string_view part) {
        error_code failure;
        return parser.write_some(more, part.data(), part.size(), failure) == part.size() &&
               !failure;
    };
    std::size_t fed = 0;
    std::size_t position = 0;
    while (const auto exponent = nextLongExponent(text, position)) {
        // Zeros in front are no digits that count; one must stay where there is nothing else.
        std::size_t firstDigit = exponent->digits;
        while (firstDigit + 1 < exponent->end && text[firstDigit] == '0') {
            ++firstDigit;
        }
        const std::size_t count = std::min(exponent->end - firstDigit, kExponentDigits);
        if (!feed(true, text.substr(fed, exponent->digits - fed)) ||
            !feed(true, text.substr(firstDigit, count))) {
            return std::nullopt;
        }
        fed = exponent->end;
    }
    if (!feed(false, text.substr(fed)) || !parser.done()) {
        return std::nullopt;
    }
    ORVJSONValue root = parser.handler().takeRoot();
    return root.kind == Kind::object ? std::optional(std::move(root)) : std::nullopt;
}

}  // namespace sessions
