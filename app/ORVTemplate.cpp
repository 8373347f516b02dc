// The names of a template, and how its text is taken to pieces. Tests: tests/app/template_test.cpp.

#include "app/ORVTemplate.h"

#include <algorithm>

#include "app/figures.h"
#include "text/unicode.h"

namespace {

constexpr const char* kUnknown = "--";

using Values = ORVTemplateValues;
using Snapshot = ORVSessionSnapshot;
using Usage = ORVContextUsage;
using Agent = ORVAgentFacts;
using View = ORVTaskView;

std::string compactions(const Snapshot& snapshot) {
    const bool isKnown = snapshot.compactionStatus() == ORVCompactionStatusValid;
    return isKnown ? std::to_string(snapshot.compactionCount()) : kUnknown;
}

std::string left(const Usage& usage) {
    return std::to_string(std::max<std::int64_t>(0, usage.contextWindow() - usage.inputTokens()));
}

std::string numberOrUnknown(std::optional<std::int64_t> number) {
    return number ? std::to_string(*number) : kUnknown;
}

std::string textOrUnknown(const std::string& text) {
    return text.empty() ? kUnknown : text;
}

/// A name, the function that returns its value (exactly one of these is set), and what the function
/// needs beside the figures.
struct Name {
    std::string_view name;
    std::string (*ofValues)(const Values&) = nullptr;
    std::string (*ofTask)(const View&, const Values&) = nullptr;
    std::string (*ofUsage)(const Usage&) = nullptr;
    std::string (*ofAgent)(const Agent&, const Values&) = nullptr;
    bool ORVTaskWants::*wanted = nullptr;
};

constexpr Name kNames[] = {
    {.name = "status", .ofValues = [](const Values& v) { return v.status; }},
    {.name = "title",
     .ofValues =
         [](const Values& v) {
             return v.view && v.view->snapshot ? v.view->snapshot->title() : v.titleWithoutTask;
         }},
    {.name = "percent",
     .ofUsage = [](const Usage& u) { return app::wholePercent(u.percentage()); }},
    {.name = "compactions",
     .ofTask = [](const View& t, const Values&) { return compactions(*t.snapshot); }},
    {.name = "used", .ofUsage = [](const Usage& u) { return std::to_string(u.inputTokens()); }},
    {.name = "window", .ofUsage = [](const Usage& u) { return std::to_string(u.contextWindow()); }},
    {.name = "left", .ofUsage = left},
    {.name = "bar", .ofUsage = [](const Usage& u) { return app::bar(u.percentage()); }},
    {.name = "updated",
     .ofTask =
         [](const View& t, const Values& v) {
             return platform::mediumTimeOfDay(t.changedAt, v.timeFormat);
         }},
    {.name = "age",
     .ofTask = [](const View& t,
                  const Values& v) { return app::ageText(app::age(t.changedAt, v.now)); }},
    {.name = "id", .ofTask = [](const View& t, const Values&) { return t.snapshot->threadID(); }},
    {.name = "shortid",
     .ofTask = [](const View& t, const Values&) { return textOrUnknown(t.shortID); },
     .wanted = &ORVTaskWants::shortID},
    {.name = "folder",
     .ofTask = [](const View& t, const Values&) { return t.folder.value_or(kUnknown); },
     .wanted = &ORVTaskWants::folder},
    {.name = "file", .ofTask = [](const View& t, const Values&) { return t.snapshot->fileURL(); }},
    {.name = "model",
     .ofAgent = [](const Agent& a, const Values&) { return a.model.value_or(kUnknown); },
     .wanted = &ORVTaskWants::agent},
    {.name = "effort",
     .ofAgent = [](const Agent& a, const Values&) { return a.effort.value_or(kUnknown); },
     .wanted = &ORVTaskWants::agent},
    {.name = "agentleft",
     .ofAgent = [](const Agent& a, const Values&) { return numberOrUnknown(a.leftPercent); },
     .wanted = &ORVTaskWants::agent},
    {.name = "total",
     .ofAgent = [](const Agent& a, const Values&) { return numberOrUnknown(a.totalTokens); },
     .wanted = &ORVTaskWants::agent},
    {.name = "limits",
     .ofAgent =
         [](const Agent& a, const Values& v) {
             return textOrUnknown(app::rateLimitsText(a.rateLimits, v.now));
         },
     .wanted = &ORVTaskWants::agent},
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
    if (!values.view || !values.view->snapshot) {
        return kUnknown;
    }
    if (name.ofTask) {
        return name.ofTask(*values.view, values);
    }
    if (name.ofAgent) {
        return values.view->agent ? name.ofAgent(*values.view->agent, values) : kUnknown;
    }
    const Usage* usage = values.view->usage();
    return usage ? name.ofUsage(*usage) : kUnknown;
}

/// Whether a value loses its meaning when its end is cut off.
bool isFigure(const Name& name) {
    static constexpr std::string_view kTexts[] = {"title", "status", "bar",    "id",    "folder",
                                                  "file",  "model",  "effort", "limits"};
    return std::find(std::begin(kTexts), std::end(kTexts), name.name) == std::end(kTexts);
}

std::string fitted(const Name& name, const std::string& value, int columns) {
    if (columns == 0 || text::columnsOf(value) <= columns) {
        return value;
    }
    return isFigure(name) ? "…" : std::string(text::beginning(value, columns - 1)) + "…";
}

/// Reads the number after the colon of a name; 0 when it is not a width.
int widthIn(std::string_view digits) {
    constexpr std::size_t kMostDigits = 5;
    const bool isNumber = !digits.empty() && digits.size() <= kMostDigits &&
                          digits.find_first_not_of("0123456789") == std::string_view::npos;
    return isNumber ? std::stoi(std::string(digits)) : 0;
}

}  // namespace

