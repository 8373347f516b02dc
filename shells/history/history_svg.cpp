// Draws a history as SVG: the columns of the plot become one stepped line.
// Tests: tests/shells/history_test.cpp.

#include <algorithm>
#include <cmath>

#include "shells/history/history.h"
#include "text/unicode.h"

namespace history {
namespace {

/// The edges of the plot inside the picture, in pixels. No column is narrower than a pixel.
constexpr int kLeft = 48;
constexpr int kRight = 624;
constexpr int kTop = 52;
constexpr int kBottom = 204;
constexpr int kWidth = kRight - kLeft;

constexpr std::string_view kBegin =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 640 240" width="640" height="240" role="img">)";

// The colours can be read on a light and on a dark background, because a page's own switch between
// the two need not reach a picture in it; on dark pages they only become brighter. A document that
// is opened by itself gets its background from color-scheme.
constexpr std::string_view kStyle = R"(<style>
svg{color-scheme:light dark}
text{font:12px system-ui,sans-serif;fill:#6e7781}
.title{font-size:14px;font-weight:600}
.grid{stroke:#6e7781;stroke-opacity:.35}
.area{fill:#3b82f6;fill-opacity:.2}
.line{fill:none;stroke:#3b82f6;stroke-width:1.5;stroke-linejoin:round}
.dashes{stroke:#c2680a;stroke-dasharray:3 3}
.marks{fill:#c2680a}
@media(prefers-color-scheme:dark){text{fill:#8b949e}.line{stroke:#60a5fa}.marks{fill:#e58a3c}}
</style>
)";

/// Writes a coordinate. The C library's functions would write the decimal point of the locale.
std::string tenths(double value) {
    const long rounded = std::lround(value * 10.0);
    return std::to_string(rounded / 10) + "." + std::to_string(rounded % 10);
}

std::string replaced(std::string_view text, std::string_view piece, std::string_view replacement) {
    std::string result;
    for (std::size_t at; (at = text.find(piece)) != text.npos;) {
        result.append(text.substr(0, at)).append(replacement);
        text.remove_prefix(at + piece.size());
    }
    return result.append(text);
}

/// Returns one line of valid UTF-8 without characters that XML 1.0 forbids. Markup is not escaped.
std::string oneLine(const std::string& title) {
    const std::string line = text::forTerminal(title);
    return replaced(replaced(line, "\uFFFE", "\uFFFD"), "\uFFFF", "\uFFFD");
}

/// Cuts a line to the width of the picture.
std::string fitted(const std::string& text) {
    constexpr int kColumns = 70;  // About 600 pixels of this font.
    constexpr std::size_t kMostBytes = 1000;
    if (text.size() <= kMostBytes && text::columnsOf(text) <= kColumns) {
        return text;
    }
    const auto most = text::wholeCharacters(std::string_view(text).substr(0, kMostBytes));
    return std::string(text::beginning(most, kColumns - 1)) + "…";
}

/// Writes a text that may hold markup.
std::string textAt(int x, int y, std::string_view attributes, const std::string& markup) {
    if (markup.empty()) {
        return {};
    }
    return "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" " +
           std::string(attributes) + ">" + markup + "</text>\n";
}

std::string path(std::string_view name, const std::string& steps) {
    return steps.empty() ? "" : "<path class=\"" + std::string(name) + "\" d=\"" + steps + "\"/>\n";
}

std::string drawn(const std::vector<Column>& columns) {
    std::string area;
    std::string line;
    std::string dashes;
    std::string marks;
    const std::string bottom = std::to_string(kBottom);
    const auto edge = [&](std::size_t i) {
        return kLeft + static_cast<double>(i) * kWidth / static_cast<double>(columns.size());
    };
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column& column = columns[i];
        const std::string x = tenths(edge(i));
        if (column.isCompacted) {
            dashes += "M" + x + " " + std::to_string(kTop) + "V" + bottom;
            marks += "M" + tenths(edge(i) - 4.0) + " " + std::to_string(kTop - 8) + "h8l-4 7z";
        }
        if (!column.level) {
            continue;
        }
        const bool begins = i == 0 || !columns[i - 1].level;
        const bool ends = i + 1 == columns.size() || !columns[i + 1].level;
        const std::string y = tenths(kBottom - *column.level * (kBottom - kTop) / 100.0);
        const std::string step = y + "H" + tenths(edge(i + 1));
        area += (begins ? "M" + x + " " + bottom : "") + "V" + step + (ends ? "V" + bottom : "");
        line += (begins ? "M" + x + " " : "V") + step;
    }
    return path("area", area) + path("dashes", dashes) + path("line", line) + path("marks", marks);
}

std::string grid() {
    std::string lines;
    std::string labels;
    for (const int level : {0, 50, 100}) {
        const int y = kBottom - level * (kBottom - kTop) / 100;
        lines +=
            "M" + std::to_string(kLeft) + " " + std::to_string(y) + "H" + std::to_string(kRight);
        labels += textAt(kLeft - 8, y + 4, "text-anchor=\"end\"", std::to_string(level) + "%");
    }
    return path("grid", lines) + labels;
}

}  // namespace

std::string svg(const std::vector<ORVHistoryEvent>& events, const std::string& title) {
    constexpr std::size_t kMarkWidth = 12;  // With the space after it.
    const std::string name = oneLine(title);
    const Span span = spanOf(events, kMinutePattern);
    std::vector<Column> columns = thinned(events, kWidth);
    thinMarks(columns, (kMarkWidth * columns.size() + kWidth - 1) / kWidth);
    std::optional<double> highest;
    for (const Column& column : columns) {
        highest = std::max(highest, column.level);
    }
    const Tally tally = tallyOf(events);
    const std::string answers = counted(tally.answers, "answer", "answers");
    const std::string compactions = counted(tally.compactions, "compaction", "compactions");
    const std::string description =
        "How full the context window was, from 0 to 100%: " + answers + ", the highest " +
        std::to_string(std::lround(highest.value_or(0.0))) + "%, " + compactions +
        (span.first.empty() ? "" : ", from " + span.first) +
        (span.last.empty() ? "" : ", to " + span.last) + ".";
    const std::string counts =
        tally.compactions > 0 ? answers + " · <tspan class=\"marks\">▼ " + compactions + "</tspan>"
                              : answers;

    constexpr int kTimes = kBottom + 22;
    return std::string(kBegin) + "<title>" + text::escapedForMarkup(name) + "</title>\n<desc>" +
           description + "</desc>\n" + std::string(kStyle) +
           textAt(kLeft, 26, "class=\"title\"", text::escapedForMarkup(fitted(name))) + grid() +
           drawn(columns) + textAt(kLeft, kTimes, "", span.first) +
           textAt((kLeft + kRight) / 2, kTimes, "text-anchor=\"middle\"", counts) +
           textAt(kRight, kTimes, "text-anchor=\"end\"", span.last) + "</svg>\n";
}

}  // namespace history
