// Reads the command line with getopt. A library that needs the standard streams would add a tenth
// to the program's resident memory. getopt finds the options; this file decides which of them a
// command takes, and suggests a name for a mistyped one. Tests: tests/ctl/arguments_test.cpp.

#include "ctl/arguments.h"

#include <getopt.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "ctl/command_table.h"

namespace ctl {
namespace {

/// Returns how many letters must be changed, added or removed to turn one word into the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = std::exchange(row[j], std::min({replaced, row[j] + 1, row[j - 1] + 1}));
        }
    }
    return row.back();
}

/// Returns "; did you mean --json?", and "" when no name is near. `table` holds commands or
/// options.
template <typename Table>
std::string suggestion(std::string_view word, Table table, const std::string& prefix) {
    constexpr std::size_t kFar = 3;
    constexpr std::size_t kLongestWord = 32;
    std::size_t nearest = kFar;
    std::string_view name;
    for (const auto& each : table) {
        const std::size_t found = word.size() > kLongestWord ? kFar : distance(word, each.name);
        if (found < nearest && found < each.name.size()) {
            nearest = found;
            name = each.name;
        }
    }
    return nearest == kFar ? "" : "; did you mean " + prefix + std::string(name) + "?";
}

bool isNumber(std::string_view text) {
    constexpr std::size_t kMostDigits = 9;
    return !text.empty() && text.size() <= kMostDigits &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Reads a time span such as "30m", "2h" or "7d".
std::optional<std::chrono::seconds> timeSpan(std::string_view text) {
    if (text.empty() || !isNumber(text.substr(0, text.size() - 1))) {
        return std::nullopt;
    }
    const std::chrono::seconds::rep number = std::stol(std::string(text));
    switch (text.back()) {
        case 'm':
            return std::chrono::minutes(number);
        case 'h':
            return std::chrono::hours(number);
        case 'd':
            return std::chrono::days(number);
        default:
            return std::nullopt;
    }
}

/// Reads one command line. The first mistake is kept.
class Parser {
public:
    Parser(int count, char** arguments) : count_(count), arguments_(arguments) {}

    std::variant<Arguments, Mistake> parse() {
        findCommandName();
        readOptions();
        readOperands();
        checkTogether();
        if (mistake_) {
            return *mistake_;
        }
        return result_;
    }

private:
    void fail(std::string text) {
        if (!mistake_) {
            mistake_ = Mistake{std::move(text), command_ ? std::string(command_->name) : ""};
        }
    }

    /// Finds the first word that is a command's name, so that a mistake in an option can name it.
    void findCommandName() {
        for (int i = 1; i < count_ && !command_; ++i) {
            command_ = findCommand(arguments_[i]);
        }
    }

    void readOptions() {
        std::vector<option> longOptions;
        for (const Option& each : options()) {
            longOptions.push_back({each.name.data(),
                                   each.value.empty() ? no_argument : required_argument, nullptr,
                                   each.letter});
        }
        longOptions.push_back({nullptr, 0, nullptr, 0});
        opterr = 0;
        int found = 0;
        while ((found = getopt_long(count_, arguments_, ":hV", longOptions.data(), nullptr)) !=
               -1) {
            if (found == '?' || found == ':') {
                return failForOption(found);
            }
            take(optionWithLetter(static_cast<char>(found)));
        }
    }

    void failForOption(int found) {
        const std::string written = arguments_[optind - 1];
        if (found == ':') {
            return fail(written + " needs a value");
        }
        const std::size_t equals = written.find('=');
        const std::string name = written.substr(0, equals);
        const bool isShort = !written.starts_with("--");
        const bool isKnown =
            !isShort && std::any_of(options().begin(), options().end(),
                                    [&](const Option& o) { return name.substr(2) == o.name; });
        fail(isKnown
                 ? name + " takes no value"
                 : "unknown option " +
                       (isShort ? std::string("-") + static_cast<char>(optopt) : name) +
                       (isShort ? ""
                                : suggestion(std::string_view(name).substr(2), options(), "--")));
    }

    void take(const Option& option) {
        taken_ += option.letter;
        const std::string value = optarg && !option.value.empty() ? optarg : "";
        switch (option.letter) {
            case 'j':
                return setFormat(Format::json);
            case 'w':
                return setFormat(Format::waybar);
            case 's':
                return setFormat(Format::svg);
            case 'f':
                setFormat(Format::ownTemplate);
                result_.ownTemplate = ORVTemplate::parse(value);
                if (!result_.ownTemplate) {
                    fail("the template is not understood: " + value + "; names are " +
                         ORVTemplate::names());
                }
                return;
            case 'l':
                return setShownTask({ORVShownTask::Choice::latest, ""});
            case 't':
                if (value.empty()) {
                    fail("--task needs a thread identifier");
                }
                return setShownTask({ORVShownTask::Choice::identified, value});
            case 'e':
                return setShownTask({ORVShownTask::Choice::inFolder, ""});
            case 'd':
                result_.folder = value;
                return;
            case 'n':
                return isNumber(value) ? void(result_.limit = std::stoul(value))
                                       : fail("--limit needs a number, not " + value);
            case 'i':
                result_.since = timeSpan(value);
                return result_.since
                           ? void()
                           : fail("--since needs a time such as 30m, 2h or 7d, not " + value);
            case 'c':
                result_.codexHome = value;
                return value.empty() ? fail("--codex-home needs a folder") : void();
            case 'o':
                return setColoring(value);
            default:
                return;  // Help and version are found among the options taken.
        }
    }

    void setFormat(Format format) {
        if (result_.format != Format::text && result_.format != format) {
            fail("only one of --json, --format, --waybar and --svg can be given");
        }
        result_.format = format;
    }

    void setShownTask(ORVShownTask task) {
        if (result_.shownTask.choice != ORVShownTask::Choice::inView) {
            fail("only one of --latest, --task and --here can be followed at once");
        }
        result_.shownTask = std::move(task);
    }

    void setColoring(const std::string& value) {
        if (value != "auto" && value != "always" && value != "never") {
            fail("--color is auto, always or never, not " + value);
        }
        result_.coloring = value == "always"  ? Coloring::always
                           : value == "never" ? Coloring::never
                                              : Coloring::automatic;
    }

    bool isTaken(char letter) const { return taken_.find(letter) != std::string::npos; }

    void readOperands() {
        if (mistake_) {
            return;
        }
        if (isTaken('V')) {
            result_.call = Call::version;
            return;
        }
        if (optind == count_) {
            return isTaken('h') ? void() : fail("a command is missing");
        }
        const std::string name = arguments_[optind];
        command_ = findCommand(name);
        if (!command_) {
            return fail("unknown command " + name + suggestion(name, commands(), ""));
        }
        if (isTaken('h')) {
            result_.helpTopic = name;
            return;
        }
        result_.call = command_->call;
        takeOperands({arguments_ + optind + 1, arguments_ + count_});
    }

    void takeOperands(const std::vector<std::string>& operands) {
        const std::string name(command_->name);
        const auto given = static_cast<int>(operands.size());
        if (given < command_->operands.least) {
            return fail(name + " needs " + std::string(command_->operands.name));
        }
        if (given > command_->operands.most) {
            return fail(name + (command_->operands.most == 0 ? " takes no " : " takes only one ") +
                        "argument: " + operands[static_cast<std::size_t>(command_->operands.most)]);
        }
        if (operands.empty()) {
            return;
        }
        if (command_->call == Call::help) {
            result_.helpTopic = operands[0];
            return findCommand(operands[0]) ? void()
                                            : fail("unknown command " + operands[0] +
                                                   suggestion(operands[0], commands(), ""));
        }
        result_.threadID = operands[0];
        result_.hasThreadID = true;
    }

    /// Checks that the options fit the command and each other.
    void checkTogether() {
        if (mistake_ || !command_ || result_.call == Call::help || result_.call == Call::version) {
            return;
        }
        for (const char letter : taken_) {
            const Option& option = optionWithLetter(letter);
            if (!isCommon(option) && command_->options.find(letter) == std::string_view::npos) {
                return fail(std::string(command_->name) + " does not take --" +
                            std::string(option.name));
            }
        }
        if (command_->call == Call::watch && isTaken('d') && !isTaken('e')) {
            fail("--folder goes with --here");
        }
    }

    const int count_;
    char** const arguments_;
    const Command* command_ = nullptr;
    std::string taken_;  ///< The letters of the options in the order of the command line.
    Arguments result_;
    std::optional<Mistake> mistake_;
};

}  // namespace

std::variant<Arguments, Mistake> parseArguments(int count, char** arguments) {
    return Parser(count, arguments).parse();
}

}  // namespace ctl
