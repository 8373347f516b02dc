#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "l10n/languages.h"
#include "platform/user_defaults.h"

/// Chooses the language of every visible text: the user's choice, else the system's. Used on the UI
/// thread only.
class ORVLocalizer {
public:
    /// The choice is stored under this key, which every version of the program shares.
    static constexpr std::string_view kModeKey = "BrimletLanguageMode";

    /// Takes the system's preferred languages of this moment. The defaults must outlive the
    /// localizer. A stored number that is not a language mode counts as the system's mode and stays
    /// stored.
    explicit ORVLocalizer(ORVUserDefaults& userDefaults);

    /// `preferredLanguages` holds language tags, the most preferred first; only that one counts.
    ORVLocalizer(ORVUserDefaults& userDefaults, std::vector<std::string> preferredLanguages);

    static bool isValidLanguageMode(std::int64_t mode);

    /// Returns the user's choice.
    ORVLanguageMode languageMode() const { return languageMode_; }

    /// Stores the choice, which takes effect at once. A number that is not a language mode is
    /// ignored.
    void setLanguageMode(std::int64_t mode);

    /// Makes English the effective language from now on. The user's choice is still kept and
    /// stored.
    void showOnlyEnglish() { showsOnlyEnglish_ = true; }

    /// Returns the mode of the language that is shown; it is never ORVLanguageModeSystem.
    ORVLanguageMode effectiveLanguageMode() const;

    /// Returns the name of the language that is shown, in that language.
    std::string languageName() const { return stringForKey(language().nameKey); }

    /// Return that language's words for a terminal, and its way to write the time.
    const ORVWords& words() const { return language().words; }
    const ORVTimeFormat& timeFormat() const { return language().timeFormat; }

    /// Returns the text in the language that is shown, and the key itself when it has no text.
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
