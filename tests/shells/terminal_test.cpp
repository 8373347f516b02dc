#include <gtest/gtest.h>
#include <locale.h>

#include "app/ORVAppDelegate.h"
#include "shells/terminal/ORVMenuPage.h"
#include "tests/support/ManualHost.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"
#include "tests/support/shown_texts.h"
#include "text/unicode.h"

namespace {

using app::Fullness;
using records::kTask;

constexpr int kWidths[] = {20, 40, 80, 200};

/// Titles, of which many have different widths in different libraries.
constexpr const char* kScripts[] = {"重构刷新周期并修复测试",
                                    "テストを修正する",
                                    "테스트를 수정",
                                    "\u1112\u1161\u11AB\u1100\u1173\u11AF 한글",
                                    "परीक्षणों को ठीक करें",
                                    "சோதனைகளை சரிசெய்",
                                    "แก้ไขการทดสอบ",
                                    "إصلاح الاختبارات",
                                    "תיקון הבדיקות",
                                    "Исправить тесты e\u0301",
                                    "ማስተካከል",
                                    "🚀👩\u200D💻👍🏽❤\uFE0F🇫🇷",
                                    "\U0001FAE8\U0001FAE9 \u0378\uE000\u00AD\u200B\uFEFFx"};

void useUnicode() {
    ASSERT_TRUE(setlocale(LC_CTYPE, "C.UTF-8") || setlocale(LC_CTYPE, "UTF-8"));
}

/// The application's menu while it shows a task, after the user asked to detect it.
class MenuRowsTest : public testing::Test {
protected:
    MenuRowsTest() {
        useUnicode();
        app->applicationDidFinishLaunching();
        app->renderSnapshot(
            ORVSessionSnapshot("重构 🚀 \x1b[31m", "id", "/x", 3, ORVContextUsage(128'000, 272'000),
                               ORVContextStatusAvailable, ORVCompactionStatusValid, {}));
        const auto& items = statusItem.menu->items;
        title = items[0].get();
        items[5]->title = "Updated";
        language = items[10].get();
        refresh = items[11].get();
        refresh->title = "✓ Complete";
        refresh->enabled = false;
        quit = items[12].get();
    }

    /// Returns the rows, and checks that each is harmless and as wide as the screen.
    std::vector<terminal::Row> rows(const terminal::Screen& screen) const {
        std::vector<terminal::Row> result = terminal::menuRows(statusItem, view, screen);
        EXPECT_LE(result.size(), static_cast<std::size_t>(screen.rows));
        for (const terminal::Row& row : result) {
            const std::string line = text(row);
            std::wstring wide(line.size(), L'\0');
            wide.resize(mbstowcs(wide.data(), line.c_str(), line.size()));
            EXPECT_EQ(line, text::forTerminal(line));
            EXPECT_TRUE(screen.showsUnicode || std::all_of(line.begin(), line.end(), [](char c) {
                            return c >= ' ' && c < 127;
                        }));
            EXPECT_EQ(screen.columns, wcswidth(wide.c_str(), wide.size())) << line;
        }
        return result;
    }

    static std::string text(const terminal::Row& row) {
        std::string line;
        for (const terminal::Piece& piece : row) {
            line += piece.text;
        }
        return line;
    }

    /// Returns the rows with their styles: "(r:…)" reversed, "(d:…)" dimmed, "(b:…)" bold.
    std::string marked(const terminal::Screen& screen) const {
        std::string all;
        for (const terminal::Row& row : rows(screen)) {
            for (const terminal::Piece& piece : row) {
                const terminal::Style& style = piece.style;
                const std::string marks = std::string(style.isReversed ? "r" : "") +
                                          (style.isDimmed ? "d" : "") + (style.isBold ? "b" : "") +
                                          (style.fullness == Fullness::unknown ? "" : "!");
                all += marks.empty() ? piece.text : "(" + marks + ":" + piece.text + ")";
            }
            all += '\n';
        }
        return all;
    }

