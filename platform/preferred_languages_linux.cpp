// Reads the languages from the environment: from LANGUAGE, a list with colons, else from the locale
// for messages. Tests: tests/platform/linux_test.cpp.

#include <cstdlib>
#include <string_view>

#include "platform/preferred_languages.h"

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

}  // namespace platform
