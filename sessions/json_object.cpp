// The value that both parsers fill, and the choice between them.

#include "sessions/json_object.h"

#include <simdjson.h>

#include <algorithm>

#include "platform/byte_buffer.h"

namespace {

static_assert(ORVByteBuffer::kReadableBytesBeyond >= simdjson::SIMDJSON_PADDING);

/// Longer lines go to the thorough parser: the fast one's buffers grow to more than twenty times
/// the line where it is full of small values.
constexpr std::size_t kFastLineBytes = 4 * 1024 * 1024;

constexpr std::uint64_t kLargestInteger = std::uint64_t{1} << 63U;

namespace dom = simdjson::dom;
using Kind = ORVJSONValue::Kind;

std::optional<std::uint64_t> wholeNumber(const dom::element& number) {
    std::uint64_t natural = 0;
    if (number.get_uint64().get(natural) == simdjson::SUCCESS) {  // From a signed one, too.
        return natural <= kLargestInteger ? std::optional(natural) : std::nullopt;
    }
    double real = 0;
    if (!number.is_double() || number.get_double().get(real) != simdjson::SUCCESS) {
        return std::nullopt;  // Negative.
    }
    if (!(real >= 0 && real <= static_cast<double>(kLargestInteger))) {
        return std::nullopt;
    }
    natural = static_cast<std::uint64_t>(real);
    // Doubles beyond 2^53 have no fraction, so the way there and back is exact.
    return static_cast<double>(natural) == real ? std::optional(natural) : std::nullopt;
}

void take(ORVJSONValue& value, const dom::element& element, const ORVJSONShape& shape) {
    switch (element.type()) {
        case dom::element_type::NULL_VALUE:
            value.kind = Kind::null;
            return;
        case dom::element_type::BOOL:
            value.kind = Kind::boolean;
            return;
        case dom::element_type::INT64:
        case dom::element_type::UINT64:
        case dom::element_type::DOUBLE:
            value.kind = Kind::number;
            value.integer = wholeNumber(element);
            return;
        case dom::element_type::STRING:
            value.kind = Kind::string;
            if (shape.keepsText) {
                value.text = std::string_view(element);
            }
            return;
        case dom::element_type::ARRAY:
            value.kind = Kind::array;
            return;
        case dom::element_type::OBJECT:
            value.kind = Kind::object;
            for (const dom::key_value_pair field : dom::object(element)) {
                if (const ORVJSONShape* wanted = sessions::wantedField(shape, field.key)) {
                    take(sessions::addMember(value, *wanted), field.value, *wanted);
                }
            }
            return;
    }
}

/// Whether the fast parser's refusal may be due to its own limits and not to the text.
bool mayBeStandardJSON(simdjson::error_code refusal) {
    switch (refusal) {
        case simdjson::NUMBER_ERROR:
        case simdjson::DEPTH_ERROR:
        case simdjson::CAPACITY:
        case simdjson::MEMALLOC:
        case simdjson::TAPE_ERROR:
        case simdjson::UNINITIALIZED:
        case simdjson::UNSUPPORTED_ARCHITECTURE:
            return true;
        default:
            return false;
    }
}

}  // namespace

class ORVJSONReader::FastParser {
public:
    /// The buffers get their final size at once: memory that is not touched costs nothing, and
    /// growing would hold the old and the new ones together.
    FastParser() : status_(parser_.allocate(kFastLineBytes, kMaxDepth)) {
        if (status_ == simdjson::SUCCESS) {
            status_ = document_.allocate(kFastLineBytes);
        }
    }

    /// The root refers into the parser and is valid until the next call.
    simdjson::error_code parse(std::string_view text, dom::element& root) {
        if (status_ != simdjson::SUCCESS) {
            return status_;
        }
        return parser_.parse_into_document(document_, text.data(), text.size(), false).get(root);
    }

private:
    dom::parser parser_;
    dom::document document_;
    simdjson::error_code status_;
};

ORVJSONReader::ORVJSONReader() = default;
ORVJSONReader::~ORVJSONReader() = default;

std::optional<ORVJSONValue> ORVJSONReader::readObject(std::string_view text,
                                                      const ORVJSONShape& shape) {
    if (text.size() > kFastLineBytes) {
        return sessions::readObjectThoroughly(text, shape);
    }
    if (!fastParser_) {
        fastParser_ = std::make_unique<FastParser>();
    }
    dom::element root;
    const simdjson::error_code refusal = fastParser_->parse(text, root);
    if (refusal != simdjson::SUCCESS) {
        return mayBeStandardJSON(refusal) ? sessions::readObjectThoroughly(text, shape)
                                          : std::nullopt;
    }
    if (!root.is_object()) {
        return std::nullopt;
    }
    ORVJSONValue object;
    take(object, root, shape);
    return object;
}

void ORVJSONReader::releaseMemory() {
    fastParser_.reset();
}

const ORVJSONValue& ORVJSONValue::operator[](std::string_view key) const {
    static const ORVJSONValue kAbsent;
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&](const ORVJSONMember& m) { return m.shape->key == key; });
    return found == members.end() ? kAbsent : found->value;
}

namespace sessions {

std::optional<std::uint64_t> wholeNumber(std::string_view literal) {
    // The fast parser reads the literals of both, so that they cannot disagree. A number that it
    // refuses is one beyond 64 bits or beyond every double.
    dom::parser parser;
    dom::element number;
    const simdjson::padded_string text(literal);
    if (parser.parse(text).get(number) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    return ::wholeNumber(number);
}

const ORVJSONShape* wantedField(const ORVJSONShape& shape, std::string_view key) {
    const auto found = std::find_if(shape.fields.begin(), shape.fields.end(),
                                    [&](const ORVJSONShape& field) { return field.key == key; });
    return found == shape.fields.end() ? nullptr : &*found;
}

ORVJSONValue& addMember(ORVJSONValue& object, const ORVJSONShape& shape) {
    for (ORVJSONMember& member : object.members) {
        if (member.shape == &shape) {
            member.value = ORVJSONValue{};
            return member.value;
        }
    }
    return object.members.emplace_back(ORVJSONMember{&shape, {}}).value;
}

}  // namespace sessions
