#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "app/ORVTemplate.h"
#include "app/refresh_step.h"

/// Reads the command line of brimletctl.
namespace ctl {

enum class Call {
    watch,
    latest,
    task,
    here,
    tasks,
    history,
    focus,
    titles,
    doctor,
    query,
    help,
    version
};

/// The form of an answer.
enum class Format { text, json, ownTemplate, waybar, svg };

enum class Coloring { automatic, always, never };

struct Arguments {
    Call call = Call::help;
    Format format = Format::text;
    std::optional<ORVTemplate> ownTemplate;  ///< With Format::ownTemplate.

    std::string threadID;  ///< For `task`; for `history` if hasThreadID.
    bool hasThreadID = false;
    ORVShownTask shownTask;    ///< For `watch`; the folder of --here is in `folder`.
    std::string folder = ".";  ///< For `here` and `watch --here`, as written.
    std::size_t limit = 20;    ///< For `tasks`: the most tasks, or 0 for all.
    std::optional<std::chrono::seconds> since;  ///< For `tasks`: the greatest age.

    std::optional<std::string> codexHome;  ///< As written; none without the option.
    Coloring coloring = Coloring::automatic;
    std::string helpTopic;  ///< A command's name, or "" for all of them.
};

/// Why a command line was not understood.
struct Mistake {
    std::string text;     ///< A sentence for a person.
    std::string command;  ///< The command that the line seems to be about, or "".
};

std::variant<Arguments, Mistake> parseArguments(int count, char** arguments);

}  // namespace ctl
