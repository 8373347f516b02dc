// Reads the languages from the environment: from LANGUAGE, a list with colons, else from the locale
// for messages. Writes the time by the language's pattern, since a bare machine lacks the C
// library's locales. Tests: tests/platform/linux_test.cpp.

#include "platform/locale.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace platform {
namespace {

/// Adds "zh-CN" for "zh_CN.UTF-8", and nothing for "C" and "POSIX".
void addLanguage(std::string_view locale, std::vector<std::string>& languages) {
    std::string tag(locale.substr(0, locale.find_first_of(".@")));
    if (tag.empty() || tag == "C" || tag == "POSIX") {
        return;
    }
    for (char& c : tag) {
        c = c == '_' ? '-' : c;
    }
    languages.push_back(std::move(tag));
}

}  // namespace

std::vector<std::string> preferredLanguages() {
    std::string_view names;
    for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            names = value;
            break;
        }
    }
    std::vector<std::string> languages;
    while (!names.empty()) {
        const std::size_t colon = names.find(':');
        addLanguage(names.substr(0, colon), languages);
        names.remove_prefix(colon == std::string_view::npos ? names.size() : colon + 1);
    }
    return languages;
}

std::string mediumTimeOfDay(ORVFileDate date, const ORVTimeFormat& format) {
    tzset();  // The user may have changed the zone.
    const std::time_t seconds = date.seconds;
    std::tm time{};
    if (!localtime_r(&seconds, &time)) {
        time = std::tm{};  // The year does not fit into an int.
    }
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), format.pattern, &time);
    const bool dropsZero = std::string_view(format.pattern).starts_with("%I") && text[0] == '0';
    return std::string(text.data(), length).substr(dropsZero ? 1 : 0);
}

}  // namespace platform
