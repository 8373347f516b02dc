// Lines of JSON through simdjson, whose DOM parser checks the whole text. It refuses some standard
// JSON: integers beyond 64 bits and numbers beyond every double. Such a line is parsed a second
// time, with a harmless number in the place of each that cannot be held.
//
// Works alike with simdjson 3.0 and 4.x, which name these refusals differently and treat a byte
// order mark differently. Tests: tests/sessions/json_object_test.cpp, fuzz/session_lines.cpp.

#include "sessions/json_object.h"

#include <simdjson.h>

#include <algorithm>
#include <new>
#include <string>

#include "text/byte_buffer.h"

namespace {

static_assert(ORVByteBuffer::kReadableBytesBeyond >= simdjson::SIMDJSON_PADDING);

/// The parser's buffers are made for lines of this length at the beginning: memory that is never
/// touched costs nothing, and growing would hold the old and the new buffers together. A longer
/// line gets a parser of its own.
constexpr std::size_t kUsualLineBytes = 4 * 1024 * 1024;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

namespace dom = simdjson::dom;
using Kind = ORVJSONValue::Kind;

const ORVJSONShape* wantedField(const ORVJSONShape& shape, std::string_view key) {
    const auto found = std::find_if(shape.fields.begin(), shape.fields.end(),
                                    [&](const ORVJSONShape& field) { return field.key == key; });
    return found == shape.fields.end() ? nullptr : &*found;
}

/// Adds a field to an object, in the place of an earlier field with the same key. The reference is
/// valid until the next field is added.
ORVJSONValue& addMember(ORVJSONValue& object, const ORVJSONShape& shape) {
    for (ORVJSONMember& member : object.members) {
        if (member.shape == &shape) {
            member.value = ORVJSONValue{};
            return member.value;
        }
    }
    ORVJSONMember& member = object.members.emplace_back();
    member.shape = &shape;
    return member.value;
}

void take(ORVJSONValue& value, const dom::element& element, const ORVJSONShape& shape);

void takeFields(ORVJSONValue& value, const dom::object& object, const ORVJSONShape& shape) {
    value.members.reserve(shape.fields.size());
    for (const dom::key_value_pair field : object) {
        if (const ORVJSONShape* wanted = wantedField(shape, field.key)) {
            take(addMember(value, *wanted), field.value, *wanted);
        }
    }
}

void takeNumber(ORVJSONValue& value, const dom::element& element) {
    value.kind = Kind::number;
    std::uint64_t natural = 0;
    double real = 0;
    // This succeeds for a number that the parser holds as signed, too, if it is 0 or more.
    if (element.get_uint64().get(natural) == simdjson::SUCCESS) {
        value.number = natural;
    } else if (element.get_double().get(real) == simdjson::SUCCESS) {
        value.number = real;
    }
}

void take(ORVJSONValue& value, const dom::element& element, const ORVJSONShape& shape) {
    switch (element.type()) {
        case dom::element_type::NULL_VALUE:
            value.kind = Kind::null;
            break;
        case dom::element_type::BOOL:
            value.kind = Kind::boolean;
            break;
        case dom::element_type::STRING:
            value.kind = Kind::string;
            if (shape.keepsText) {
                value.text = std::string_view(element);
            }
            break;
        case dom::element_type::ARRAY:
            value.kind = Kind::array;
            break;
        case dom::element_type::OBJECT:
            value.kind = Kind::object;
            takeFields(value, dom::object(element), shape);
            break;
        default:
            takeNumber(value, element);
            break;
    }
}

/// Whether the refusal proves that the text is not standard JSON, or is nested too deep. Every
/// other refusal may come from the parser's own limits.
bool provesNoJSON(simdjson::error_code refusal) {
    switch (refusal) {
        case simdjson::TAPE_ERROR:
        case simdjson::DEPTH_ERROR:
        case simdjson::STRING_ERROR:
        case simdjson::T_ATOM_ERROR:
        case simdjson::F_ATOM_ERROR:
        case simdjson::N_ATOM_ERROR:
        case simdjson::UTF8_ERROR:
        case simdjson::EMPTY:
        case simdjson::UNESCAPED_CHARS:
        case simdjson::UNCLOSED_STRING:
            return true;
        default:
            return false;
    }
}

/// Returns how many containers are open at the deepest place of the text.
std::size_t nestingOf(std::string_view text) {
    std::size_t deepest = 0;
    std::size_t depth = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            isInString = !isInString;
        } else if (isInString) {
            i += c == '\\' ? 1 : 0;
        } else if (c == '{' || c == '[') {
            deepest = std::max(deepest, ++depth);
        } else if ((c == '}' || c == ']') && depth > 0) {
            --depth;
        }
    }
    return deepest;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Removes the digits at the beginning of the text; returns false when there are none.
