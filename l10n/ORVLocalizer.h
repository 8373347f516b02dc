#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/user_defaults.h"

/// Texts by key. Both languages have the same 59 keys; some belong to a folder-access flow that is
/// not looked up so far.
using ORVStringTable = std::map<std::string, std::string, std::less<>>;

/// The numbers are stored, and are the tags of the language menu.
enum ORVLanguageMode : std::int64_t {
    ORVLanguageModeSystem = 0,
    ORVLanguageModeEnglish = 1,
    ORVLanguageModeSimplifiedChinese = 2,
};

/// The language of every visible text: chosen by the user, else by the system. UI thread only.
class ORVLocalizer {
public:
    /// With the system's preferred languages of this moment. The defaults must outlive the
    /// localizer; a stored mode that is none is read as the system's and left as it stands.
    explicit ORVLocalizer(ORVUserDefaults& userDefaults);

    /// `preferredLanguages`: language tags, most preferred first; only the first is asked.
    ORVLocalizer(ORVUserDefaults& userDefaults, std::vector<std::string> preferredLanguages);

    static bool isValidLanguageMode(std::int64_t mode);

    /// The user's choice.
    ORVLanguageMode languageMode() const { return languageMode_; }

    /// Takes effect at once and is stored. What is no mode is ignored.
    void setLanguageMode(std::int64_t mode);

    /// From here on the effective language is English; the choice is kept, and stored, all the
    /// same.
    void showOnlyEnglish() { showsOnlyEnglish_ = true; }

    /// The language that the choice amounts to: never ORVLanguageModeSystem.
    ORVLanguageMode effectiveLanguageMode() const;

    /// "zh_CN" or "en_US", for dates.
    std::string locale() const;

    /// The text in the effective language; the key itself where there is none.
    std::string stringForKey(std::string_view key) const;

    static const ORVStringTable& englishStrings();
    static const ORVStringTable& simplifiedChineseStrings();

private:
    ORVLanguageMode languageMode_ = ORVLanguageModeSystem;
    ORVUserDefaults& userDefaults_;
    const std::vector<std::string> preferredLanguages_;
    bool showsOnlyEnglish_ = false;
};
