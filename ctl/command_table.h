#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ctl/arguments.h"

/// The commands and options of brimletctl with their help. The parser, the help, the suggestions
/// and the tests that compare them with the man page all read these tables.
namespace ctl {

/// How many words may follow a command's name.
struct Operands {
    int least;
    int most;
    std::string_view name;  ///< Their name in the help.
};

struct Option {
    std::string_view name;  ///< Without the two dashes.
    char letter;            ///< Stands for the option in the tables; 'h' and 'V' can be typed, too.
    std::string_view value;  ///< The value's name in the help; "" for an option without a value.
    std::string_view help;
};

struct Command {
    std::string_view name;
    Call call;
    Operands operands;
    std::string_view options;  ///< The letters of its options, without those of every command.
    std::string_view summary;  ///< About forty characters.
    std::string_view help;     ///< Paragraphs, and examples.
};

std::span<const Command> commands();
std::span<const Option> options();

const Command* findCommand(std::string_view name);
const Option& optionWithLetter(char letter);

/// Whether every command takes the option.
bool isCommon(const Option& option);

/// Returns what `brimletctl help NAME` prints, and for "" what `brimletctl help` prints.
std::string helpText(std::string_view commandName);

}  // namespace ctl