    ManualHost host;
    const std::shared_ptr<ORVAppDelegate> app = std::make_shared<ORVAppDelegate>(host);
    ORVStatusItem& statusItem = const_cast<ORVStatusItem&>(app->statusItem());
    terminal::MenuView view;
    ORVMenuItem *title, *language, *refresh, *quit;
};

TEST_F(MenuRowsTest, TheMenuHangsBelowTheGaugeAndStylesStayInsideTheFrame) {
    view.selected = language;
    EXPECT_EQ(
        "(r!:                          )(b!:                    C3 · 47% )\n"
        "           ┌──────────────────────────────────────────┐\n"
        "           │(b:   Current task: 重构 🚀  [31m            )│\n"
        "           ├──────────────────────────────────────────┤\n"
        "           │(!:   Context usage: 128k / 272k (47%)       )│\n"
        "           │   Compactions: 3                         │\n"
        "           │   Updated                                │\n"
        "           ├──────────────────────────────────────────┤\n"
        "           │(d:   Current source: Codex                  )│\n"
        "           │(d:   Read-only · On-device · No data upload )│\n"
        "           ├──────────────────────────────────────────┤\n"
        "           │(r: ◎ Language                           )(r:l ▸ )│\n"
        "           │(d:   ✓ Complete                           )(d:r )│\n"
        "           │   Quit Brimlet                         (d:q )│\n"
        "           └──────────────────────────────────────────┘\n"
        "                                                       \n"
        "(d: ↑↓ Move · Enter Choose · ? Keys)                       \n",
        marked({55, 17, true}));
}

TEST_F(MenuRowsTest, WhatTerminalsMeasureDifferentlyIsLeftOut) {
    EXPECT_EQ(
        "👩💻 👍 ❤ 🏴 \uFFFD",
        terminal::shown("👩\u200D💻 👍🏽 ❤\uFE0F 🏴\U000E0067\U000E007F \u0378", {}));
    const std::string joinedLetters = "क्\u200Dष می\u200Cخواهم";
    EXPECT_EQ(joinedLetters, terminal::shown(joinedLetters, {}));
}

TEST_F(MenuRowsTest, EveryScriptFitsEveryScreenWithTheSelectedItem) {
    view.submenuIsOpen = true;
    view.selected = quit;
    for (const char* script : kScripts) {
        title->title = script + std::string("\x1b[31m \x9b \xff \u202E \u2066 \u2028");
        for (const int columns : kWidths) {
            rows({columns, 24, true});
            rows({columns, 24, false});
        }
    }
    for (const bool isUnicode : {true, false}) {
        for (int columns = 1; columns < 60; columns += columns < 10 ? 1 : 7) {
            for (int height = 1; height < 24; ++height) {
                const std::string all = marked({columns, height, isUnicode});
                EXPECT_EQ(height > 1 && columns > 2, all.rfind("(r:") != all.npos) << all;
            }
        }
    }
}

TEST_F(MenuRowsTest, LowScreensKeepTheFiguresLongest) {
    const auto kept = [&](int height) {
        static constexpr std::pair<const char*, char> kLetters[] = {
            {"┌", '='},       {"└", '='},       {"├", '-'},        {"Move", '?'},
            {"task:", 'T'},   {"Context", 'x'}, {"Comp", 'c'},     {"Updated", 'u'},
            {"source:", 's'}, {"Read", 'p'},    {"Language", 'l'}, {"System", '1'},
            {"English", '2'}, {"简体", '3'},    {"✓", 'r'},        {"Quit", 'q'}};
        std::string letters;
        for (const terminal::Row& row : rows({60, height, true})) {
            const std::string line = text(row);
            const auto* found = std::find_if(
                std::begin(kLetters), std::end(kLetters),
                [&](const auto& pair) { return line.find(pair.first) != std::string::npos; });
            letters += found == std::end(kLetters) ? ' ' : found->second;
        }
        return letters.substr(1);
    };
    refresh->title = "✓";
    static constexpr std::pair<int, const char*> kCases[] = {
        {16, "=T-xcu-sp-lrq=?"}, {15, "T-xcu-sp-lrq ?"}, {13, "T-xcu-sp-lrq"}, {12, "T-xcu-splrq"},
        {10, "Txcusplrq"},       {8, "Txculrq"},         {5, "Txcu"},          {3, "Tx"}};
    for (const auto& [height, expected] : kCases) {
        EXPECT_EQ(expected, kept(height)) << height;
    }
    view.selected = quit;
    EXPECT_EQ("Txcq", kept(5));
    view.submenuIsOpen = true;
    view.selected = language->submenu->items[1].get();
    language->submenu->items[1]->state = false;
    EXPECT_EQ("Txcu123", kept(8));
}

TEST_F(MenuRowsTest, TheBarIsAGauge) {
    struct Case {
        std::optional<double> percentage;
        Fullness fullness;
        std::size_t filled;
    };
    for (const Case& c : {Case{std::nullopt, Fullness::unknown, 0},
                          {0, Fullness::low, 0},
                          {49.9, Fullness::low, 100},
                          {50, Fullness::medium, 100},
                          {79.9, Fullness::medium, 160},
                          {80, Fullness::high, 160},
                          {94.9, Fullness::high, 190},
                          {95, Fullness::full, 190},
                          {250, Fullness::full, 200}}) {
        statusItem.percentage = c.percentage;
        statusItem.title = "C3";
        std::size_t filled = 0;
        const terminal::Row bar = rows({200, 24, true}).front();
        for (const terminal::Piece& piece : bar) {
            EXPECT_TRUE(piece.style.fullness == c.fullness);
            filled += piece.style.isReversed ? piece.text.size() : 0;
        }
        EXPECT_EQ(c.filled, filled);
    }
}

TEST_F(MenuRowsTest, TheHistoryStandsBelowWhereThereIsRoom) {
    const std::string withoutRoom = marked({80, 23, true});
    const std::string without = marked({80, 24, true});
    view.history = {{"", ORVContextUsage(9, 10)}, {"", std::nullopt}, {"", ORVContextUsage(5, 10)}};
    const std::string with = marked({80, 24, true});
    const std::size_t end = without.find("└");
    EXPECT_EQ(without.substr(0, end), with.substr(0, end)) << "the menu stays as it is";
    EXPECT_NE(without, with);
    EXPECT_EQ(withoutRoom, marked({80, 23, true}));
}

/// Runs the program on a terminal, with one task in view.
class TerminalTest : public testing::Test {
protected:
    TerminalTest() {
        useUnicode();
        setenv("HOME", home.root().c_str(), 1);
        setenv("LANGUAGE", "en", 1);
        setTitle("Fix the tests");
        home.append(".codex/sessions/" + kTask + ".jsonl",
                    records::compacted("w1") + records::tokenCount("128000"));
        home.append("Library/Logs/com.openai.codex/x.log", records::log("1 activity TASK"));
    }

