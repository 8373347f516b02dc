#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/ORVTaskView.h"
#include "platform/clock.h"
#include "platform/locale.h"

/// What a template is filled from. `view` must be valid while it is filled.
struct ORVTemplateValues {
    std::string status;                   ///< The status-item title.
    const ORVTaskView* view = nullptr;    ///< Null, or without a snapshot, when no task is shown.
    std::string titleWithoutTask = "--";  ///< Takes the title's place when none is shown.
    ORVClock::TimePoint now;
    ORVTimeFormat timeFormat;
};

/// A user's own line of text about a task: "{status} {title}".
///
/// Names in braces stand for values, "{{" and "}}" for braces; "{title:30}" cuts a value to so many
/// columns. A value that is not known is "--".
/// Characters that would steer a terminal are taken out of values, but not of the template's text.
class ORVTemplate {
public:
    /// Returns none, with the name, the brace or the width that is wrong, for a text that is not
    /// understood.
    static std::optional<ORVTemplate> parse(std::string_view text, std::string* mistake);

    /// Returns all names as people write them: "{status}, {title}, …".
    static std::string names();

    /// Returns what its names need beside a task's figures.
    ORVTaskWants wants() const;

    std::string filled(const ORVTemplateValues& values) const;

private:
    /// A name, or a piece of the template's own text.
    struct Piece {
        std::string text;
        bool isName = false;
        int columns = 0;  ///< The most that a value may take; 0 for any number.
    };
    std::vector<Piece> pieces_;
};
