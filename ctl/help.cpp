// The help, made from the tables of commands and options. Tests: tests/ctl/arguments_test.cpp.

#include <algorithm>

#include "ctl/arguments.h"

namespace ctl {
namespace {

constexpr std::size_t kNameColumns = 20;

std::string padded(std::string text) {
    text.resize(std::max(text.size(), kNameColumns), ' ');
    return "  " + text + " ";
}

/// The text with a line break in place of the last space that fits each line.
std::string wrapped(std::string text, const std::string& lineBreak) {
    constexpr std::size_t kColumns = 76;
    for (std::size_t start = 0; text.size() - start > kColumns;) {
        const std::size_t space = text.rfind(' ', start + kColumns);
        text.replace(space, 1, lineBreak);
        start = space + 1;
    }
    return text;
}

std::string describedOption(const Option& option) {
    const std::string letter = option.letter ? std::string("-") + option.letter + ", " : "";
    return padded(letter + "--" + std::string(option.name) + (option.value.empty() ? "" : " ") +
                  std::string(option.value)) +
           std::string(option.help) + '\n';
}

std::string nameWithOperands(const Command& command) {
    return std::string(command.name) + (command.operands.most > 0 ? " " : "") +
           std::string(command.operands.name);
}

std::string helpOnEverything() {
    std::string text =
        "brimletctl shows how full the context window of a Codex task is, and how often\n"
        "its conversation was compacted, from local files alone. C3 \u00b7 47% means: three\n"
        "compactions so far, and 47 % of the window in use.\n"
        "\n"
        "usage: brimletctl [COMMAND] [OPTIONS]\n"
        "\n";
    for (const Command& command : commands()) {
        text += padded(nameWithOperands(command)) + std::string(command.summary) + '\n';
    }
    text += "\nOptions of every command:\n";
    for (const Option& option : options()) {
        text += kCommonOptions.holds(option.id) ? describedOption(option) : "";
    }
    return text +
           "\n"
           "On a terminal, brimletctl without a command is top.\n"
           "brimletctl help COMMAND shows a command's own options, with examples.\n"
           "Exit status: 0 an answer was given; 1 there is nothing to show, or it cannot be\n"
           "read or written; 2 the arguments were not understood.\n";
}

std::string helpOn(const Command& command) {
    std::string text = "usage: brimletctl " + nameWithOperands(command) + " [OPTIONS]\n\n" +
                       std::string(command.summary) + ".\n";
    if (!command.help.empty()) {
        text += '\n' + std::string(command.help);
    }
    text += "\nOptions:\n";
    for (const Option& option : options()) {
        const bool isTaken = command.options.holds(option.id) || kCommonOptions.holds(option.id);
        text += isTaken ? describedOption(option) : "";
    }
    if (command.options.holds(OptionID::format)) {
        text +=
            "\nNames in a TEMPLATE. An unknown value becomes --, {title:30} cuts a value to 30\n"
            "columns, and {{ and }} are braces:\n  " +
            wrapped(ORVTemplate::names(), "\n  ") + '\n';
    }
    return text;
}

}  // namespace

std::string helpText(std::string_view commandName) {
    const Command* command = findCommand(commandName);
    return command ? helpOn(*command) : helpOnEverything();
}

}  // namespace ctl
