#include "l10n/ORVLocalizer.h"

#include <algorithm>

#include "platform/preferred_languages.h"
#include "text/bytes.h"

namespace {

constexpr std::string_view kModeKey = "BrimletLanguageMode";

/// A plain test of the tag's beginning: a bare "zh", Taiwan and Hong Kong read English.
bool isSimplifiedChinese(std::string tag) {
    std::transform(tag.begin(), tag.end(), tag.begin(), text::lowerCasedASCII);
    return tag.starts_with("zh-hans") || tag.starts_with("zh-cn") || tag.starts_with("zh-sg");
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
    return mode >= ORVLanguageModeSystem && mode <= ORVLanguageModeSimplifiedChinese;
}

void ORVLocalizer::setLanguageMode(std::int64_t mode) {
    if (isValidLanguageMode(mode)) {
        languageMode_ = static_cast<ORVLanguageMode>(mode);
        userDefaults_.setInteger(mode, kModeKey);
    }
}

ORVLanguageMode ORVLocalizer::effectiveLanguageMode() const {
    if (showsOnlyEnglish_) {
        return ORVLanguageModeEnglish;
    }
    if (languageMode_ != ORVLanguageModeSystem) {
        return languageMode_;
    }
    const bool isChinese =
        !preferredLanguages_.empty() && isSimplifiedChinese(preferredLanguages_.front());
    return isChinese ? ORVLanguageModeSimplifiedChinese : ORVLanguageModeEnglish;
}

std::string ORVLocalizer::locale() const {
    return effectiveLanguageMode() == ORVLanguageModeSimplifiedChinese ? "zh_CN" : "en_US";
}

std::string ORVLocalizer::stringForKey(std::string_view key) const {
    const ORVStringTable& strings = effectiveLanguageMode() == ORVLanguageModeSimplifiedChinese
                                        ? simplifiedChineseStrings()
                                        : englishStrings();
    const auto found = strings.find(key);
    return found == strings.end() ? std::string(key) : found->second;
}
