#include "shells/terminal/table.h"

#include <gtest/gtest.h>
#include <locale.h>

namespace {

constexpr ORVClock::TimePoint kNow{std::chrono::seconds(1'000'000)};

ORVTaskView task(const std::string& title, std::int64_t tokens, const std::string& shortID) {
    ORVTaskView view;
    view.changedAt = {1'000'000 - tokens, 0};
    view.snapshot =
        ORVSessionSnapshot(title, "id", "/f", 3, ORVContextUsage(tokens, 100),
                           ORVContextStatusAvailable, ORVCompactionStatusValid, view.changedAt);
    view.shortID = shortID;
    view.folder = "/code/site";
    view.agent = std::make_shared<ORVAgentFacts>(ORVAgentFacts{"gpt-5", {}, {}, {}, {}});
    return view;
}

class TableTest : public testing::Test {
protected:
    TableTest() {
        EXPECT_TRUE(setlocale(LC_CTYPE, "C.UTF-8") || setlocale(LC_CTYPE, "UTF-8"));
        tasks = {task("Fix the tests", 47, "7b63d181"), task("重构刷新周期并修复测试 🚀", 96, "a1")};
        tasks[0].helpers = 2;
        tasks[1].isHelper = true;
        tasks[1].helperName = "Euler";
    }

    std::string shown(int columns, bool showsUnicode = true) const {
        const terminal::Screen screen{columns, 24, showsUnicode};
        std::string text;
        for (const terminal::Row& row :
             terminal::table(tasks, 0, 9, {l10n::kEnglishWords, kNow}, screen)) {
            int used = 0;
            for (const terminal::Piece& piece : row) {
                used += terminal::textColumns(piece.text);
            }
            EXPECT_GE(columns, used);
            text += terminal::lines({row}, false);
        }
        return text;
    }

    std::vector<ORVTaskView> tasks;
};

TEST_F(TableTest, EveryColumnWhereThereIsRoom) {
    EXPECT_EQ(
        "ID        STATUS                AGE  FOLDER  MODEL  HELPERS  TITLE\n"
        "7b63d181  C3 · 47%  █████░░░░░  47s  site    gpt-5  2        Fix the tests\n"
        "a1        C3 · 96%  ██████████  1m   site    gpt-5             Euler  重构刷新周期并…\n",
        shown(85));
    tasks.resize(1);
    tasks[0].shortID = "rollout-2026-11-24T16-45-20-notes.jsonl";
    tasks[0].folder = "/srv/web/";
    EXPECT_EQ(
        "ID                    STATUS                AGE  FOLDER  TITLE\n"
        "rollout-2026-11-24T…  C3 · 47%  █████░░░░░  47s  web     Fix the tests\n",
        shown(75))
        << "no name takes the room of the other columns";
}

TEST_F(TableTest, NarrowScreensKeepStatusAndTitleLongest) {
    const auto head = [&](int columns) {
        const std::string text = shown(columns);
        return text.substr(0, text.find('\n'));
    };
    EXPECT_EQ("ID        STATUS                AGE  FOLDER  MODEL  TITLE", head(80));
    EXPECT_EQ("ID        STATUS                AGE  FOLDER  TITLE", head(70));
    EXPECT_EQ("ID        STATUS                AGE  TITLE", head(55));
    EXPECT_EQ("ID        STATUS    AGE  TITLE", head(40));
    EXPECT_EQ("ID        STATUS    TITLE", head(35));
    EXPECT_EQ("STATUS    TITLE", head(30));
    for (int columns = 1; columns < 210; ++columns) {
        shown(columns);
        shown(columns, false);
    }
    EXPECT_EQ(std::string::npos, shown(120, false).find_first_of("\x80\xC2\xE2\xF0"));
}

TEST_F(TableTest, ColoursSelectionAndMarks) {
    const terminal::Screen screen{60, 24, true};
    const auto rows = terminal::table(
        tasks, 0, 9, {.words = l10n::kEnglishWords, .now = kNow, .hasMarks = true, .selected = 1},
        screen);
    EXPECT_EQ("  ", rows[1].front().text) << "47 seconds are long ago";
    tasks[0].changedAt = {999'990, 0};
    EXPECT_EQ("• ", terminal::table(tasks, 0, 9,
                                    {.words = l10n::kEnglishWords, .now = kNow, .hasMarks = true},
                                    screen)[1]
                        .front()
                        .text);
    for (const terminal::Piece& piece : rows[2]) {
        EXPECT_TRUE(piece.style.isReversed);
    }
    const std::string coloured =
        terminal::lines(terminal::table(tasks, 1, 1, {l10n::kEnglishWords, kNow}, screen), true);
    EXPECT_NE(std::string::npos, coloured.find("\x1b[1;31m96%")) << coloured;
}

}  // namespace
