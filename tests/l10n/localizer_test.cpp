#include <gtest/gtest.h>

#include "l10n/ORVLocalizer.h"
#include "tests/support/MemoryDefaults.h"
#include "text/unicode.h"

namespace {

TEST(StringTablesTest, BothLanguagesHaveTheSameKeysAndPlaceholders) {
    const ORVStringTable& english = ORVLocalizer::englishStrings();
    const ORVStringTable& chinese = ORVLocalizer::simplifiedChineseStrings();
    ASSERT_EQ(59U, english.size());
    ASSERT_EQ(59U, chinese.size());
    const auto placeholders = [](const std::string& text) {
        std::string all;
        for (std::size_t i = text.find('%'); i != std::string::npos; i = text.find('%', i + 2)) {
            all += text.substr(i, text.find_first_of("@df%", i + 1) - i) + " ";
        }
        return all;
    };
    for (const auto& [key, text] : english) {
        SCOPED_TRACE(key);
        ASSERT_TRUE(chinese.contains(key));
        const std::string& other = chinese.find(key)->second;
        EXPECT_EQ(placeholders(text), placeholders(other));
        for (const std::string& each : {text, other}) {
            EXPECT_TRUE(text::isValidUTF8(each));
            EXPECT_EQ(each, text::forTerminal(each));
            EXPECT_FALSE(each.empty() || each.starts_with(' ') || each.ends_with(' '));
            EXPECT_EQ(std::string::npos, each.find("  "));
            EXPECT_EQ(std::string::npos, each.find("...")) << "an ellipsis is one character";
        }
    }
    EXPECT_EQ("English", chinese.find("language_english")->second);
    EXPECT_EQ("简体中文", english.find("language_chinese")->second);
}

TEST(LocalizerTest, TheFirstPreferredLanguageDecides) {
    struct Case {
        std::vector<std::string> languages;
        std::int64_t effective;
    };
    const Case kCases[] = {{{"zh-Hans-CN", "en-US"}, 2},
                           {{"en-US", "zh-Hans-CN"}, 1},
                           {{}, 1},
                           {{"ZH-CN"}, 2},
                           {{"zh-SG"}, 2},
                           {{"zh"}, 1},
                           {{"zh-Hant-TW"}, 1},
                           {{"zh-HK"}, 1},
                           {{"zh_CN"}, 1},
                           {{"zh-CN-x"}, 2},
                           {{"de"}, 1}};
    for (const Case& c : kCases) {
        MemoryDefaults defaults;
        const ORVLocalizer localizer(defaults, c.languages);
        EXPECT_EQ(c.effective, localizer.effectiveLanguageMode());
        EXPECT_EQ(c.effective == 2 ? "zh_CN" : "en_US", localizer.locale());
    }
}

TEST(LocalizerTest, TheChoiceIsStoredAndAWrongOneIsLeftAlone) {
    MemoryDefaults defaults;
    for (const std::int64_t wrong : {7, -1, 3}) {
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
