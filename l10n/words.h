#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

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
    std::string_view noSessionFiles;
};

namespace l10n {

extern const ORVWords kEnglishWords;
extern const ORVWords kSimplifiedChineseWords;

/// Returns the text with these values in the place of its placeholders (%@, %ld, %.0f), in turn;
/// "%%" becomes a percent sign.
std::string filled(std::string_view text, std::initializer_list<std::string> values);

}  // namespace l10n