    void setTitle(const std::string& title) {
        home.write(".codex/session_index.jsonl", records::title(kTask, title));
    }

    /// Runs a command line in which "$b" is the program.
    PseudoTerminal& start(const std::string& command, const std::string& environment = "") {
        terminal = std::make_unique<PseudoTerminal>(
            80, 24,
            "unset LANG LC_CTYPE NO_COLOR; export HOME='" + home.root() +
                "' b='" BRIMLETCTL "' XDG_CONFIG_HOME= LC_ALL=C.UTF-8 TERM=mach " + environment +
                "; " + command);
        return *terminal;
    }

    bool selects(std::string_view text) const {
        return terminal->waitUntil(
            [&] { return terminal->reversed().find(text) != std::string::npos; });
    }

    /// Expects that modes, screen, cursor and pasting have been restored.
    void expectRestored() const {
        const std::string& output = terminal->output;
        EXPECT_TRUE(terminal->hasModesAsFound());
        const auto lastIs = [&](const char* on, const char* off) {
            return output.rfind(on) != output.npos &&
                   output.find(off, output.rfind(on)) != output.npos;
        };
        EXPECT_TRUE(lastIs("\033[?1049h", "\033[?1049l"));
        EXPECT_TRUE(lastIs("\033[?2004h", "\033[?2004l"));
        EXPECT_TRUE(lastIs("\033[?25l", "\033[?25h"));
    }

