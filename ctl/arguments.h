#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "app/ORVTemplate.h"
#include "app/refresh_step.h"

/// What a command line of brimletctl asks for.
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

    std::string threadID;  ///< Of `task`; of `history`, where hasThreadID.
    bool hasThreadID = false;
    ORVShownTask shownTask;                     ///< Of `watch`; its folder is in `folder`.
    std::string folder = ".";                   ///< Of `here` and `watch --here`, as written.
    std::size_t limit = 20;                     ///< Of `tasks`; 0 for all.
    std::optional<std::chrono::seconds> since;  ///< Of `tasks`: no task that is older.

    std::optional<std::string> codexHome;  ///< As written; none where the option is missing.
    Coloring coloring = Coloring::automatic;
    std::string helpTopic;  ///< A command's name, or "" for all of them.
};

/// Why a command line was not understood: a sentence for a person, and the command that it seems to
/// be about, or "".
struct Mistake {
    std::string text;
    std::string command;
};

std::variant<Arguments, Mistake> parseArguments(int count, char** arguments);

}  // namespace ctl
