#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/time_of_day.h"
#include "sessions/ORVSessionSnapshot.h"

/// What a template is filled from. The pointers must be valid while it is filled.
struct ORVTemplateValues {
    std::string status;                            ///< The status-item title.
    const ORVSessionSnapshot* snapshot = nullptr;  ///< Null where no task is shown.
    std::string titleWithoutTask = "--";           ///< Stands for the title where none is.
    std::optional<std::string> folder;
    ORVClock::TimePoint now;
    ORVTimeFormat timeFormat;
};

/// A user's own line of text about a task: "{status} {title}".
///
/// Names in braces stand for values, "{{" and "}}" for braces. A value that is not known is "--".
/// Values cannot steer a terminal; the template's own text stays as it is.
class ORVTemplate {
public:
    /// None for a text with a name that does not exist or a brace without its partner.
    static std::optional<ORVTemplate> parse(std::string_view text);

    /// All names, as an explanation for people: "{status}, {title}, …".
    static std::string names();

    bool wants(std::string_view name) const;

    std::string filled(const ORVTemplateValues& values) const;

private:
    /// A name, or text that stands for itself.
    struct Piece {
        std::string text;
        bool isName;
    };
    std::vector<Piece> pieces_;
};
