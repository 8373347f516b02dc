// Reads the command line with getopt. A library that needs the standard streams would add a tenth
// to the program's resident memory. getopt finds the options; this file decides which of them a
// command takes, and suggests a name for a mistyped one. Tests: tests/ctl/arguments_test.cpp.

#include "ctl/arguments.h"

#include <getopt.h>

#include <algorithm>
#include <numeric>
#include <vector>

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

/// Reads a time span such as "90s", "30m", "2h", "7d" or "2w".
std::optional<std::chrono::seconds> timeSpan(std::string_view text) {
    static constexpr std::pair<char, std::chrono::seconds> kUnits[] = {
        {'s', std::chrono::seconds(1)},
        {'m', std::chrono::minutes(1)},
        {'h', std::chrono::hours(1)},
        {'d', std::chrono::days(1)},
        {'w', std::chrono::weeks(1)}};
    const auto* unit = std::find_if(std::begin(kUnits), std::end(kUnits),
                                    [&](const auto& each) { return text.ends_with(each.first); });
    if (unit == std::end(kUnits) || !isNumber(text.substr(0, text.size() - 1))) {
        return std::nullopt;
    }
    return unit->second * std::stol(std::string(text));
}

/// Reads one command line. The first mistake is kept.
class Parser {
public:
    Parser(int count, char** arguments, bool isOnTerminal)
        : count_(count), arguments_(arguments), isOnTerminal_(isOnTerminal) {}

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
                                   kFirstNumber + static_cast<int>(each.id)});
        }
        longOptions.push_back({nullptr, 0, nullptr, 0});
        opterr = 0;
        int found = 0;
        while ((found = getopt_long(count_, arguments_, ":hV", longOptions.data(), nullptr)) !=
               -1) {
            if (found == '?' || found == ':') {
                return failForOption(found);
            }
            const auto id = found == 'h'   ? OptionID::help
                            : found == 'V' ? OptionID::version
                                           : static_cast<OptionID>(found - kFirstNumber);
            taken_.add(id);
            take(id, optarg && !optionWithID(id).value.empty() ? optarg : "");
        }
    }

    void failForOption(int found) {
        const std::string written = arguments_[optind - 1];
        if (found == ':') {
            return fail(written + " needs a value");
        }
        const std::string name = written.substr(0, written.find('='));
        if (!written.starts_with("--")) {
            return fail(std::string("unknown option -") + static_cast<char>(optopt));
        }
        const bool isKnown = std::any_of(options().begin(), options().end(),
                                         [&](const Option& o) { return name.substr(2) == o.name; });
        fail(isKnown ? name + " takes no value"
                     : "unknown option " + name +
                           suggestion(std::string_view(name).substr(2), options(), "--"));
    }

    void take(OptionID id, const std::string& value) {
        switch (id) {
            case OptionID::json:
                return setFormat(Format::json);
            case OptionID::waybar:
                return setFormat(Format::waybar);
            case OptionID::svg:
                return setFormat(Format::svg);
            case OptionID::format:
                return takeTemplate(value);
            case OptionID::latest:
                return setTask({ORVShownTask::Choice::latest, ""});
            case OptionID::task:
                return setIdentifier(value, "--task");
            case OptionID::here:
                result_.isHere = true;
                return setTask({ORVShownTask::Choice::inFolder, ""});
            case OptionID::folder:
                result_.folder = value;
                return;
            case OptionID::limit:
                return takeLimit(value);
            case OptionID::since:
                result_.since = timeSpan(value);
                if (!result_.since) {
                    fail("--since needs a time such as 90s, 30m, 2h, 7d or 2w, not " +
                         quoted(value));
                }
                return;
            case OptionID::helpers:
                result_.list.showsHelpers = true;
                return;
            case OptionID::codexHome:
                result_.codexHome = value;
                if (value.empty()) {
                    fail("--codex-home needs a folder");
                }
                return;
            case OptionID::color:
                return setColours(value);
            case OptionID::help:
            case OptionID::version:
                return;  // They are found among the options taken.
        }
    }

    static std::string quoted(const std::string& value) { return value.empty() ? "''" : value; }

    void setFormat(Format format) {
        if (result_.format != Format::text && result_.format != format) {
            fail("only one of --json, --format, --waybar and --svg can be given");
        }
        result_.format = format;
    }

    void takeTemplate(const std::string& value) {
        setFormat(Format::ownTemplate);
        std::string what;
        result_.ownTemplate = ORVTemplate::parse(value, &what);
        if (!result_.ownTemplate) {
            fail("the template is not understood, because of " + what + "; names are " +
                 ORVTemplate::names());
        }
    }

    void takeLimit(const std::string& value) {
        if (!isNumber(value)) {
            return fail("--limit needs a number, not " + quoted(value));
        }
        result_.list.limit = std::stoul(value);
    }

    void setIdentifier(const std::string& value, const std::string& what) {
        if (value.empty()) {
            return fail(what + " needs an identifier, or a part of one");
        }
        setTask({ORVShownTask::Choice::identified, value});
    }

    void setTask(ORVShownTask task) {
        if (result_.task.choice != ORVShownTask::Choice::inView) {
            fail("only one of --latest, --task and --here can be given at once");
        }
        result_.task = std::move(task);
    }

    void setColours(const std::string& value) {
        if (value != "auto" && value != "always" && value != "never") {
            fail("--color is auto, always or never, not " + quoted(value));
        }
        result_.colours = value == "always"  ? Colours::always
                          : value == "never" ? Colours::never
                                             : Colours::automatic;
    }

    void readOperands() {
        if (mistake_) {
            return;
        }
        if (taken_.holds(OptionID::version)) {
            result_.call = Call::version;
            return;
        }
        if (optind == count_) {
            return readNothing();
        }
        const std::string name = arguments_[optind];
        command_ = findCommand(name);
        if (!command_) {
            return fail("unknown command " + quoted(name) + suggestion(name, commands(), ""));
        }
        if (taken_.holds(OptionID::help)) {
            result_.helpTopic = name;
            return;
        }
        result_.call = command_->call;
        checkOptions();
        takeOperands({arguments_ + optind + 1, arguments_ + count_});
    }

    void checkOptions() {
        for (const Option& option : options()) {
            if (taken_.holds(option.id) && !kCommonOptions.holds(option.id) &&
                !command_->options.holds(option.id)) {
                fail(std::string(command_->name) + " does not take --" + std::string(option.name));
            }
        }
    }

    /// A line without a command.
    void readNothing() {
        if (taken_.holds(OptionID::help)) {
            return;
        }
        const bool hasOwnOptions =
            std::any_of(options().begin(), options().end(), [&](const Option& each) {
                return taken_.holds(each.id) && !kCommonOptions.holds(each.id);
            });
        if (!isOnTerminal_ || hasOwnOptions) {
            return fail("a command is missing");
        }
        result_.call = Call::top;
    }

    void takeOperands(const std::vector<std::string>& operands) {
        const std::string name(command_->name);
        const auto given = static_cast<int>(operands.size());
        if (given < command_->operands.least) {
            return fail(name + " needs " + std::string(command_->operands.name));
        }
        if (given > command_->operands.most) {
            return fail(
                name + (command_->operands.most == 0 ? " takes no " : " takes only one ") +
                "argument: " + quoted(operands[static_cast<std::size_t>(command_->operands.most)]));
        }
        if (command_->call == Call::help && !operands.empty()) {
            result_.helpTopic = operands[0];
            if (!findCommand(operands[0])) {
                fail("unknown command " + quoted(operands[0]) +
                     suggestion(operands[0], commands(), ""));
            }
        } else if (!operands.empty()) {
            setIdentifier(operands[0], name);
        } else if (command_->call == Call::here) {
            setTask({ORVShownTask::Choice::inFolder, ""});
        } else if (command_->call == Call::latest ||
                   (command_->call == Call::history &&
                    result_.task.choice == ORVShownTask::Choice::inView)) {
            setTask({ORVShownTask::Choice::latest, ""});
        }
    }

    void checkTogether() {
        const bool isHere = taken_.holds(OptionID::here) || result_.call == Call::here;
        if (!mistake_ && taken_.holds(OptionID::folder) && !isHere) {
            fail("--folder goes with --here");
        }
        result_.list.since = result_.since;
    }

    /// getopt tells options by numbers; these are not those of letters.
    static constexpr int kFirstNumber = 1'000;

    const int count_;
    char** const arguments_;
    const bool isOnTerminal_;
    const Command* command_ = nullptr;
    OptionSet taken_;
    Arguments result_;
    std::optional<Mistake> mistake_;
};

}  // namespace

std::variant<Arguments, Mistake> parseArguments(int count, char** arguments, bool isOnTerminal) {
    return Parser(count, arguments, isOnTerminal).parse();
}

}  // namespace ctl
