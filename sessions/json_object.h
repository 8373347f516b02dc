#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
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

    /// Of a number: an integer from 0 to 2^64 - 1 exactly, every other one as the nearest double.
    /// A number that neither of the two can hold reads as 0.5, a double that is never whole.
    std::variant<std::uint64_t, double> number;

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
/// nested at most kMaxDepth levels and at most kMaxBytes long, and nothing else.
///
/// Runs out of memory with std::bad_alloc: a line of many small values takes up to 13 times its
/// length while it is parsed.
class ORVJSONReader {
public:
    static constexpr std::size_t kMaxDepth = 512;
    static constexpr std::size_t kMaxBytes = 64 * 1024 * 1024;

    ORVJSONReader();
    ~ORVJSONReader();

    /// The wanted fields of the object, or none. ORVByteBuffer::kReadableBytesBeyond bytes after
    /// the text must be readable.
    std::optional<ORVJSONValue> readObject(std::string_view text, const ORVJSONShape& shape);

    /// Frees the memory that parsing took.
    void releaseMemory();

private:
    class Parser;
    std::unique_ptr<Parser> parserForThisTextAlone(std::size_t size);

    std::unique_ptr<Parser> parser_;
};
