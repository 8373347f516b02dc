#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/compaction_ledger.h"
#include "l10n/words.h"
#include "sessions/ORVHistoryEvent.h"
#include "shells/terminal/screen.h"

/// The pieces of which everything on a whole screen is laid out.
namespace terminal {

/// Draws a title over a gauge, which is filled from the left in proportion to the context window.
Row gaugeBar(const std::string& title, std::optional<double> percentage, const Screen& screen);

/// A line inside a frame: a text at the left and another one, such as a key, at the right.
struct Line {
    std::string left = {};
    std::string right = {};
    Style style = {};  ///< Of the left part.
    bool isSelected = false;
    bool isRule = false;  ///< A line across the frame in place of texts.
};

/// Returns the columns that the longest line needs.
int widestOf(const std::vector<Line>& lines);

/// Draws lines in a frame at the right edge of the screen, with room for this many columns inside,
/// if the screen has them. Without rules, the frame has sides only.
std::vector<Row> framed(const std::vector<Line>& lines, int inner, bool hasRules,
                        const Screen& screen);

/// Draws a task's history in this many rows. There are none when there is no history, or no room
/// for one that says anything.
std::vector<Row> plotRows(const ORVHistory& history, int rows, const ORVWords& words,
                          const Screen& screen);

/// Returns a row for each of the newest compactions, at most this many, the newest last.
std::vector<Row> ledgerRows(const std::vector<app::Compaction>& compactions, int rows,
                            const ORVWords& words, const Screen& screen);

/// What a key does, and the key as people write it.
struct Key {
    Key(std::string_view theDeed, std::string_view theKey) : deed(theDeed), key(theKey) {}
    std::string deed;
    std::string key;
};

/// Returns lines that tell what each key does.
std::vector<Line> keyLines(const std::vector<Key>& keys, const Screen& screen);

/// Draws the keys that matter most in one dimmed row.
Row keyHint(const std::vector<Key>& keys, const Screen& screen);

/// Cuts every row to the screen's width, or fills it, and leaves out the rows that do not fit.
void fitScreen(std::vector<Row>& rows, const Screen& screen);

}  // namespace terminal
