#include "l10n/ORVLocalizer.h"

#include <gtest/gtest.h>

#include "tests/support/MemoryDefaults.h"
#include "text/unicode.h"

namespace {

std::string placeholdersOf(const std::string& text) {
    std::string all;
    for (std::size_t i = text.find('%'); i != std::string::npos; i = text.find('%', i + 2)) {
        all += text.substr(i, text.find_first_of("@df%", i + 1) - i) + " ";
    }
    return all;
}

TEST(StringTablesTest, EveryLanguageHasTheSameKeysAndPlaceholders) {
    const ORVStringTable& english = ORVLocalizer::englishStrings();
    ASSERT_EQ(59U, english.size());
    for (const ORVLanguage& language : l10n::languages()) {
        SCOPED_TRACE(language.menuItem);
        const ORVStringTable& strings = language.strings();
        EXPECT_EQ(english.size(), strings.size());
        for (const auto& [key, englishText] : english) {
            SCOPED_TRACE(key);
            ASSERT_TRUE(strings.contains(key));
            const std::string& text = strings.find(key)->second;
            EXPECT_EQ(placeholdersOf(englishText), placeholdersOf(text));
            EXPECT_TRUE(text::isValidUTF8(text));
            EXPECT_EQ(text, text::forTerminal(text));
            EXPECT_FALSE(text.empty() || text.starts_with(' ') || text.ends_with(' '));
            EXPECT_EQ(std::string::npos, text.find("  "));
            EXPECT_EQ(std::string::npos, text.find("...")) << "an ellipsis is one character";
        }
        ASSERT_TRUE(english.contains(language.nameKey));
        EXPECT_EQ(english.find(language.nameKey)->second, strings.find(language.nameKey)->second);
    }
}

TEST(LocalizerTest, TheFirstPreferredLanguageDecides) {
    using Languages = std::vector<std::string>;
    const auto localeFor = [](const Languages& languages) {
        MemoryDefaults defaults;
        return std::string(ORVLocalizer(defaults, languages).timeFormat().locale);
    };
    for (const char* chinese : {"zh-Hans-CN", "ZH-CN", "zh-SG", "zh-CN-x"}) {
        EXPECT_EQ("zh_CN", localeFor({chinese, "en-US"})) << chinese;
    }
    for (const char* other : {"en-US", "zh", "zh-Hant-TW", "zh-HK", "zh_CN"}) {
        EXPECT_EQ("en_US", localeFor({other, "zh-CN"})) << other;
    }
    EXPECT_EQ("en_US", localeFor({}));
}

TEST(LocalizerTest, TheChoiceIsStoredAndAWrongOneIsLeftAlone) {
    MemoryDefaults defaults;
    for (const std::int64_t wrong : {99, -1}) {
        defaults.stored = wrong;
        ORVLocalizer localizer(defaults, {"zh-CN"});
        EXPECT_EQ(0, localizer.languageMode());
        localizer.setLanguageMode(wrong);
        EXPECT_EQ(wrong, defaults.stored);
        EXPECT_EQ(2, localizer.effectiveLanguageMode());
    }
    ORVLocalizer localizer(defaults, {"zh-CN"});
    localizer.setLanguageMode(1);
    EXPECT_EQ(1, defaults.stored);
    EXPECT_EQ("Language", localizer.stringForKey("language"));
    EXPECT_EQ("no_such_key", localizer.stringForKey("no_such_key"));
    EXPECT_EQ(1, ORVLocalizer(defaults, {"zh-CN"}).languageMode());
}

}  // namespace