bool skipDigits(std::string_view& text) {
    const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count > 0;
}

/// Whether the whole text is a number in JSON's notation.
bool isNumberLiteral(std::string_view text) {
    const auto skip = [&text](std::string_view characters) {
        const bool isThere =
            !text.empty() && characters.find(text.front()) != std::string_view::npos;
        text.remove_prefix(isThere ? 1 : 0);
        return isThere;
    };
    skip("-");
    if (!skip("0") && !skipDigits(text)) {
        return false;
    }
    if (skip(".") && !skipDigits(text)) {
        return false;
    }
    if (skip("eE")) {
        skip("+-");
        if (!skipDigits(text)) {
            return false;
        }
    }
    return text.empty();
}

/// Whether the parser may be unable to hold the number. A literal of at most 18 characters without
/// an exponent always fits.
bool mayBeTooLarge(std::string_view literal) {
    constexpr std::size_t kDigitsThatFit = 18;
    return literal.size() > kDigitsThatFit || literal.find_first_of("eE") != std::string_view::npos;
}

}  // namespace

class ORVJSONReader::Parser {
public:
    explicit Parser(std::size_t longestText) : longestText_(longestText) {
        allowDepth(kMaxDepth);
        if (document_.allocate(longestText) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }

    /// Returns the root of the text, which refers to the parser's memory until the next call, and
    /// none for a text that is not JSON.
    std::optional<dom::element> parse(std::string_view text) {
        const auto root = parseOnce(text);
        if (root || provesNoJSON(refusal_)) {
            return root;
        }
        std::string harmless(text);
        harmless.append(ORVByteBuffer::kReadableBytesBeyond, ' ');
        const bool isChanged = replaceNumbersThatCannotBeHeld(harmless, text.size());
        return isChanged ? parseOnce(std::string_view(harmless).substr(0, text.size()))
                         : std::nullopt;
    }

private:
    std::optional<dom::element> parseOnce(std::string_view text) {
        auto root = parseToDepth(text);
        if (refusal_ == simdjson::DEPTH_ERROR && nestingOf(text) == kMaxDepth) {
            // The library counts one level more below a container that is not empty.
            allowDepth(kMaxDepth + 1);
            root = parseToDepth(text);
            allowDepth(kMaxDepth);
        }
        return root;
    }

    void allowDepth(std::size_t depth) {
        if (parser_.allocate(longestText_, depth) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }

    std::optional<dom::element> parseToDepth(std::string_view text) {
        dom::element root;
        refusal_ =
            parser_.parse_into_document(document_, text.data(), text.size(), false).get(root);
        return refusal_ == simdjson::SUCCESS ? std::optional(root) : std::nullopt;
    }

    /// Overwrites every number that the parser refuses even by itself with "0.500…" of the same
    /// length. `size` is the length of the JSON text, which the readable bytes follow. Returns
    /// whether there was such a number.
    bool replaceNumbersThatCannotBeHeld(std::string& text, std::size_t size) {
        bool isChanged = false;
        bool isInString = false;
        for (std::size_t i = 0; i < size; ++i) {
            if (isInString && text[i] == '\\') {
                ++i;
            } else if (text[i] == '"') {
                isInString = !isInString;
            } else if (!isInString && (isDigit(text[i]) || text[i] == '-')) {
                const std::size_t end =
                    std::min(text.find_first_not_of("0123456789+-.eE", i), size);
                const std::string_view literal = std::string_view(text).substr(i, end - i);
                if (mayBeTooLarge(literal) && isNumberLiteral(literal) && !parseOnce(literal)) {
                    text.replace(i, 3, "0.5");
                    std::fill(text.begin() + static_cast<std::ptrdiff_t>(i) + 3,
                              text.begin() + static_cast<std::ptrdiff_t>(end), '0');
                    isChanged = true;
                }
                i = end - 1;
            }
        }
        return isChanged;
    }

    const std::size_t longestText_;
    dom::parser parser_;
    dom::document document_;
    simdjson::error_code refusal_ = simdjson::SUCCESS;
};

ORVJSONReader::ORVJSONReader() = default;
ORVJSONReader::~ORVJSONReader() = default;

std::optional<ORVJSONValue> ORVJSONReader::readObject(std::string_view text,
                                                      const ORVJSONShape& shape) {
    if (text.size() > kMaxBytes || text.starts_with(kByteOrderMark)) {
        return std::nullopt;
    }
    const std::unique_ptr<Parser> ownParser = parserForThisTextAlone(text.size());
    const auto root = (ownParser ? ownParser : parser_)->parse(text);
    if (!root || !root->is_object()) {
        return std::nullopt;
    }
    ORVJSONValue object;
    take(object, *root, shape);
    return object;
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
