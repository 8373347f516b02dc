#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// Names the fields of a JSON object that are wanted. Everything else is checked for correctness
/// and passed over.
struct ORVJSONShape {
    ORVJSONShape(std::string_view aKey, bool keepsItsText = false)
        : key(aKey), keepsText(keepsItsText) {}
    ORVJSONShape(std::string_view aKey, std::vector<ORVJSONShape> someFields)
        : key(aKey), fields(std::move(someFields)) {}

    std::string_view key;
    bool keepsText = false;  ///< Whether the text of a string is wanted, not only its kind.
    std::vector<ORVJSONShape> fields;  ///< Wanted when the value is an object.
};

struct ORVJSONMember;

/// The wanted part of a JSON value.
struct ORVJSONValue {
    enum class Kind { absent, null, boolean, number, string, array, object };

    Kind kind = Kind::absent;

    /// The decoded text of a string that the shape keeps, in valid UTF-8; "" for every other value.
    std::string text;

    /// The value of a number: an integer from 0 to 2^64 - 1 exactly, every other number as the
    /// nearest double. A number beyond every double and an integer of more than 64 bits read as
    /// infinity.
    std::variant<std::uint64_t, double> number;

    /// The wanted fields of an object. Of a key that occurs more than once, the last counts.
    std::vector<ORVJSONMember> members;

    /// Returns a field of an object, and an absent value when the object has no such field.
    const ORVJSONValue& operator[](std::string_view key) const;
};

struct ORVJSONMember {
    const ORVJSONShape* shape = nullptr;
    ORVJSONValue value = {};
};

/// Parses lines of JSON. It accepts a text that is one object of standard JSON, whatever its
/// numbers, nested at most kMaxDepth levels and at most kMaxBytes long, and nothing else.
///
/// While it is parsed, a line of many small values takes up to 4 times its length of memory, and 6
/// times is asked for; std::bad_alloc is thrown when there is not as much.
class ORVJSONReader {
public:
    /// As many levels need 256 KB of stack; a Mac's threads have 512 KB.
    static constexpr std::size_t kMaxDepth = 512;
    static constexpr std::size_t kMaxBytes = 64 * 1024 * 1024;

    ORVJSONReader();
    ~ORVJSONReader();

    /// Returns the wanted fields of the object, and none for a text that is not accepted.
    /// text::kReadableBytesBeyond bytes after the text must be readable.
    std::optional<ORVJSONValue> readObject(std::string_view text, const ORVJSONShape& shape);

    /// Frees the parser's memory, which otherwise stays for the next line.
    void releaseMemory();

private:
    class Parser;
    std::unique_ptr<Parser> parserForThisTextAlone(std::size_t size);

    std::unique_ptr<Parser> parser_;
};

namespace text {

/// Returns the fields of an object in their order: keys decoded, values as JSON. Returns none for a
/// text that is not one object of standard JSON. Throws std::bad_alloc when memory runs out.
std::optional<std::vector<std::pair<std::string, std::string>>> fieldsOfJSON(std::string_view text);

// Writing, without spaces between tokens. Keys keep the order in which they are given.

/// Writes a string; bytes that are not UTF-8 become U+FFFD.
std::string quotedJSON(std::string_view bytes);

/// Writes a finite number without an exponent, with the fewest digits that read back as the same
/// double.
std::string numberJSON(double value);

/// Writes a string, or null.
std::string quotedJSONOrNull(const std::optional<std::string>& bytes);

/// Writes an array of what `write` returns for each item; items for which it is "" are left out.
template <typename Items, typename Write>
std::string arrayJSON(const Items& items, Write write) {
    std::string list;
    for (const auto& item : items) {
        const std::string written = write(item);
        list += (list.empty() || written.empty() ? "" : ",") + written;
    }
    return '[' + list + ']';
}

/// Writes an object from keys, which are quoted here, and values, which are JSON already.
std::string objectJSON(const std::vector<std::pair<std::string_view, std::string>>& fields);

}  // namespace text