    TemporaryHome home;
    std::unique_ptr<PseudoTerminal> terminal;
};

TEST_F(TerminalTest, KeysMoveAndChooseAndPastedTextIsNone) {
    PseudoTerminal& t = start("exec $b watch");
    ASSERT_TRUE(t.waitFor("C1 · 47%"));
    EXPECT_TRUE(t.waitFor(shownText("task_format", {"Fix the tests"})));
    t.press("j");
    EXPECT_TRUE(selects(shownText("language")));
    t.press("\033[B");
    EXPECT_TRUE(selects(shownText("refresh")));
    EXPECT_EQ(std::string::npos, t.reversed().find("│"));
    t.press("jk\033[A");
    EXPECT_TRUE(selects(shownText("language")));
    t.press("\r");
    EXPECT_TRUE(selects(shownText("language_system")));
    t.press("\033");
    EXPECT_TRUE(selects(shownText("language")));
    for (const char* closing : {"\033", "?"}) {
        t.press("?");
        EXPECT_TRUE(t.waitFor("Enter →"));
        t.press(closing);
        EXPECT_TRUE(t.waitFor(shownText("compaction_format", {"1"})));
    }
    t.press("\033[200~jq?l2\033[B\r\033[201~k");
    EXPECT_TRUE(selects(shownText("quit"))) << "from the first to the last";
    t.press("\r");
    EXPECT_EQ(0, t.waitForEnd());
}

TEST_F(TerminalTest, EveryScriptKeepsTheFrameAtEveryWidth) {
    for (const char* script : kScripts) {
        setTitle(script);
        const std::string title = terminal::shown(script, {});
        PseudoTerminal& t = start("exec $b watch");
        for (const int columns : kWidths) {
            t.resize(columns, 24);
            ASSERT_TRUE(t.waitUntil([&] {
                return t.rightEdge().starts_with("┐│┤│││┤││┤│││┘") &&
                       t.row(2).find(columns < 80 ? "│" : title) != std::string::npos;
            })) << t.screen();
        }
    }
}

TEST_F(TerminalTest, LeavesTheTerminalAsFound) {
    for (const int end : {0, SIGTERM, SIGINT, SIGSEGV, SIGABRT}) {
        PseudoTerminal& t = start("exec $b watch", "TERM=xterm-256color");
        ASSERT_TRUE(t.waitForBytes("47%"));
        EXPECT_FALSE(t.hasModesAsFound());
        if (end == 0) {
            t.press("q");
        } else {
            kill(t.process, end);
        }
        const int status = t.waitForEnd();
        const bool isFault = end == SIGSEGV || end == SIGABRT;
        EXPECT_EQ(isFault, WIFSIGNALED(status)) << end;
        EXPECT_EQ(isFault ? end : 0, isFault ? WTERMSIG(status) : WEXITSTATUS(status));
        expectRestored();
    }
}

TEST_F(TerminalTest, LeavesTheTerminalAsFoundWhileItIsStopped) {
    PseudoTerminal& t =
        start("set -m; $b watch; echo stopped; read line; fg", "TERM=xterm-256color");
    ASSERT_TRUE(t.waitForBytes("47%"));
    t.press("\x1a");
    ASSERT_TRUE(t.waitForBytes("stopped"));
    expectRestored();
    t.output.clear();
    t.press("\n");
    ASSERT_TRUE(t.waitForBytes("47%"));
    EXPECT_TRUE(t.waitForBytes("\033[?2004h"));
    t.press("q");
    EXPECT_EQ(0, t.waitForEnd());
    expectRestored();
}

TEST_F(TerminalTest, EndsWhileOutputIsStoppedOrNobodyTakesIt) {
    for (const bool isSignalled : {true, false}) {
        PseudoTerminal& t = start("exec $b watch", "TERM=xterm-256color");
        ASSERT_TRUE(t.waitForBytes("47%"));
        t.waitUntilQuiet();
        t.stopOutput();
        t.press(isSignalled ? "j" : "q");
        isSignalled ? kill(t.process, SIGTERM) : 0;
        EXPECT_EQ(0, t.waitForEnd());
        expectRestored();
    }
    PseudoTerminal& t = start("exec $b watch", "TERM=xterm-256color");
    ASSERT_TRUE(t.waitForBytes("47%"));
    t.fill();
    kill(t.process, SIGTERM);
    EXPECT_EQ(t.process, waitpid(t.process, nullptr, 0));
    EXPECT_TRUE(t.hasModesAsFound());
}

#ifdef BRIMLET_IS_CONFINED  // A sanitizer needs more descriptors.

TEST_F(TerminalTest, WhyItCannotBeginIsToldOnTheRestoredScreen) {
    PseudoTerminal& t = start("exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; ulimit -n 4; exec $b watch",
                              "TERM=xterm-256color");
    EXPECT_EQ(256, t.waitForEnd());
    const std::size_t end = t.output.find("\033[?1049l");
    EXPECT_NE(std::string::npos, t.output.find("no file descriptors are left", end));
    expectRestored();
}

#endif
#ifdef BRIMLET_LANGUAGE_FROM_ENVIRONMENT

TEST_F(TerminalTest, SpeaksEnglishWhereTheCharactersOfTheLanguageCannotBeShown) {
    for (const char* environment :
         {"LANGUAGE= LC_ALL= LANG=zh_CN", "LANGUAGE= LC_ALL= LANG=zh_CN.GBK",
          "LANGUAGE=zh_CN LC_ALL= LANG=C", "LANGUAGE=zh_CN LC_ALL=POSIX"}) {
        PseudoTerminal& t = start("exec $b watch", environment);
        EXPECT_TRUE(t.waitFor("Current task: Fix the tests")) << environment;
        t.press("l");
        EXPECT_TRUE(t.waitUntil([&] { return t.rightEdge().starts_with("+|+|||+||+||||||+"); }))
            << t.screen();
        const std::string screen = t.screen();
        EXPECT_NE(std::string::npos, screen.find("* System Default")) << screen;
        EXPECT_NE(std::string::npos, screen.find("Simplified Chinese")) << screen;
        EXPECT_EQ(1, std::count(screen.begin(), screen.end(), '?')) << screen;
    }
    for (const char* environment :
         {"LANGUAGE= LC_ALL= LANG=zh_CN.utf8", "LANGUAGE=zh_CN LC_ALL="}) {
        EXPECT_TRUE(start("exec $b watch", environment).waitFor("当前任务")) << environment;
    }
    EXPECT_TRUE(start("exec $b top", "LANGUAGE=zh_CN LC_ALL=").waitFor(" 次回答"));
}

#endif
#ifdef BRIMLET_SETTINGS_IN_HOME

TEST_F(TerminalTest, TheLanguageChosenIsStoredAndChecked) {
    PseudoTerminal& t = start("exec $b watch");
    ASSERT_TRUE(t.waitFor(shownText("task_format", {"Fix the tests"})));
    t.press("l3");
    EXPECT_TRUE(t.waitFor("当前任务：Fix the tests"));
    EXPECT_TRUE(t.waitFor("↑↓ 移动"));
    EXPECT_TRUE(t.waitUntil([&] { return home.holds(".config/brimlet/defaults.json"); }));
    PseudoTerminal& ascii = start("exec $b watch", "LC_ALL=C");
    ASSERT_TRUE(ascii.waitFor("Current task: Fix the tests"));
    ascii.press("l");
    EXPECT_TRUE(ascii.waitFor("* Simplified Chinese"));
    EXPECT_EQ("{\"BrimletLanguageMode\":2}\n", home.content(".config/brimlet/defaults.json"));
}

#endif

TEST_F(TerminalTest, TopShowsTasksOpensAMenuAndKeepsTheSelection) {
    const std::string other = ".codex/sessions/" + records::kOther + ".jsonl";
    home.append(other, records::tokenCount("27200"));
    home.setDate(other, 1'000'000'000);
    PseudoTerminal& t = start("exec $b top");
    ASSERT_TRUE(t.waitFor("C0 · 10%")) << t.screen();
    EXPECT_TRUE(selects("C1 · 47%"));
    EXPECT_TRUE(t.waitFor("100%┤")) << "the history of the selected task";
    t.press("j");
    EXPECT_TRUE(selects("C0 · 10%"));
    t.press("\033[H");
    EXPECT_TRUE(selects("C1 · 47%"));
    t.press("\033[U");  // Page Down of this terminal.
    EXPECT_TRUE(selects("C0 · 10%"));
    home.append(other, records::tokenCount("54400"));
    EXPECT_TRUE(t.waitUntil([&] { return t.row(1).find("C0 · 20%") != std::string::npos; }))
        << "the newest comes first" << t.screen();
    EXPECT_TRUE(selects("C0 · 20%")) << "and is still selected";
    t.press("\r");
    EXPECT_TRUE(t.waitUntil([&] { return t.rightEdge().starts_with("┐│┤│││┤"); })) << t.screen();
    t.press("\033");
    EXPECT_TRUE(selects("C0 · 20%"));
    t.press("?");
    for (const char* keys :
         {"↑ ↓  k j", "PgUp PgDn", "Home End", "Enter │", "Esc b", "h │", "? │", "q │"}) {
        EXPECT_TRUE(t.waitFor(keys)) << keys << t.screen();
    }
    t.press("q");
    EXPECT_EQ(0, t.waitForEnd());
}

TEST_F(TerminalTest, TopHasItsHeadTheSelectionAndTheKeysAtEverySize) {
    for (int i = 10; i < 40; ++i) {
        std::string task = kTask;
        task.replace(0, 2, std::to_string(i));
        home.append(".codex/sessions/" + task + ".jsonl", records::tokenCount("27200"));
        home.append(
            ".codex/session_index.jsonl",
            records::title(task, kScripts[static_cast<std::size_t>(i) % std::size(kScripts)]));
    }
    PseudoTerminal& t = start("exec $b top --limit 0");
    for (const auto& size : {std::pair{40, 8}, {80, 24}, {200, 60}, {60, 17}}) {
        const int rows = size.second;
        t.resize(size.first, rows);
        EXPECT_TRUE(t.waitUntil([&] {
            return t.row(0).find_first_not_of(' ') != std::string::npos &&
                   t.row(0).find('%') == std::string::npos &&
                   t.row(rows - 1).find("↑↓") != std::string::npos &&
                   t.reversed().find("C") != std::string::npos;
        })) << t.screen();
    }
    EXPECT_TRUE(start("exec $b top --here --folder /usr").waitFor(shownWord(&ORVWords::noTasks)));
    EXPECT_TRUE(
        start("exec $b top --codex-home /usr").waitFor(shownWord(&ORVWords::noSessionFiles)));
}

TEST_F(TerminalTest, ColoursAreShownWhereTheyAreWanted) {
    const auto coloured = [&](const char* environment) {
        PseudoTerminal& t = start("exec $b watch", environment);
        EXPECT_TRUE(t.waitForBytes("47%"));
        return t.output.find("\033[38;5;28m") != std::string::npos ||
               t.output.find("\033[32m") != std::string::npos;
    };
    EXPECT_TRUE(coloured("TERM=xterm-256color"));
    EXPECT_TRUE(coloured("TERM=xterm"));
    EXPECT_FALSE(coloured("TERM=mach"));
    EXPECT_FALSE(coloured("TERM=xterm-256color NO_COLOR="));
    EXPECT_TRUE(start("exec $b tasks --color always", "LC_ALL=C").waitFor("C1 - 47%  #####....."));
}

}  // namespace
