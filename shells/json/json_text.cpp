#include "shells/json/json_text.h"

#include <array>
#include <boost/json/serialize.hpp>
#include <cstdio>
#include <cstdlib>

#include "platform/unicode.h"

namespace json {

std::string quoted(std::string_view bytes) {
    const std::string text = platform::withInvalidBytesReplaced(bytes);
    return boost::json::serialize(boost::json::string_view(text.data(), text.size()));
}

std::string number(double value) {
    constexpr int kDigitsOfEveryDouble = 17;
    std::array<char, 64> text{};
    for (int digits = 1; digits <= kDigitsOfEveryDouble; ++digits) {
        std::snprintf(text.data(), text.size(), "%.*g", digits, value);
        if (std::strtod(text.data(), nullptr) == value) {
            break;
        }
    }
    return text.data();
}

std::string quotedOrNull(const std::optional<std::string>& bytes) {
    return bytes ? quoted(*bytes) : "null";
}

std::string object(const std::vector<std::pair<std::string_view, std::string>>& fields) {
    std::string text = "{";
    for (const auto& [key, value] : fields) {
        if (text.size() > 1) {
            text += ',';
        }
        text += quoted(key) + ':' + value;
    }
    return text + '}';
}

}  // namespace json
