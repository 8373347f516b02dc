// The table of languages. To add one, add a row here and a file of texts.
// Tests: tests/l10n/localizer_test.cpp.

#include "l10n/languages.h"

#include <algorithm>

#include "l10n/ORVLocalizer.h"
#include "text/bytes.h"

namespace l10n {
namespace {

/// A bare "zh", Taiwan and Hong Kong are not among them: their readers get English.
constexpr std::string_view kSimplifiedChineseTags[] = {"zh-hans", "zh-cn", "zh-sg"};

// The patterns are those of the Unicode locale data; the space before AM and PM is a narrow one
// that does not break, U+202F.
constexpr ORVLanguage kLanguages[] = {
    {ORVLanguageModeEnglish,
     "englishLanguageItem",
     "language_english",
     {},
     {"en_US", "%I:%M:%S\u202F%p"},
     ORVLocalizer::englishStrings,
     l10n::kEnglishWords},
    {ORVLanguageModeSimplifiedChinese,
     "chineseLanguageItem",
     "language_chinese",
     kSimplifiedChineseTags,
     {"zh_CN", "%H:%M:%S"},
     ORVLocalizer::simplifiedChineseStrings,
     l10n::kSimplifiedChineseWords},
};

}  // namespace

std::span<const ORVLanguage> languages() {
    return kLanguages;
}

const ORVLanguage& languageForTag(std::string_view tag) {
    std::string lowerCased(tag);
    std::transform(lowerCased.begin(), lowerCased.end(), lowerCased.begin(), text::lowerCasedASCII);
    const auto* found =
        std::find_if(std::begin(kLanguages), std::end(kLanguages), [&](const ORVLanguage& each) {
            return std::any_of(each.tagPrefixes.begin(), each.tagPrefixes.end(),
                               [&](auto prefix) { return lowerCased.starts_with(prefix); });
        });
    return found == std::end(kLanguages) ? kLanguages[0] : *found;
}

}  // namespace l10n
