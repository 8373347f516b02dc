// The names of a template, and how its text is taken to pieces. Tests: tests/app/template_test.cpp.

#include "app/ORVTemplate.h"

#include <algorithm>

#include "app/age.h"
#include "app/status_title.h"
#include "text/unicode.h"

namespace {

constexpr const char* kUnknown = "--";

std::string compactions(const ORVSessionSnapshot& snapshot) {
    const bool isKnown = snapshot.compactionStatus() == ORVCompactionStatusValid;
    return isKnown ? std::to_string(snapshot.compactionCount()) : kUnknown;
}

std::string left(const ORVContextUsage& usage) {
    return std::to_string(std::max<std::int64_t>(0, usage.contextWindow() - usage.inputTokens()));
}

using Values = ORVTemplateValues;
using Snapshot = ORVSessionSnapshot;
using Usage = ORVContextUsage;

/// A name and the function that returns its value; exactly one of the three is set.
struct Name {
    std::string_view name;
    std::string (*ofValues)(const Values&) = nullptr;
    std::string (*ofTask)(const Snapshot&, const Values&) = nullptr;
    std::string (*ofUsage)(const Usage&) = nullptr;
};

constexpr Name kNames[] = {
    {"status", [](const Values& v) { return v.status; }},
    {"title",
     [](const Values& v) { return v.snapshot ? v.snapshot->title() : v.titleWithoutTask; }},
    {"percent", nullptr, nullptr, [](const Usage& u) { return app::wholePercent(u.percentage()); }},
    {"compactions", nullptr, [](const Snapshot& s, const Values&) { return compactions(s); }},
    {"used", nullptr, nullptr, [](const Usage& u) { return std::to_string(u.inputTokens()); }},
    {"window", nullptr, nullptr, [](const Usage& u) { return std::to_string(u.contextWindow()); }},
    {"left", nullptr, nullptr, left},
    {"bar", nullptr, nullptr, [](const Usage& u) { return app::bar(u.percentage()); }},
    {"updated", nullptr,
     [](const Snapshot& s, const Values& v) {
         return platform::mediumTimeOfDay(s.lastUpdated(), v.timeFormat);
     }},
    {"age", nullptr,
     [](const Snapshot& s, const Values& v) { return app::ageText(s.lastUpdated(), v.now); }},
    {"id", nullptr, [](const Snapshot& s, const Values&) { return s.threadID(); }},
    {"folder", [](const Values& v) { return v.folder.value_or(kUnknown); }},
    {"file", nullptr, [](const Snapshot& s, const Values&) { return s.fileURL(); }},
};

const Name* findName(std::string_view name) {
    const auto* found = std::find_if(std::begin(kNames), std::end(kNames),
                                     [&](const Name& each) { return each.name == name; });
    return found == std::end(kNames) ? nullptr : found;
}

std::string valueOf(const Name& name, const Values& values) {
    if (name.ofValues) {
        return name.ofValues(values);
    }
    if (!values.snapshot) {
        return kUnknown;
    }
    if (name.ofTask) {
        return name.ofTask(*values.snapshot, values);
    }
    const Usage* usage = app::shownUsage(*values.snapshot);
    return usage ? name.ofUsage(*usage) : kUnknown;
}

}  // namespace

std::optional<ORVTemplate> ORVTemplate::parse(std::string_view text) {
    ORVTemplate result;
    while (!text.empty()) {
        const std::size_t brace = std::min(text.find_first_of("{}"), text.size());
        std::string plain(text.substr(0, brace));
        text.remove_prefix(brace);
        if (text.starts_with("{{") || text.starts_with("}}")) {
            plain += text.front();
            text.remove_prefix(2);
        } else if (!text.empty()) {
            const std::size_t end = text.find('}');
            const std::string_view name =
                end == std::string_view::npos ? text : text.substr(1, end == 0 ? 0 : end - 1);
            // A single "}" gives an empty name here, and a "{" without an end the rest of the text;
            // neither is in the table.
            if (!findName(name)) {
                return std::nullopt;
            }
            result.pieces_.push_back({plain, false});
            result.pieces_.push_back({std::string(name), true});
            text.remove_prefix(end + 1);
            continue;
        }
        result.pieces_.push_back({plain, false});
    }
    return result;
}

std::string ORVTemplate::names() {
    std::string names;
    for (const Name& each : kNames) {
        names += (names.empty() ? "{" : ", {") + std::string(each.name) + "}";
    }
    return names;
}

bool ORVTemplate::wants(std::string_view name) const {
    return std::any_of(pieces_.begin(), pieces_.end(),
                       [&](const Piece& piece) { return piece.isName && piece.text == name; });
}

std::string ORVTemplate::filled(const ORVTemplateValues& values) const {
    std::string line;
    for (const Piece& piece : pieces_) {
        line +=
            piece.isName ? text::forTerminal(valueOf(*findName(piece.text), values)) : piece.text;
    }
    return line;
}
