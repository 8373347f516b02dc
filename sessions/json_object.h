#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Which fields of a JSON object are wanted; everything else is checked and passed over.
struct ORVJSONShape {
    std::string_view key;
    bool keepsText = false;  ///< Whether the text of a string is wanted, not only its kind.
    std::vector<ORVJSONShape> fields = {};  ///< Wanted when the value is an object.
};

struct ORVJSONMember;

/// The wanted part of a JSON value.
struct ORVJSONValue {
    enum class Kind { absent, null, boolean, number, string, array, object };

    Kind kind = Kind::absent;

    /// Of a string that the shape keeps: decoded, valid UTF-8. Empty for everything else.
    std::string text;

    /// Of a number: its value when that is a whole number from 0 to 2^63. A literal with a fraction
    /// or an exponent stands for the nearest double, so 3.0 and 1e3 are whole; -0 is 0.
    std::optional<std::uint64_t> integer;

    /// Of an object: the wanted fields that it has. Where a key occurs more than once, the last.
    std::vector<ORVJSONMember> members;

    /// A field of an object; an absent value where there is none.
    const ORVJSONValue& operator[](std::string_view key) const;
};

struct ORVJSONMember {
    const ORVJSONShape* shape;
    ORVJSONValue value;
};

/// Parses lines of JSON. Accepts a text that is one object of standard JSON, whatever its numbers,
/// nested at most kMaxDepth levels, and nothing else.
///
/// Two parsers give the same answers: a fast one, and a thorough one, ten times slower and without
/// buffers of its own, for what the fast one refuses (integers beyond 64 bits) and for long lines.
class ORVJSONReader {
public:
    static constexpr std::size_t kMaxDepth = 512;

    ORVJSONReader();
    ~ORVJSONReader();

    /// The wanted fields of the object, or none. ORVByteBuffer::kReadableBytesBeyond bytes after
    /// the text must be readable.
    std::optional<ORVJSONValue> readObject(std::string_view text, const ORVJSONShape& shape);

    /// Gives back the memory that a long line took.
    void releaseMemory();

private:
    class FastParser;
    std::unique_ptr<FastParser> fastParser_;
};

namespace sessions {

/// The thorough parser alone.
std::optional<ORVJSONValue> readObjectThoroughly(std::string_view text, const ORVJSONShape& shape);

/// What ORVJSONValue::integer says of a number's literal.
std::optional<std::uint64_t> wholeNumber(std::string_view literal);

/// The field of the shape with this key; null when it is not wanted.
const ORVJSONShape* wantedField(const ORVJSONShape& shape, std::string_view key);

/// Adds a field to an object, in place of an earlier one with the same key. Valid until the next.
ORVJSONValue& addMember(ORVJSONValue& object, const ORVJSONShape& shape);

}  // namespace sessions
