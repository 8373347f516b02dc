#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "platform/locale.h"

/// The words that a terminal needs beside the texts of the menu: about keys, the heads of tables,
/// and what to do where nothing is shown. A language without words gets the English ones.
struct ORVWords {
    // Keys.
    std::string_view move, choose, open, back, page, ends, helpers, keys, quit;

    // Heads of the columns of a table of tasks.
    std::string_view id, status, age, folder, title, model, helperCount;

    // What a history counts, for one and for several of them.
    std::string_view answer, answers, compaction, compactions;

    // Rate limits. "%@" stands for a time of day, then for an age.
    std::string_view resetsAt, asOf;

    /// What to do where no task is shown; "%@" stands for a call of brimletctl.
    std::string_view tryCall;
    std::string_view noTasks, noSessionFiles;
};

/// Texts by key. Every language has the same 59 keys. Some are for a dialogue about access to
/// folders, which the program does not have so far.
using ORVStringTable = std::map<std::string, std::string, std::less<>>;

/// The user's choice of a language. The numbers are stored and are the tags of the menu's items.
enum ORVLanguageMode : std::int64_t {
    ORVLanguageModeSystem = 0,
    ORVLanguageModeEnglish = 1,
    ORVLanguageModeSimplifiedChinese = 2,
};

/// A language in which everything can be shown. To add one, add a row to the table in languages.cpp
/// and a file of texts.
struct ORVLanguage {
    ORVLanguageMode mode;
    std::string_view menuItem;  ///< The name of its item in the language menu.
    std::string_view nameKey;   ///< The key of the item's text, the same text in every language.

    /// A system language whose tag begins with one of these, in lower case, is shown in this
    /// language; a beginning may end inside of a subtag. The first language of the table has none:
    /// it is shown for every other tag.
    std::span<const std::string_view> tagPrefixes;

    ORVTimeFormat timeFormat;
    const ORVStringTable& (*strings)();
    const ORVWords& words;
};

namespace l10n {

/// Returns all languages in the order of the menu.
std::span<const ORVLanguage> languages();

/// Returns the language for a tag such as "zh-Hans-CN": the first one for an unknown tag.
const ORVLanguage& languageForTag(std::string_view tag);

extern const ORVWords kEnglishWords;
extern const ORVWords kSimplifiedChineseWords;

/// Returns the text with these values in the place of its placeholders (%@, %ld, %.0f), in turn;
/// "%%" becomes a percent sign.
std::string filled(std::string_view text, std::initializer_list<std::string> values);

}  // namespace l10n
