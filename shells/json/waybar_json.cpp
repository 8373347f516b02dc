// Writes the status item for status bars, which take its texts for markup.
// Tests: tests/ctl/brimletctl_test.cpp.

#include "shells/json/waybar_json.h"

#include <algorithm>

#include "app/status_title.h"
#include "text/json_writing.h"
#include "text/unicode.h"

namespace json {
namespace {

std::string escapedForPango(std::string_view text) {
    static constexpr std::pair<char, std::string_view> kEscapes[] = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    std::string escaped;
    for (const char c : text) {
        const auto* found = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                         [&](const auto& escape) { return escape.first == c; });
        escaped += found == std::end(kEscapes) ? std::string(1, c) : std::string(found->second);
    }
    return escaped;
}

std::string classFor(std::optional<double> percentage) {
    if (!percentage) {
        return "unknown";
    }
    return *percentage < 50   ? "low"
           : *percentage < 80 ? "medium"
           : *percentage < 95 ? "high"
                              : "full";
}

}  // namespace

std::string waybar(const ORVAppDelegate& delegate) {
    const ORVStatusItem& item = delegate.statusItem();
    std::string toolTip;
    for (const std::string& line : delegate.informationLines()) {
        toolTip += (toolTip.empty() ? "" : "\n") + escapedForPango(text::forTerminal(line));
    }
    return text::objectJSON({{"text", text::quotedJSON(escapedForPango(item.title))},
                             {"tooltip", text::quotedJSON(toolTip)},
                             {"class", text::quotedJSON(classFor(item.percentage))},
                             {"percentage", app::wholePercent(item.percentage.value_or(0))}});
}

}  // namespace json
