#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/time_of_day.h"
#include "sessions/ORVSessionSnapshot.h"

/// What a template is filled from. `snapshot` must be valid while it is filled.
struct ORVTemplateValues {
    std::string status;                            ///< The status-item title.
    const ORVSessionSnapshot* snapshot = nullptr;  ///< Null when no task is shown.
    std::string titleWithoutTask = "--";           ///< Takes the title's place when none is shown.
    std::optional<std::string> folder;
    ORVClock::TimePoint now;
    ORVTimeFormat timeFormat;
};

/// A user's own line of text about a task: "{status} {title}".
///
/// Names in braces stand for values, "{{" and "}}" for braces. A value that is not known is "--".
/// Characters that would steer a terminal are taken out of values, but not of the template's text.
class ORVTemplate {
public:
    /// Returns none for a text with an unknown name or a single brace.
    static std::optional<ORVTemplate> parse(std::string_view text);

    /// Returns all names as people write them: "{status}, {title}, …".
    static std::string names();

    bool wants(std::string_view name) const;

    std::string filled(const ORVTemplateValues& values) const;

private:
    /// A name, or a piece of the template's own text.
    struct Piece {
        std::string text;
        bool isName;
    };
    std::vector<Piece> pieces_;
};
