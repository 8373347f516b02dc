#include <getopt.h>
#include <gtest/gtest.h>

#include <sstream>

#include "ctl/arguments.h"

namespace {

/// Parses words that are separated by spaces; "''" is an empty word.
std::variant<ctl::Arguments, ctl::Mistake> parse(const std::string& line,
                                                 bool isOnTerminal = false) {
    std::vector<std::string> words = {"brimletctl"};
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(word == "''" ? "" : word);
    }
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    optind = 0;  // getopt begins anew.
    return ctl::parseArguments(static_cast<int>(words.size()), pointers.data(), isOnTerminal);
}

std::string mistakeIn(const std::string& line) {
    const auto parsed = parse(line);
    const auto* mistake = std::get_if<ctl::Mistake>(&parsed);
    return mistake ? mistake->text + " [" + mistake->command + "]" : "understood";
}

ctl::Arguments understood(const std::string& line) {
    EXPECT_EQ("understood", mistakeIn(line)) << line;
    const auto parsed = parse(line);
    const auto* arguments = std::get_if<ctl::Arguments>(&parsed);
    return arguments ? *arguments : ctl::Arguments();
}

TEST(ArgumentsTest, CommandsWithTheirOptions) {
    EXPECT_EQ(ctl::Call::watch, understood("watch").call);
    EXPECT_EQ(ctl::Format::json, understood("--json latest").format);
    EXPECT_EQ(ctl::Format::json, understood("latest --json").format);
    EXPECT_EQ("--json", understood("task -- --json").task.value);
    EXPECT_EQ(ORVShownTask::Choice::latest, understood("history").task.choice);
    EXPECT_EQ("x", understood("history --task x").task.value);
    EXPECT_EQ(ORVShownTask::Choice::inFolder, understood("history --here").task.choice);
    EXPECT_EQ(ctl::Format::svg, understood("history x --svg").format);
    EXPECT_EQ("x", understood("watch --task x --waybar").task.value);
    EXPECT_EQ(ORVShownTask::Choice::inFolder, understood("watch --here --folder /x").task.choice);
    EXPECT_EQ("/x", understood("here --folder=/x").folder);
    EXPECT_EQ(0U, understood("tasks --limit 0").list.limit);
    EXPECT_TRUE(understood("tasks --here --helpers").list.showsHelpers);
    EXPECT_EQ(std::chrono::seconds(90), understood("top --since 90s").list.since);
    EXPECT_EQ(std::chrono::weeks(2), understood("history --since 2w").since);
    EXPECT_EQ(std::chrono::hours(48), understood("tasks --since 2d").since);
    EXPECT_EQ("d", understood("--codex-home d --color never titles").codexHome);
    EXPECT_EQ(ctl::Colours::never, understood("titles --color never --codex-home d").colours);
    EXPECT_EQ(ctl::Call::help, understood("--help").call);
    EXPECT_EQ("tasks", understood("tasks -h").helpTopic);
    EXPECT_EQ("tasks", understood("help tasks").helpTopic);
    EXPECT_EQ(ctl::Call::version, understood("-V").call);
    const auto alone = parse("--codex-home d --color never", true);
    EXPECT_EQ(ctl::Call::top, std::get<ctl::Arguments>(alone).call);
    EXPECT_TRUE(std::holds_alternative<ctl::Mistake>(parse("--json", true)));
}

TEST(ArgumentsTest, AMistakeIsNamedWithWhatIsNear) {
    const std::pair<const char*, std::string> kCases[] = {
        {"", "a command is missing []"},
        {"--json", "a command is missing []"},
        {"latst", "unknown command latst; did you mean latest? []"},
        {"xyzzy", "unknown command xyzzy []"},
        {"latest --jsno", "unknown option --jsno; did you mean --json? [latest]"},
        {"latest --zzzzzz", "unknown option --zzzzzz [latest]"},
        {"latest -x", "unknown option -x [latest]"},
        {"latest --json=1", "--json takes no value [latest]"},
        {"latest --format", "--format needs a value [latest]"},
        {"latest x", "latest takes no argument: x [latest]"},
        {"task", "task needs ID [task]"},
        {"task a b", "task takes only one argument: b [task]"},
        {"query --json", "query does not take --json [query]"},
        {"latest --waybar", "latest does not take --waybar [latest]"},
        {"here --latest", "here does not take --latest [here]"},
        {"latest --folder x", "latest does not take --folder [latest]"},
        {"watch --folder x", "--folder goes with --here [watch]"},
        {"watch --task ''", "--task needs an identifier, or a part of one [watch]"},
        {"task ''", "task needs an identifier, or a part of one [task]"},
        {"history x --latest",
         "only one of --latest, --task and --here can be given at once [history]"},
        {"tasks --limit -1", "--limit needs a number, not -1 [tasks]"},
        {"tasks --limit 99999999999", "--limit needs a number, not 99999999999 [tasks]"},
        {"tasks --since 5y", "--since needs a time such as 90s, 30m, 2h, 7d or 2w, not 5y [tasks]"},
        {"tasks --since h", "--since needs a time such as 90s, 30m, 2h, 7d or 2w, not h [tasks]"},
        {"tasks --limit ''", "--limit needs a number, not '' [tasks]"},
        {"latest --format {nope}",
         "the template is not understood, because of the name {nope}; names are " +
             ORVTemplate::names() + " [latest]"},
        {"titles --color red", "--color is auto, always or never, not red [titles]"},
        {"help lates", "unknown command lates; did you mean latest? [help]"}};
    for (const auto& [line, text] : kCases) {
        EXPECT_EQ(text, mistakeIn(line)) << line;
    }
    for (const char* line :
         {"watch --latest --here", "watch --latest --task x", "watch --here --task x",
          "watch --json --waybar", "latest --json --format x", "history --json --svg",
          "latest --format {", "titles --codex-home ''"}) {
        EXPECT_NE("understood", mistakeIn(line)) << line;
    }
}

TEST(ArgumentsTest, HelpNamesEveryCommandAndEveryOptionOfIt) {
    const std::string everything = ctl::helpText("");
    for (const ctl::Command& command : ctl::commands()) {
        EXPECT_NE(std::string::npos, everything.find("\n  " + std::string(command.name)));
        const std::string help = ctl::helpText(command.name);
        for (const ctl::Option& option : ctl::options()) {
            const std::string line = "  --" + std::string(option.name);
            EXPECT_EQ(command.options.holds(option.id) || option.name == "codex-home" ||
                          option.name == "color",
                      help.find(line + " ") != help.npos)
                << command.name << line;
        }
        std::istringstream lines(help + everything);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_GE(80U, line.size() - (line.find("·") == line.npos ? 0 : 1)) << line;
        }
    }
}

}  // namespace
