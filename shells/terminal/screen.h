#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/compaction_ledger.h"
#include "app/figures.h"
#include "l10n/languages.h"

/// Rows of styled text: what is drawn on a terminal's whole screen, and what is written line by
/// line. Text is measured in columns with the C library's table of widths, as curses does: any
/// other table would break frames.
namespace terminal {

/// The size of the terminal, and what it can show.
struct Screen {
    int columns = 80;
    int rows = 24;
    bool showsUnicode = true;  ///< Otherwise everything is written in ASCII.
};

/// Larger than any screen that a person looks at. Sizes are cut to these where they enter, because
/// a window's size is whatever the other end of the terminal says.
inline constexpr int kMostColumns = 2'000;
inline constexpr int kMostRows = 500;

/// Returns the size of the terminal on standard output, or 80 by 24 if there is none, and whether
/// text is UTF-8. Sets the process's locale for characters, so that columns can be counted.
Screen screenOfOutput();

/// Sets the process's locale for characters, and for nothing else. Returns whether text is UTF-8,
/// which it also is when the environment names no locale, or a UTF-8 locale that is not installed.
bool setUpCharacters();

struct Style {
    bool isReversed = false;
    bool isDimmed = false;
    bool isBold = false;
    app::Fullness fullness = app::Fullness::unknown;  ///< Becomes a colour where there are any.
    bool operator==(const Style&) const = default;
};

/// A text in one style.
struct Piece {
    std::string text;
    Style style = {};
    bool operator==(const Piece&) const = default;
};

/// A row from left to right.
using Row = std::vector<Piece>;

/// Adds more rows behind these.
void append(std::vector<Row>& rows, std::vector<Row> more);

/// Returns each row as a line, with the sequences that every terminal with colours understands if
/// it is to be coloured, without spaces at its end, and with a line feed.
std::string lines(const std::vector<Row>& rows, bool isColoured);

/// Cuts the row to this many columns, or fills it with spaces.
void fit(Row& row, int columns, const Screen& screen);

/// Returns a text in the form that the screen can show: valid UTF-8 without control characters and
/// without characters of unknown width. The functions below expect such text.
std::string shown(std::string_view text, const Screen& screen);

/// Makes all texts of a row such, and cuts the row to the screen's width.
void show(Row& row, const Screen& screen);

/// Returns the columns of a text: two for a wide character, none for a combining one.
int textColumns(std::string_view text);

/// Returns the longest beginning of a text that takes at most this many columns.
std::string_view beginning(std::string_view text, int columns);

/// Returns the text in at most this many columns, cut with an ellipsis.
std::string cut(std::string_view text, int columns, const Screen& screen);

/// Returns the text in exactly this many columns, cut or filled with spaces.
std::string fitted(std::string_view text, int columns, const Screen& screen);

/// Returns the piece this many times, and "" for a count below 1.
std::string repeated(std::string_view piece, int count);

// Pieces of which everything on a whole screen is laid out (drawing.cpp)

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
