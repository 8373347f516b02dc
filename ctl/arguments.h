#pragma once

#include <optional>
#include <string>
#include <variant>

#include "app/ORVTaskRequest.h"
#include "app/ORVTemplate.h"

/// Reads the command line of brimletctl.
namespace ctl {

enum class Call {
    watch,
    top,
    latest,
    task,
    here,
    tasks,
    history,
    limits,
    focus,
    titles,
    doctor,
    query,
    help,
    version
};

/// The form of an answer.
enum class Format { text, json, ownTemplate, waybar, svg };

enum class Colours { automatic, always, never };

struct Arguments {
    Call call = Call::help;
    Format format = Format::text;
    std::optional<ORVTemplate> ownTemplate;  ///< With Format::ownTemplate.

    ORVShownTask task;         ///< For calls about one task; the folder of --here is in `folder`.
    std::string folder = ".";  ///< As written.
    bool isHere = false;       ///< For lists: only tasks of `folder`.
    ORVListRequest list;       ///< For `tasks` and `top`.
    std::optional<std::chrono::seconds> since;  ///< For lists and `history`: the greatest age.

    std::optional<std::string> codexHome;  ///< As written; none without the option.
    Colours colours = Colours::automatic;
    std::string helpTopic;  ///< A command's name, or "" for all of them.
};

/// Why a command line was not understood.
struct Mistake {
    std::string text;     ///< A sentence for a person.
    std::string command;  ///< The command that the line seems to be about, or "".
};

/// `isOnTerminal` tells whether a person sees the output and can type: then a line without a
/// command means `top`.
std::variant<Arguments, Mistake> parseArguments(int count, char** arguments, bool isOnTerminal);

}  // namespace ctl
