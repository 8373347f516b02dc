#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "platform/time_of_day.h"

/// Texts by key. Every language has the same 59 keys; some belong to a folder-access flow that
/// looks up none of them so far.
using ORVStringTable = std::map<std::string, std::string, std::less<>>;

/// The numbers are stored, and are the tags of the language menu.
enum ORVLanguageMode : std::int64_t {
    ORVLanguageModeSystem = 0,
    ORVLanguageModeEnglish = 1,
    ORVLanguageModeSimplifiedChinese = 2,
};

/// A language in which everything can be shown. A further one is a row of the table in
/// languages.cpp and a file of texts.
struct ORVLanguage {
    ORVLanguageMode mode;
    std::string_view menuItem;  ///< Name of its item in the language menu.
    std::string_view nameKey;   ///< Key of the item's text, which is the same in every language.

    /// Lower-case beginnings of the language tags that stand for it. The first language of the
    /// table has none: it stands for every tag that no other one does.
    std::span<const std::string_view> tagPrefixes;

    ORVTimeFormat timeFormat;
    const ORVStringTable& (*strings)();
};

namespace l10n {

/// In the order of the menu.
std::span<const ORVLanguage> languages();

/// The language for a tag such as "zh-Hans-CN"; the first one for a tag of no language.
const ORVLanguage& languageForTag(std::string_view tag);

}  // namespace l10n
