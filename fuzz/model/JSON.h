#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace model {

/// A value of standard JSON, read by going down into it.
struct JSON {
    enum class Kind { null, boolean, number, string, array, object };

    Kind kind = Kind::null;
    std::string text;               ///< Of a string; a number as written.
    std::vector<std::string> keys;  ///< Of an object, in the order written.
    std::vector<JSON> values;       ///< As many.

    /// The whole text as one object, nested at most 512 deep; none when it is anything else.
    static std::optional<JSON> object(std::string_view text);

    /// The last member with this key; null where there is none, and for what is no object.
    const JSON* member(std::string_view key) const;

    /// The same where it is of this kind.
    const JSON* member(std::string_view key, Kind wanted) const;

    /// The text of a member that is a string; "" for every other.
    std::string stringMember(std::string_view key) const;

    /// A number from 0 to 2^63 without a fraction; what is written with a fraction or an exponent
    /// is the nearest double.
    std::optional<std::uint64_t> wholeNumber() const;
};

}  // namespace model
