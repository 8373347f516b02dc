#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ctl/arguments.h"

/// The commands and options of brimletctl, and what help says of them. The parser, the help, the
/// suggestions and the tests that compare them with the man page all read these tables.
namespace ctl {

/// How many words may follow a command's name.
struct Operands {
    int least;
    int most;
    std::string_view name;  ///< As help writes it.
};

struct Option {
    std::string_view name;   ///< Without the two dashes.
    char letter;             ///< A short form, or a code of its own that no key types.
    std::string_view value;  ///< As help writes its value; "" for an option without one.
    std::string_view help;
};

struct Command {
    std::string_view name;
    Call call;
    Operands operands;
    std::string_view options;  ///< The letters of the options that it takes beside the common ones.
    std::string_view summary;  ///< Of some forty characters.
    std::string_view help;     ///< Paragraphs, and examples.
};

std::span<const Command> commands();
std::span<const Option> options();

const Command* findCommand(std::string_view name);
const Option& optionWithLetter(char letter);

/// The options that every command takes.
bool isCommon(const Option& option);

/// What `brimletctl help` prints, for a command's name or for "".
std::string helpText(std::string_view commandName);

}  // namespace ctl
