#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "l10n/languages.h"
#include "platform/user_defaults.h"

/// The language of every visible text: chosen by the user, else by the system. UI thread only.
class ORVLocalizer {
public:
    /// With the system's preferred languages of this moment. The defaults must outlive the
    /// localizer; a stored number that is not a language mode counts as the system's mode, and is
    /// left as it stands.
    explicit ORVLocalizer(ORVUserDefaults& userDefaults);

    /// `preferredLanguages`: language tags, most preferred first; only the first is asked.
    ORVLocalizer(ORVUserDefaults& userDefaults, std::vector<std::string> preferredLanguages);

    static bool isValidLanguageMode(std::int64_t mode);

    /// The user's choice.
    ORVLanguageMode languageMode() const { return languageMode_; }

    /// Takes effect at once and is stored. A number that is not a language mode is ignored.
    void setLanguageMode(std::int64_t mode);

    /// From here on the effective language is English; the choice is kept, and stored, all the
    /// same.
    void showOnlyEnglish() { showsOnlyEnglish_ = true; }

    /// The language that the choice amounts to: never ORVLanguageModeSystem.
    ORVLanguageMode effectiveLanguageMode() const;

    /// The name of the effective language, in that language.
    std::string languageName() const { return stringForKey(language().nameKey); }

    /// "zh_CN" or "en_US", for dates.
    std::string locale() const { return timeFormat().locale; }
    const ORVTimeFormat& timeFormat() const { return language().timeFormat; }

    /// The text in the effective language; the key itself where there is none.
    std::string stringForKey(std::string_view key) const;

    static const ORVStringTable& englishStrings();
    static const ORVStringTable& simplifiedChineseStrings();

private:
    const ORVLanguage& language() const;

    ORVLanguageMode languageMode_ = ORVLanguageModeSystem;
    ORVUserDefaults& userDefaults_;
    const std::vector<std::string> preferredLanguages_;
    bool showsOnlyEnglish_ = false;
};
