// Fills placeholders by hand: printf with a format from a table would turn a mistake in a text into
// a crash. Tests: tests/app/app_delegate_test.cpp.

#include "l10n/placeholders.h"

namespace l10n {

std::string filled(std::string_view text, std::initializer_list<std::string> values) {
    constexpr std::string_view kPlaceholders[] = {"%@", "%ld", "%.0f"};
    std::string result;
    const std::string* value = values.begin();
    while (!text.empty()) {
        std::size_t used = 1;
        if (text.starts_with("%%")) {
            used = 2;
            result += '%';
        } else {
            std::string_view piece = text.substr(0, 1);
            for (const std::string_view placeholder : kPlaceholders) {
                if (text.starts_with(placeholder) && value != values.end()) {
                    used = placeholder.size();
                    piece = *value++;
                    break;
                }
            }
            result += piece;
        }
        text.remove_prefix(used);
    }
    return result;
}

}  // namespace l10n
