// Lines of JSON. simdjson checks the bytes and finds where each token begins. The walk here visits
// every token through the library's On-Demand interface and checks it. Most strings are not
// decoded; the library's DOM would copy each, and a compaction repeats the whole conversation. The
// DOM also refuses numbers beyond its own types.
//
// Works alike with simdjson 3.0 and 4.x. Tests: tests/text/json_reading_test.cpp,
// fuzz/session_lines.cpp.

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <new>
#include <string>
#include <system_error>
#include <utility>

#include "text/bytes.h"
#include "text/json.h"

namespace {

/// Makes the library choose among its implementations before main: the choice allocates memory, and
/// ends the program if there is none.
[[maybe_unused]] const bool kHasImplementation =
    !simdjson::get_active_implementation()->name().empty();

static_assert(text::kReadableBytesBeyond >= simdjson::SIMDJSON_PADDING);

/// The parser's buffers are made for lines of this length at the beginning: memory that is never
/// touched costs nothing, and growing would hold the old and the new buffers together. A longer
/// line gets a parser of its own.
constexpr std::size_t kUsualLineBytes = 4 * 1024 * 1024;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

namespace ondemand = simdjson::ondemand;
using Kind = ORVJSONValue::Kind;

/// Takes the value out of one of the library's results; returns false when it holds an error.
template <typename Result, typename Value>
bool get(Result&& result, Value& value) {
    return std::forward<Result>(result).get(value) == simdjson::SUCCESS;
}

const ORVJSONShape* wantedField(const ORVJSONShape& shape, std::string_view key) {
    const auto found = std::find_if(shape.fields.begin(), shape.fields.end(),
                                    [&](const ORVJSONShape& field) { return field.key == key; });
    return found == shape.fields.end() ? nullptr : &*found;
}

/// Adds a wanted field to an object, in the place of an earlier field with the same key; returns
/// null when the field is not wanted. The pointer is valid until the next field is added.
ORVJSONMember* addIfWanted(ORVJSONMember& object, std::string_view key) {
    const ORVJSONShape* const shape = wantedField(*object.shape, key);
    if (!shape) {
        return nullptr;
    }
    for (ORVJSONMember& member : object.value.members) {
        if (member.shape == shape) {
            member.value = ORVJSONValue{};
            return &member;
        }
    }
    ORVJSONMember& member = object.value.members.emplace_back();
    member.shape = shape;
    return &member;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// Whether the whole text is a number in JSON's notation.
bool isNumberLiteral(std::string_view text) {
    const char* position = text.data();
    const char* const end = position + text.size();
    const auto skip = [&](char c) {
        const bool isThere = position != end && *position == c;
        position += isThere ? 1 : 0;
        return isThere;
    };
    const auto skipDigits = [&] {
        const char* const first = position;
        position = std::find_if_not(position, end, isDigit);
        return position != first;
    };
    skip('-');
    if (!skip('0') && !skipDigits()) {
        return false;
    }
    if (skip('.') && !skipDigits()) {
        return false;
    }
    if (skip('e') || skip('E')) {
        if (!skip('-')) {
            skip('+');
        }
        if (!skipDigits()) {
            return false;
        }
    }
    return position == end;
}

/// Returns the value of a number in JSON's notation. Fractions and exponents, which are rare, are
/// left to the DOM: On-Demand reads some of them wrongly, and a Mac's strtod may take minutes for a
/// megabyte of digits.
std::variant<std::uint64_t, double> valueOfNumber(std::string_view literal) {
    const char* const end = literal.data() + literal.size();
    std::uint64_t natural = 0;
    const auto [parsedEnd, error] = std::from_chars(literal.data(), end, natural);
    if (parsedEnd == end && error == std::errc()) {
        return natural;
    }
    simdjson::dom::parser parser;
    double real = std::numeric_limits<double>::infinity();
    if (parser.parse(std::string(literal)).get(real) == simdjson::MEMALLOC) {
        throw std::bad_alloc();
    }
    return real;
}

/// Whether the letter after a backslash is a whole escape. A table is faster than comparisons,
/// which a processor cannot predict here.
bool isOneLetterEscape(char letter) {
    static constexpr auto kTable = [] {
        std::array<bool, 256> table{};
        for (const char c : std::string_view("\"\\/bfnrt")) {
            table[static_cast<unsigned char>(c)] = true;
        }
        return table;
    }();
    return kTable[static_cast<unsigned char>(letter)];
}

/// Whether every escape in a text is one letter after its backslash, and so right without being
/// decoded. In JSON, backslashes stand in strings only.
bool hasOneLetterEscapesOnly(std::string_view text) {
    for (std::size_t i = text.find('\\'); i < text.size(); i = text.find('\\', i + 2)) {
        if (i + 1 == text.size() || !isOneLetterEscape(text[i + 1])) {
            return false;
        }
    }
    return true;
}

/// Walks through a text in its order. Every function returns false as soon as something is not
/// standard JSON or nested too deep; what was taken until then is worth nothing. `wanted` takes
/// what its shape names of a value; it is null when nothing is wanted.
class Walk {
public:
    explicit Walk(std::string_view text)
        : end_(text.data() + text.size()), mustDecodeAll_(!hasOneLetterEscapesOnly(text)) {}

    bool readObject(ondemand::object& object, ORVJSONMember* wanted) {
        if (wanted) {
            wanted->value.kind = Kind::object;
            wanted->value.members.reserve(wanted->shape->fields.size());
        }
        for (auto result : object) {
            std::string_view key;
            if (result.error() != simdjson::SUCCESS ||
                !get(result.value_unsafe().unescaped_key(), key)) {
                return false;
            }
            ORVJSONMember* const field = wanted ? addIfWanted(*wanted, key) : nullptr;
            if (!readValue(result.value_unsafe().value(), field)) {
                return false;
            }
        }
        return true;
    }

private:
    bool readValue(ondemand::value& value, ORVJSONMember* wanted) {
        // Reaches to the next token, and so over any space between.
        const std::string_view token = value.raw_json_token();
        if (token.data() >= end_) {
            return false;  // Where a closing bracket is missing, the library goes on at the end.
        }
        switch (token.front()) {
            case '{':
            case '[':
                return readContainer(value, token.front(), wanted);
            case '"':
                return readString(value, wanted);
            default:
                return readScalar(token, wanted);
        }
    }

    bool readContainer(ondemand::value& value, char bracket, ORVJSONMember* wanted) {
        if (depth_ == ORVJSONReader::kMaxDepth) {
            return false;
        }
        ++depth_;
        bool isRead = false;
        if (bracket == '{') {
            ondemand::object object;
            isRead = get(value.get_object(), object) && readObject(object, wanted);
        } else {
            ondemand::array array;
            isRead = get(value.get_array(), array) && readArray(array, wanted);
        }
        --depth_;
        return isRead;
    }

    bool readArray(ondemand::array& array, ORVJSONMember* wanted) {
        if (wanted) {
            wanted->value.kind = Kind::array;
        }
        for (auto result : array) {
            if (result.error() != simdjson::SUCCESS || !readValue(result.value_unsafe(), nullptr)) {
                return false;
            }
        }
        return true;
    }

    bool readString(ondemand::value& value, ORVJSONMember* wanted) const {
        const bool keepsText = wanted && wanted->shape->keepsText;
        std::string_view text;
        // One of the two must be called: the library would take an unread string before a colon for
        // a key, and pass over both.
        ondemand::raw_json_string raw;
        const bool isRead = keepsText || mustDecodeAll_ ? get(value.get_string(), text)
                                                        : get(value.get_raw_json_string(), raw);
        if (wanted) {
            wanted->value.kind = Kind::string;
            wanted->value.text = keepsText ? text : "";
        }
        return isRead;
    }

    static bool readScalar(std::string_view token, ORVJSONMember* wanted) {
        while (isSpace(token.back())) {
            token.remove_suffix(1);
        }
        const bool isNull = token == "null";
        if (isNull || token == "true" || token == "false") {
            if (wanted) {
                wanted->value.kind = isNull ? Kind::null : Kind::boolean;
            }
            return true;
        }
        if (!isNumberLiteral(token)) {
            return false;
        }
        if (wanted) {
            wanted->value.kind = Kind::number;
            wanted->value.number = valueOfNumber(token);
        }
        return true;
    }

    const char* const end_;
    const bool mustDecodeAll_;  ///< Every string, to see whether its escapes are right.
    std::size_t depth_ = 1;     ///< Open objects and arrays; the outermost object is one.
};

}  // namespace

class ORVJSONReader::Parser {
public:
    explicit Parser(std::size_t longestText) {
        if (parser_.allocate(longestText) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }

    std::optional<ORVJSONValue> readObject(std::string_view text, const ORVJSONShape& shape) {
        constexpr std::size_t kBeyond = text::kReadableBytesBeyond;
        ondemand::document document;
        ondemand::object object;
        ORVJSONMember root{&shape};
        if (!get(parser_.iterate(text.data(), text.size(), text.size() + kBeyond), document) ||
            !get(document.get_object(), object) || !Walk(text).readObject(object, &root) ||
            document.current_location().error() != simdjson::OUT_OF_BOUNDS) {
            return std::nullopt;
        }
        return std::move(root.value);
    }

private:
    ondemand::parser parser_;
};

ORVJSONReader::ORVJSONReader() = default;
ORVJSONReader::~ORVJSONReader() = default;

std::optional<ORVJSONValue> ORVJSONReader::readObject(std::string_view text,
                                                      const ORVJSONShape& shape) {
    if (text.size() > kMaxBytes || text.starts_with(kByteOrderMark)) {
        return std::nullopt;
    }
    const std::unique_ptr<Parser> ownParser = parserForThisTextAlone(text.size());
    return (ownParser ? ownParser : parser_)->readObject(text, shape);
}

/// Returns a parser for this text alone if the kept one cannot take it. Otherwise returns null, and
/// the kept one exists.
std::unique_ptr<ORVJSONReader::Parser> ORVJSONReader::parserForThisTextAlone(std::size_t size) {
    if (size > kUsualLineBytes) {
        releaseMemory();
        return std::make_unique<Parser>(size);
    }
    try {
        if (!parser_) {
            parser_ = std::make_unique<Parser>(kUsualLineBytes);
        }
        return nullptr;
    } catch (const std::bad_alloc&) {
        return std::make_unique<Parser>(size);  // Memory is short: take what this text needs.
    }
}

void ORVJSONReader::releaseMemory() {
    parser_.reset();
}

const ORVJSONValue& ORVJSONValue::operator[](std::string_view key) const {
    static const ORVJSONValue kAbsent;
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const ORVJSONMember& m) { return m.shape->key == key; });
    return found == members.end() ? kAbsent : found->value;
}

namespace text {

std::optional<std::vector<std::pair<std::string, std::string>>> fieldsOfJSON(
    std::string_view text) {
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    const simdjson::error_code error = parser.parse(std::string(text)).get(object);
    if (error == simdjson::MEMALLOC) {
        throw std::bad_alloc();
    }
    if (error != simdjson::SUCCESS) {
        return std::nullopt;
    }
    std::vector<std::pair<std::string, std::string>> fields;
    for (const simdjson::dom::key_value_pair field : object) {
        fields.emplace_back(field.key, simdjson::to_string(field.value));
    }
    return fields;
}

}  // namespace text
