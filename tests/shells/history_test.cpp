#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include "shells/history/history.h"
#include "shells/terminal/screen.h"
#include "text/timestamps.h"
#include "text/unicode.h"

namespace {

using Events = std::vector<ORVHistoryEvent>;

constexpr int kWindow = 1'000'000;

ORVHistoryEvent point(int tokens, std::string at = "2026-11-24T16:45:21.002Z") {
    return {std::move(at), ORVContextUsage(tokens, kWindow)};
}

ORVHistoryEvent compaction(std::string at = "2026-11-24T18:02:00Z") {
    return {std::move(at), std::nullopt};
}

/// Returns a point for each percentage, and a compaction for each negative number.
Events events(const std::vector<int>& percentages) {
    Events result;
    for (const int percentage : percentages) {
        result.push_back(percentage < 0 ? compaction() : point(percentage * kWindow / 100));
    }
    return result;
}

std::size_t count(std::string_view text, std::string_view piece) {
    std::size_t found = 0;
    for (auto at = text.find(piece); at != text.npos; at = text.find(piece, at + piece.size())) {
        ++found;
    }
    return found;
}

std::string joined(const std::vector<history::PlotRow>& rows) {
    std::string text;
    for (const history::PlotRow& row : rows) {
        text += row.label + row.text + "\n";
    }
    return text;
}

/// Whether elements, attributes and references are well-formed. It knows only the XML of a picture:
/// no comment, no declaration, no ">" in a value.
bool isWellFormed(const std::string& xml) {
    std::vector<std::string> open;
    std::istringstream pieces(xml);
    std::string text, tag;
    std::getline(pieces, text, '<');
    bool isGood = text.empty() && count(xml, "<") == count(xml, ">") &&
                  count(xml, "&") == count(xml, "&amp;") + count(xml, "&lt;") + count(xml, "&gt;") +
                                         count(xml, "&quot;");
    while (std::getline(pieces, tag, '>')) {
        std::getline(pieces, text, '<');
        const std::string name = tag.substr(0, tag.find(' '));
        isGood = isGood && count(tag, "\"") == 2 * count(tag, "=\"");
        if (!open.empty() && name == '/' + open.back()) {
            open.pop_back();
        } else if (!tag.ends_with('/')) {
            open.push_back(name);
        }
    }
    return isGood && open.empty();
}

/// A column of rising points shows its last one, a column of falling points its first one. When
/// each column's first point follows the last one of the column before, no point is missing or
/// moved.
TEST(HistoryTest, ColumnsPartThePointsInOrderAndKeepTheHighest) {
    for (const int points : {1, 2, 3, 59, 60, 61, 119, 10'000}) {
        for (const std::size_t room : {std::size_t{1}, std::size_t{7}, std::size_t{60}}) {
            SCOPED_TRACE(std::to_string(points) + " in " + std::to_string(room));
            Events rising;
            for (int i = 0; i < points; ++i) {
                rising.push_back(point(i + 1));
            }
            const auto last = history::thinned(rising, room);
            const auto first = history::thinned(Events(rising.rbegin(), rising.rend()), room);
            ASSERT_EQ(std::min(static_cast<std::size_t>(points), room), last.size());
            ASSERT_EQ(last.size(), first.size());
            long before = 0;
            for (std::size_t i = 0; i < last.size(); ++i) {
                EXPECT_EQ(before + 1, points + 1 - std::lround(*first[i].level * kWindow / 100));
                before = std::lround(*last[i].level * kWindow / 100);
            }
            EXPECT_EQ(points, before);
        }
    }
}

TEST(HistoryTest, EveryCompactionIsMarkedWhereThereIsRoom) {
    const std::vector<int> kSeries[] = {
        {10, 90, -1, 10},         {-1}, {-1, -1, -1},   {-1, 5, -1, -1, 7, -1},
        {50, -1, 50, -1, 50, -1}, {50}, {120, -1, 120},
    };
    for (const auto& series : kSeries) {
        const Events all = events(series);
        const auto compactions = static_cast<std::size_t>(
            std::count_if(series.begin(), series.end(), [](int p) { return p < 0; }));
        for (const int columns : {20, 80, 200}) {
            EXPECT_EQ(compactions, count(history::plot(all, {columns, 12, true})[10].text, "▼"));
            EXPECT_EQ(compactions, count(history::plot(all, {columns, 12, false})[10].text, "v"));
        }
        const std::string picture = history::svg(all, "");
        EXPECT_EQ(compactions, count(picture, "h8l-4 7z"));
        EXPECT_EQ(compactions > 0, count(picture, "▼ " + std::to_string(compactions)) == 1);
    }
    for (const int compactions : {26, 208, 10'000}) {
        std::vector<int> dense;
        for (int i = 0; i < compactions; ++i) {
            dense.insert(dense.end(), {97, -1});
        }
        const auto rows = history::plot(events(dense), {});
        EXPECT_EQ(0U, count(rows[10].text, "▼─▼") + count(rows[10].text, "▼▼")) << rows[10].text;
        EXPECT_LE(12U, count(rows[10].text, "▼")) << rows[10].text;
        EXPECT_NE(rows[11].text.npos, rows[11].text.find("▼ " + std::to_string(compactions)));
        const std::string picture = history::svg(events(dense), "");
        EXPECT_GE(48U, count(picture, "h8l-4 7z")) << "12 pixels each";
        EXPECT_LE(20U, count(picture, "h8l-4 7z"));
        EXPECT_GT(100'000U, picture.size());
        const std::string told = std::to_string(compactions) + " answers, the highest 97%, " +
                                 std::to_string(compactions) + " compactions";
        EXPECT_NE(picture.npos, picture.find(told));
    }
    for (const std::size_t at : {0U, 1U, 4998U, 5000U, 9999U}) {
        std::vector<int> series(10'000, 50);
        series[at] = -1;
        EXPECT_EQ(1U, count(history::plot(events(series), {})[10].text, "▼")) << at;
    }
}

TEST(HistoryTest, APlotOfAnySizeStaysInIt) {
    terminal::setUpCharacters();  // Counting columns needs the locale.
    Events hostile = events({0, 3, 100, -1, -1, 250, -1, 40});
    hostile.front().at = "\x1b[31m\xFF";
    hostile.back().at = "2026-11-24T16:45:\x1b[31m重";
    const Events kSeries[] = {hostile, events({50}), events({-1})};
    for (const Events& series : kSeries) {
        for (int columns = 1; columns < 50; ++columns) {
            for (int rows = 1; rows < 9; ++rows) {
                for (const bool unicode : {true, false}) {
                    const auto plot = history::plot(series, {columns, rows, unicode});
                    EXPECT_EQ(static_cast<std::size_t>(rows), plot.size());
                    for (const history::PlotRow& row : plot) {
                        EXPECT_LE(terminal::textColumns(row.label + row.text), columns);
                        EXPECT_EQ(row.text, text::forTerminal(row.text));
                        EXPECT_FALSE(row.text.ends_with(' '));
                        EXPECT_TRUE(unicode || std::all_of(row.text.begin(), row.text.end(),
                                                           [](char c) { return c > 0; }));
                    }
                }
            }
        }
    }
    EXPECT_TRUE(history::plot({}, {}).empty());
    EXPECT_TRUE(history::plot(hostile, {0, 5}).empty());
    EXPECT_TRUE(history::plot(hostile, {5, -1}).empty());
    EXPECT_FALSE(history::plot(hostile, {1 << 30, 1 << 30}).empty());
}

TEST(HistoryTest, BarsStandAsHighAsTheirUsage) {
    const auto blocks = [](int tokens, int rows) {
        return joined(history::plot({point(tokens, "")}, {1, rows, true}));
    };
    EXPECT_EQ("▄\n", blocks(kWindow / 2, 1));
    EXPECT_EQ("\n█\n", blocks(kWindow / 2, 2));
    EXPECT_EQ("\n\n▄\n█\n█\n─\n", blocks(kWindow / 2, 6));
    EXPECT_EQ("\n\n\n\n▁\n─\n", blocks(1, 6));
    EXPECT_EQ("█\n█\n█\n█\n█\n─\n", blocks(2 * kWindow, 6));

    const auto rows = history::plot(events({95, -1, 5}), {25, 12, false});
    EXPECT_EQ("100%+::::::::::|\n", joined({rows[0]}));
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ('|', rows[i].text[10]) << "above the bar after the compaction, row " << i;
        EXPECT_NEAR(95.0 - 10.0 * static_cast<double>(i), *rows[i].level, 1e-9);
    }
    EXPECT_EQ(" 50%+##########|\n", joined({rows[5]}));
    EXPECT_EQ("  0%+----------v---------\n", joined({rows[10]}));
    EXPECT_FALSE(rows[10].level || rows[11].level);
}

TEST(HistoryTest, LocalTimesAndCountsStandBelowThePlotWhereTheyFit) {
    struct Case {
        const char *first, *last;
        int columns;
        const char* row;  ///< Null when there is no such row.
    };
    const char* const kMorning = "2026-11-24T08:05:21.002Z";
    const char* const kEvening = "2026-11-24T18:02:00Z";
    const char* const kNextDay = "2026-11-25T03:00:00+08:00";
    const Case kCases[] = {
        {kMorning, kEvening, 80,
         "     2026-11-24 13:35        2 answers · ▼ 1 compaction         2026-11-24 23:32"},
        {kMorning, kEvening, 60, "     2026-11-24 13:35    2 answers · ▼ 1    2026-11-24 23:32"},
        {kMorning, kEvening, 45, "     13:35  2 answers · ▼ 1 compaction  23:32"},
        {kMorning, kEvening, 34, "     13:35  2 answers · ▼ 1  23:32"},
        {kMorning, kNextDay, 34, "     11-24  2 answers · ▼ 1  11-25"},
        {kMorning, kEvening, 33, "      2 answers · ▼ 1 compaction"},
        {kMorning, kEvening, 30, "          2 answers · ▼ 1"},
        {kMorning, kEvening, 19, "  2 answers · ▼ 1"},
        {kMorning, kEvening, 14, "  2 answers"},
        {kMorning, kEvening, 8, nullptr},
        {kMorning, kMorning, 40, "     2026-11-24 13:35  2 answers · ▼ 1"},
        {kMorning, "", 40, "     2026-11-24 13:35  2 answers · ▼ 1"},
        {"", kEvening, 40, "       2 answers · ▼ 1  2026-11-24 23:32"},
        {"2026-11-24 08:05:21", "\x1b[31m", 22, "      2 answers · ▼ 1"},
    };
    setenv("TZ", "IST-5:30", 1);
    for (const Case& c : kCases) {
        SCOPED_TRACE(std::string(c.first) + " " + std::to_string(c.columns));
        const Events all = {point(1, c.first), compaction(), point(2, c.last)};
        const auto rows = history::plot(all, {c.columns, 4});
        ASSERT_EQ(c.row == nullptr, rows[2].level.has_value() || rows[3].text.starts_with("─"));
        EXPECT_TRUE(!c.row || c.row == rows[3].label + rows[3].text) << rows[3].text;
    }
    const ORVWords& chinese = l10n::kSimplifiedChineseWords;
    EXPECT_EQ("     23:32  1 次回答 · ▼ 1 次压缩  22:15\n",
              joined({history::plot(events({-1, 5}), {40, 4, true, chinese})[3]}));
    EXPECT_NE(std::string::npos, history::svg({point(1, kMorning)}, "").find(">2026-11-24 13:35<"));
}

/// Returns a line for each compaction: number, before > after, elapsed seconds, answers.
std::string told(const std::vector<app::Compaction>& compactions) {
    std::ostringstream text;
    const auto put = [&](auto figure) { figure ? text << figure->inputTokens() : text << "--"; };
    for (const app::Compaction& each : compactions) {
        text << each.number << ": ";
        put(each.before);
        text << " > ";
        put(each.after);
        text << " " << each.shedTokens().value_or(0) << " "
             << (each.elapsed ? each.elapsed->count() : -1) << "s " << each.answers << "\n";
    }
    return text.str();
}

TEST(HistoryTest, TheLedgerTellsWhatEachCompactionDid) {
    Events all = {point(500, "2026-11-24T08:00:00Z"),      point(900, "2026-11-24T08:10:00Z"),
                  compaction("2026-11-24T08:20:00Z"),      point(90, "2026-11-24T08:21:00Z"),
                  point(91, "2026-11-24T08:22:00Z"),       compaction("2026-11-24T09:20:00.9Z"),
                  compaction("2026-11-24T09:20:30+00:00"), point(95, "yesterday"),
                  compaction("2026-11-24T09:00:00Z"),      point(96, "2026-11-24T09:30:00Z"),
                  compaction("9999-99-99T99:99:99Z"),      compaction("2026-11-24T10:00:00Z"),
                  point(7, "2026-11-24T10:00:00Z")};
    auto compactions = app::compactionsOf(all);
    const std::string kLast = "6: -- > 7 0 -1s 0\n";
    EXPECT_EQ(
        "1: 900 > 90 810 1200s 2\n2: 91 > -- 0 3600s 2\n3: -- > 95 0 30s 0\n"
        "4: 95 > 96 -1 -1s 1\n5: 96 > -- 0 -1s 1\n" +
            kLast,
        told(compactions));
    app::leaveOutOlder(*text::timeOf("2026-11-24T09:20:00Z"), all, compactions);
    EXPECT_EQ("2: 91 > -- 0 3600s 2\n3: -- > 95 0 30s 0\n" + kLast, told(compactions));
    EXPECT_EQ(5U, all.size());
    EXPECT_EQ("1: -- > -- 0 -1s 0\n", told(app::compactionsOf({compaction("")})));
    EXPECT_EQ("", told(app::compactionsOf({point(1)})) + told(app::compactionsOf({})));
}

TEST(HistoryTest, TheLedgerIsATableOfAnyWidth) {
    setenv("TZ", "IST-5:30", 1);
    Events all;
    for (int i = 0; i < 9; ++i) {
        all.push_back(compaction());
    }
    all.insert(all.end(),
               {point(970'000, "2026-11-24T18:03:00Z"), compaction("2026-11-24T20:44:00Z"),
                point(93'700), compaction(""), point(193'700)});
    const auto compactions = app::compactionsOf(all);
    const auto lines = [&](int columns, int rows, bool unicode) {
        std::string text;
        for (const auto& line : history::ledger(compactions, {columns, rows, unicode})) {
            text += line + "\n";
        }
        return text;
    };
    EXPECT_EQ(
        "C9   2026-11-24 23:32   -- → 97%       --  +0s  0 answers\n"
        "C10  2026-11-25 02:14  97% → 9%   -876.3k  +2h  1 answer\n"
        "C11  --                 9% → 19%    +100k   --  1 answer\n",
        lines(58, 3, true));
    EXPECT_EQ(
        "C10  11-25 02:14  97% -> 9%   -876.3k  +2h  1 answer\n"
        "C11  --            9% -> 19%    +100k   --  1 answer\n",
        lines(56, 2, false));
    EXPECT_EQ("C11  --  9% → 19%  +100k  --\n", lines(36, 1, true));
    EXPECT_EQ("C10  97% → 9%\nC11   9% → 19%\n", lines(20, 2, true));
    EXPECT_EQ("C1\nC1\n", lines(2, 2, true));
    EXPECT_EQ("", lines(80, 0, true) + lines(80, -1, true));
    EXPECT_EQ(11U, count(lines(80, 1 << 30, true), "\n"));
    terminal::setUpCharacters();
    for (int columns = 0; columns <= 200; ++columns) {
        for (const std::string& line : history::ledger(compactions, {columns, 20, true})) {
            EXPECT_LE(terminal::textColumns(line), columns) << line;
            EXPECT_TRUE(text::isValidUTF8(line) && !line.ends_with(' ')) << line;
        }
    }
}

TEST(HistoryTest, ThePictureShowsThePointsInOrder) {
    EXPECT_EQ(1U,
              count(history::svg(events({10, 95, 4, 250, 0, 50}), ""),
                    "class=\"line\" d=\"M48.0 188.8H144.0V59.6H240.0V197.9H336.0V52.0H432.0V204.0"
                    "H528.0V128.0H624.0\""));
    // Between two compactions without a usage nothing is drawn.
    const std::string gap = history::svg(events({50, 100, -1, -1, 50}), "");
    EXPECT_EQ(1U, count(gap, "\"M48.0 128.0H192.0V52.0H336.0M480.0 128.0H624.0\""));
    EXPECT_EQ(1U, count(gap, "\"M48.0 204V128.0H192.0V52.0H336.0V204M480.0 204V128.0H624.0V204\""));
}

TEST(HistoryTest, ThePictureIsXMLWhateverTheTitle) {
    const std::pair<std::string, std::string> kCases[] = {
        {"Fix the tests", "Fix the tests"},
        {"a<b> & \"c\" ]]>", "a&lt;b&gt; &amp; &quot;c&quot; ]]&gt;"},
        {"</title><script>", "&lt;/title&gt;&lt;script&gt;"},
        {std::string("a\0b\x1b\n\x7f", 6) + "\u0085z", "a b    z"},
        {"\uFFFE \uFFFF\uFFFF \xED\xA0\x80", "\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD\uFFFD"},
        {"重构\xFF🚀\xE2\x82", "重构\uFFFD🚀\uFFFD"},
        {"", ""},
    };
    for (const auto& [title, written] : kCases) {
        const std::string picture = history::svg(events({5, -1, 250}), title);
        EXPECT_TRUE(isWellFormed(picture) && text::isValidUTF8(picture)) << picture;
        EXPECT_NE(picture.npos, picture.find("<title>" + written + "</title>")) << picture;
        EXPECT_EQ(title.empty() ? 0U : 1U,
                  count(picture, "class=\"title\">" + written + "</text>"));
    }
    for (const std::string piece : {"W", "重", "é", "<", "\u0301", "\xFF"}) {
        std::string title = piece;
        while (title.size() < 9'000) {
            title += title;
        }
        const std::string picture = history::svg({}, title);
        EXPECT_TRUE(isWellFormed(picture) && text::isValidUTF8(picture)) << piece;
        EXPECT_EQ(1U, count(picture, "…</text>")) << piece;
    }
}

}  // namespace
