#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "app/ORVTaskView.h"
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

// The commands and options with their help (command_table.cpp, help.cpp). The parser, the help, the
// suggestions and the tests that compare them with the man page all read these tables.

enum class OptionID {
    json,
    format,
    waybar,
    svg,
    latest,
    task,
    here,
    folder,
    limit,
    since,
    helpers,
    codexHome,
    color,
    help,
    version
};

/// A set of options.
class OptionSet {
public:
    constexpr OptionSet() = default;
    constexpr OptionSet(std::initializer_list<OptionID> options) {
        for (const OptionID option : options) {
            add(option);
        }
    }
    constexpr void add(OptionID option) { bits_ |= 1U << static_cast<unsigned>(option); }
    constexpr bool holds(OptionID option) const {
        return (bits_ >> static_cast<unsigned>(option) & 1U) != 0;
    }

private:
    std::uint32_t bits_ = 0;
};

/// Those that every command takes.
inline constexpr OptionSet kCommonOptions = {OptionID::codexHome, OptionID::color, OptionID::help,
                                             OptionID::version};

/// How many words may follow a command's name.
struct Operands {
    int least;
    int most;
    std::string_view name;  ///< Their name in the help.
};

struct Option {
    OptionID id;
    std::string_view name;   ///< Without the two dashes.
    char letter;             ///< Its short form; 0 for an option without one.
    std::string_view value;  ///< The value's name in the help; "" for an option without a value.
    std::string_view help;
};

struct Command {
    std::string_view name;
    Call call;
    Operands operands;
    OptionSet options;         ///< Without those of every command.
    std::string_view summary;  ///< About forty characters.
    std::string_view help;     ///< Lines with line feeds, of 80 columns at most.
};

std::span<const Command> commands();
std::span<const Option> options();

/// Returns null for a name that no command has.
const Command* findCommand(std::string_view name);

const Option& optionWithID(OptionID id);

/// Returns the help on a command; for any other name that on all of them. No line has more than 80
/// columns.
std::string helpText(std::string_view commandName);

}  // namespace ctl