std::optional<ORVTemplate> ORVTemplate::parse(std::string_view text, std::string* mistake) {
    ORVTemplate result;
    while (!text.empty()) {
        const std::size_t brace = std::min(text.find_first_of("{}"), text.size());
        std::string plain = text::withInvalidBytesReplaced(text.substr(0, brace));
        text.remove_prefix(brace);
        if (text.starts_with("{{") || text.starts_with("}}")) {
            plain += text.front();
            text.remove_prefix(2);
        } else if (!text.empty()) {
            const std::size_t end = text.find('}');
            if (end == 0 || end == std::string_view::npos) {
                *mistake = text.front() == '}' ? "} without {" : "{ without }";
                return std::nullopt;
            }
            const std::string_view written = text.substr(1, end - 1);
            const std::size_t colon = written.find(':');
            const std::string_view name = written.substr(0, colon);
            const bool hasWidth = colon != std::string_view::npos;
            const int columns = hasWidth ? widthIn(written.substr(colon + 1)) : 0;
            if (!findName(name) || (hasWidth && columns == 0)) {
                *mistake =
                    (findName(name) ? "the width in {" : "the name {") + std::string(written) + "}";
                return std::nullopt;
            }
            result.pieces_.push_back({plain});
            result.pieces_.push_back({std::string(name), true, columns});
            text.remove_prefix(end + 1);
            continue;
        }
        result.pieces_.push_back({plain});
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

ORVTaskWants ORVTemplate::wants() const {
    ORVTaskWants wants;
    for (const Piece& piece : pieces_) {
        if (piece.isName && findName(piece.text)->wanted) {
            wants.*findName(piece.text)->wanted = true;
        }
    }
    return wants;
}

std::string ORVTemplate::filled(const ORVTemplateValues& values) const {
    std::string line;
    for (const Piece& piece : pieces_) {
        if (piece.isName) {
            const Name& name = *findName(piece.text);
            line += fitted(name, text::forTerminal(valueOf(name, values)), piece.columns);
        } else {
            line += piece.text;
        }
    }
    return line;
}
