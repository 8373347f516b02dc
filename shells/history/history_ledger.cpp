// Writes compactions as a table whose columns are as wide as their widest figure.
// Tests: tests/shells/history_test.cpp.

#include <algorithm>
#include <array>

#include "app/figures.h"
#include "shells/history/history.h"
#include "text/timestamps.h"
#include "text/unicode.h"

namespace history {
namespace {

constexpr std::string_view kUnknown = "--";
constexpr const char* kMinuteOfYearPattern = "%m-%d %H:%M";

/// The columns of the table, from left to right.
enum Field : std::size_t { number, when, before, after, change, elapsed, answers, kFields };
using Line = std::array<std::string, kFields>;

bool isLeftAligned(std::size_t field) {
    return field == number || field == when || field == after || field == answers;
}

std::string percent(const std::optional<ORVContextUsage>& usage) {
    return usage ? app::wholePercent(usage->percentage()) + "%" : std::string(kUnknown);
}

std::string changeOf(const app::Compaction& compaction) {
    const auto shed = compaction.shedTokens();
    if (!shed) {
        return std::string(kUnknown);
    }
    return (*shed < 0 ? "+" : "-") + app::tokenCount(*shed < 0 ? -*shed : *shed);
}

std::string elapsedOf(const app::Compaction& compaction) {
    if (!compaction.elapsed) {
        return std::string(kUnknown);
    }
    return "+" + app::ageText(*compaction.elapsed);
}

Line lineOf(const app::Compaction& compaction, const char* timePattern, const ORVWords& words) {
    return {
        "C" + std::to_string(compaction.number),
        compaction.time ? text::localTime(*compaction.time, timePattern) : std::string(kUnknown),
        percent(compaction.before),
        percent(compaction.after),
        changeOf(compaction),
        elapsedOf(compaction),
        counted(compaction.answers, words.answer, words.answers)};
}

struct Table {
    std::vector<std::string> rows;
    int columns = 0;
};

/// Aligns the fields, and leaves out those that are "" in all lines.
Table aligned(const std::vector<Line>& lines, const PlotSize& size) {
    const std::string_view arrow = size.showsUnicode ? " → " : " -> ";
    Table table{std::vector<std::string>(lines.size())};
    for (std::size_t field = 0; field < kFields; ++field) {
        int width = 0;
        for (const Line& line : lines) {
            width = std::max(width, text::columnsOf(line[field]));
        }
        if (width == 0) {
            continue;
        }
        const std::string_view gap = field == number ? "" : field == after ? arrow : "  ";
        table.columns += width + text::columnsOf(gap);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string& text = lines[i][field];
            const std::string space(static_cast<std::size_t>(width - text::columnsOf(text)), ' ');
            table.rows[i].append(gap).append(isLeftAligned(field) ? text + space : space + text);
        }
    }
    return table;
}

}  // namespace

std::vector<std::string> ledger(const std::vector<app::Compaction>& compactions,
                                const PlotSize& size) {
    const auto most = static_cast<std::size_t>(std::max(size.rows, 0));
    const std::size_t first = compactions.size() - std::min(most, compactions.size());
    std::vector<Line> lines;
    Table table;
    for (const char* pattern : {kMinutePattern, kMinuteOfYearPattern}) {
        lines.clear();
        for (std::size_t i = first; i < compactions.size(); ++i) {
            lines.push_back(lineOf(compactions[i], pattern, size.words));
        }
        table = aligned(lines, size);
        if (table.columns <= size.columns) {
            break;
        }
    }
    for (const Field field : {answers, elapsed, when, change, after, before}) {
        if (table.columns <= size.columns) {
            break;
        }
        for (Line& line : lines) {
            line[field].clear();
        }
        table = aligned(lines, size);
    }
    for (std::string& row : table.rows) {
        row.resize(row.find_last_not_of(' ') + 1);
        if (table.columns > size.columns) {  // Only the numbers are left.
            row.resize(std::min(row.size(), static_cast<std::size_t>(std::max(size.columns, 0))));
        }
    }
    return std::move(table.rows);
}

}  // namespace history
