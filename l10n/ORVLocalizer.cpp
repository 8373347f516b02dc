// The choice of a language.
// Tests: tests/l10n/localizer_test.cpp.

#include "l10n/ORVLocalizer.h"

#include <algorithm>

#include "platform/locale.h"

namespace {

const ORVLanguage* languageWithMode(std::int64_t mode) {
    const auto languages = l10n::languages();
    const auto found = std::find_if(languages.begin(), languages.end(),
                                    [&](const ORVLanguage& each) { return each.mode == mode; });
    return found == languages.end() ? nullptr : &*found;
}

}  // namespace

ORVLocalizer::ORVLocalizer(ORVUserDefaults& userDefaults)
    : ORVLocalizer(userDefaults, platform::preferredLanguages()) {}

ORVLocalizer::ORVLocalizer(ORVUserDefaults& userDefaults,
                           std::vector<std::string> preferredLanguages)
    : userDefaults_(userDefaults), preferredLanguages_(std::move(preferredLanguages)) {
    const std::int64_t stored = userDefaults.integerForKey(kModeKey).value_or(0);
    if (isValidLanguageMode(stored)) {
        languageMode_ = static_cast<ORVLanguageMode>(stored);
    }
}

bool ORVLocalizer::isValidLanguageMode(std::int64_t mode) {
    return mode == ORVLanguageModeSystem || languageWithMode(mode);
}

void ORVLocalizer::setLanguageMode(std::int64_t mode) {
    if (isValidLanguageMode(mode)) {
        languageMode_ = static_cast<ORVLanguageMode>(mode);
        userDefaults_.setInteger(mode, kModeKey);
    }
}

const ORVLanguage& ORVLocalizer::language() const {
    const ORVLanguage* chosen =
        languageWithMode(showsOnlyEnglish_ ? ORVLanguageModeEnglish : languageMode_);
    return chosen ? *chosen
                  : l10n::languageForTag(preferredLanguages_.empty() ? std::string_view()
                                                                     : preferredLanguages_.front());
}

ORVLanguageMode ORVLocalizer::effectiveLanguageMode() const {
    return language().mode;
}

std::string ORVLocalizer::stringForKey(std::string_view key) const {
    const ORVStringTable& strings = language().strings();
    const auto found = strings.find(key);
    return found == strings.end() ? std::string(key) : found->second;
}
