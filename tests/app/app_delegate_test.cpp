#include "app/ORVAppDelegate.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/ManualHost.h"
#include "tests/support/records.h"

namespace {

using records::log;
using std::chrono::milliseconds;

constexpr const char* kLog = "/h/Library/Logs/com.openai.codex/main.log";
constexpr const char* kSessions = "/h/.codex/sessions";

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() {
        setenv("HOME", "/h", 1);
        setenv("LANGUAGE", "en", 1);
        setenv("TZ", "UTC", 1);
        around.disk.makeFolder("/h/Library/Logs/com.openai.codex");
        around.disk.makeFolder(kSessions);
    }

    void launch() { app->applicationDidFinishLaunching(); }

    void openTask() {
        const std::string file = std::string(kSessions) + "/" + records::kTask + ".jsonl";
        around.disk.append(file, records::compacted("w1") + records::tokenCount("128000"));
        around.disk.setDate(file, 1'000'000'000);
        around.disk.write("/h/.codex/session_index.jsonl",
                          records::title(records::kTask, "Fix the tests"));
        around.disk.append(kLog, log("1 activity TASK"));
    }

    /// Lets the refresh that was dispatched run and its results arrive.
    void finishRefresh() {
        ASSERT_EQ(1U, around.dispatched.size()) << "one refresh is under way";
        around.runDispatched();
    }

    const ORVMenuItem& item(const std::string& field) const {
        for (const auto& top : app->statusItem().menu->items) {
            if (top->field == field) {
                return *top;
            }
            for (std::size_t i = 0; top->submenu && i < top->submenu->items.size(); ++i) {
                if (top->submenu->items[i]->field == field) {
                    return *top->submenu->items[i];
                }
            }
        }
        ADD_FAILURE() << "no item " << field;
        return *app->statusItem().menu->items.front();
    }

    std::string barTitle() const { return app->statusItem().title; }

    /// The titles of the information lines that are shown. Which space stands before AM differs
    /// from system to system.
    std::string lines() const {
        std::string text;
        for (const char* field :
             {"titleItem", "focusItem", "contextItem", "compactionItem", "updatedItem"}) {
            text += item(field).hidden ? "" : item(field).title + "\n";
        }
        const std::string narrowSpace = "\u202F";
        if (const std::size_t space = text.find(narrowSpace); space != std::string::npos) {
            text.replace(space, narrowSpace.size(), " ");
        }
        return text;
    }

    ManualHost around;
    std::shared_ptr<ORVAppDelegate> app = std::make_shared<ORVAppDelegate>(around);
};

const char* const kTaskLines =
    "Current task: Fix the tests\nContext usage: 128k / 272k (47%)\nCompactions: 1\n"
    "Last session update: 1:46:40 AM\n";

TEST_F(AppDelegateTest, StartsWithTheLoadingTextsAndAFirstRefreshBeforeTheTimer) {
    launch();
    EXPECT_EQ("defaults refresh dispatch-before-timer ", around.notes);
    EXPECT_EQ(1, around.loop.timersMade);
    EXPECT_EQ("C– · --%", barTitle());
    EXPECT_EQ("Brimlet", app->statusItem().toolTip);
    EXPECT_EQ(
        "Current task: Reading Codex data…\nContext usage: --\nCompactions: --\n"
        "Last session update: --\n",
        lines());
    EXPECT_EQ("C– · --%", app->statusLine());
    EXPECT_EQ("Brimlet, C– · --%", app->spokenStatus());
    std::string layout;
    for (const auto& top : app->statusItem().menu->items) {
        layout += (top->isSeparator() ? "-" : top->field) + (top->keyEquivalent) + " ";
        EXPECT_TRUE(top->enabled);
    }
    EXPECT_EQ(
        "titleItem focusItem - contextItem compactionItem updatedItem - sourceItem "
        "privacyItem - languageItem refreshItemr quitItemq ",
        layout);
    EXPECT_EQ("globe", item("languageItem").image->name);
    EXPECT_EQ("arrow.clockwise", item("refreshItem").image->name);
    EXPECT_TRUE(item("systemLanguageItem").state);
}

TEST_F(AppDelegateTest, OneRefreshAtATimeEveryTwoSeconds) {
    launch();
    around.loop.advance(milliseconds(10'000));
    EXPECT_EQ(1U, around.dispatched.size()) << "a slow refresh only stretches the interval";
    openTask();
    finishRefresh();
    EXPECT_EQ(kTaskLines, lines());
    EXPECT_EQ("C1 · 47%", barTitle());
    EXPECT_EQ("C1 · 47%  Fix the tests", app->statusLine());
    EXPECT_EQ("Brimlet, Context usage: 128k / 272k (47%), Compactions: 1", app->spokenStatus());
    around.loop.advance(milliseconds(1'999));
    EXPECT_TRUE(around.dispatched.empty());
    around.loop.advance(milliseconds(1));
    around.disk.remove(kSessions);
    finishRefresh();
    EXPECT_EQ(
        "Current task: Unavailable\nCurrent task data is temporarily unavailable\n"
        "Context usage: --\nCompactions: --\nLast session update: --\n",
        lines())
        << "a stale snapshot is never kept";
    EXPECT_EQ("C– · --%  Current task data is temporarily unavailable", app->statusLine());
    EXPECT_EQ("Brimlet, C– · --%, Current task data is temporarily unavailable",
              app->spokenStatus());
    openTask();
    around.loop.advance(milliseconds(2'000));
    finishRefresh();
    EXPECT_EQ(kTaskLines, lines()) << "and nothing of its absence";
}

TEST_F(AppDelegateTest, WhyThereIsNoTask) {
    launch();
    finishRefresh();
    EXPECT_EQ("Codex local data was not found", item("focusItem").title);
    const std::pair<const char*, const char*> kCases[] = {
        {"1 nothing", "Open a Codex task first"},
        {"2 activity client-new-thread:1", "New task data is being created…"},
        {"3 activity Appearance=", "Task detection format changed; update Brimlet"}};
    for (const auto& [line, focus] : kCases) {
        around.disk.append(kLog, log(line));
        around.loop.advance(milliseconds(2'000));
        finishRefresh();
        EXPECT_EQ(focus, item("focusItem").title);
        EXPECT_FALSE(item("focusItem").hidden);
    }
    EXPECT_EQ("C– · Update", barTitle());
}

TEST_F(AppDelegateTest, FiguresThatCannotBeShown) {
    launch();
    const auto render = [&](ORVCompactionStatus compactions, std::optional<ORVContextUsage> usage,
                            ORVContextStatus context) {
        app->renderSnapshot({"100% %@ %ld", "id", "/x", 3, usage, context, compactions, {}});
        return barTitle() + "|" + item("contextItem").title + "|" + item("compactionItem").title;
    };
    const ORVContextUsage usage(12'345, 258'400);
    EXPECT_EQ("C3 · 5%|Context usage: 12.3k / 258.4k (5%)|Compactions: 3",
              render(ORVCompactionStatusValid, usage, ORVContextStatusAvailable));
    EXPECT_EQ("Current task: 100% %@ %ld", item("titleItem").title) << "a title is no format";
    EXPECT_EQ(
        "C– · 5%|Context usage: 12.3k / 258.4k (5%)|Compactions: Format changed; update Brimlet",
        render(ORVCompactionStatusIncompatible, usage, ORVContextStatusAvailable));
    EXPECT_EQ("C3 · --%|Context usage: Waiting for data|Compactions: 3",
              render(ORVCompactionStatusValid, std::nullopt, ORVContextStatusAvailable));
    EXPECT_EQ("C3 · --%|Context usage: Format changed; update Brimlet|Compactions: 3",
              render(ORVCompactionStatusValid, usage, ORVContextStatusIncompatible));
}

TEST_F(AppDelegateTest, TokenCounts) {
    const std::pair<std::int64_t, const char*> kCases[] = {
        {-5, "-5"},          {0, "0"},
        {999, "999"},        {1'000, "1k"},
        {1'049, "1k"},       {1'050, "1.1k"},
        {1'950, "1.9k"},     {1'960, "2k"},
        {2'950, "3k"},       {12'345, "12.3k"},
        {258'400, "258.4k"}, {999'949, "999.9k"},
        {999'950, "1000k"},  {1'000'000, "1000k"}};
    for (const auto& [count, text] : kCases) {
        EXPECT_EQ(text, ORVAppDelegate::formattedTokenCount(count)) << count;
    }
}

TEST_F(AppDelegateTest, TheRefreshCommandTellsHowItEnds) {
    openTask();
    launch();
    app->performKeyEquivalent("r");
    EXPECT_EQ("Checking…", barTitle()) << "the running refresh serves the request";
    EXPECT_EQ("Checking…", item("refreshItem").title);
    EXPECT_EQ("arrow.triangle.2.circlepath", item("refreshItem").image->name);
    EXPECT_FALSE(item("refreshItem").enabled);
    EXPECT_EQ("Checking…", app->statusLine());
    finishRefresh();
    EXPECT_EQ("✓ Check Complete", barTitle());
    EXPECT_EQ("Brimlet, ✓ Check Complete", app->spokenStatus());
    EXPECT_EQ("checkmark.circle.fill", item("refreshItem").image->name);
    EXPECT_EQ(kTaskLines, lines()) << "the lines below show the results already";
    around.notes.clear();
    app->chooseItemNamed("refreshItem");
    app->performKeyEquivalent("r");
    EXPECT_EQ("", around.notes) << "a disabled item does nothing";

    around.loop.advance(milliseconds(1'000));
    app->refresh(nullptr);
    finishRefresh();
    EXPECT_EQ("✓ Check Complete", barTitle()) << "a timer's refresh does not cut it short";
    around.loop.advance(milliseconds(200));
    EXPECT_EQ("C1 · 47%", barTitle());
    EXPECT_TRUE(item("refreshItem").enabled);
    EXPECT_EQ("Detect Now", item("refreshItem").title);
    EXPECT_EQ("arrow.clockwise", item("refreshItem").image->name);

    around.disk.remove(kSessions);
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    EXPECT_EQ("Check Failed", barTitle());
    EXPECT_EQ("exclamationmark.triangle.fill", item("refreshItem").image->name);
}

TEST_F(AppDelegateTest, NoTaskWithoutAnErrorIsACompleteCheck) {
    launch();
    finishRefresh();
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    EXPECT_EQ("✓ Check Complete", barTitle());
}

TEST_F(AppDelegateTest, NewerFeedbackIsNotEndedByAnOlderReset) {
    launch();
    finishRefresh();
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    around.loop.advance(milliseconds(600));
    app->showManualRefreshFeedbackForKey("refresh_access_required");
    around.loop.advance(milliseconds(5'000));
    EXPECT_EQ("Grant Access First", barTitle());
    EXPECT_EQ("lock.fill", item("refreshItem").image->name);
    EXPECT_FALSE(item("refreshItem").enabled);
}

TEST_F(AppDelegateTest, ALanguageChangeShowsEverythingInItAtOnce) {
    openTask();
    launch();
    finishRefresh();
    around.notes.clear();
    app->chooseItemNamed("chineseLanguageItem");
    EXPECT_EQ(
        "当前任务：Fix the tests\n上下文占用：128k / 272k（47%）\n累计压缩：1 次\n"
        "最近会话更新：01:46:40\n",
        lines());
    EXPECT_EQ("重新检测", item("refreshItem").image->description);
    EXPECT_EQ("", around.notes) << "without a refresh";
    EXPECT_EQ(2, around.defaults.stored);
    EXPECT_TRUE(item("chineseLanguageItem").state);
    EXPECT_FALSE(item("systemLanguageItem").state);
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    app->chooseItemNamed("englishLanguageItem");
    EXPECT_EQ("✓ Check Complete", barTitle()) << "feedback stays, in the other language";
    EXPECT_EQ("✓ Check Complete", item("refreshItem").title);
    EXPECT_FALSE(item("refreshItem").enabled);
}

TEST_F(AppDelegateTest, ItemsDoWhatTheySay) {
    launch();
    around.notes.clear();
    EXPECT_TRUE(app->chooseItemNamed("titleItem"));
    EXPECT_FALSE(app->chooseItemNamed("nonsense"));
    EXPECT_FALSE(app->chooseItemNamed(""));
    EXPECT_FALSE(app->performKeyEquivalent(""));
    EXPECT_EQ("", around.notes);
    app->performKeyEquivalent("q");
    EXPECT_EQ("terminate ", around.notes);
}

}  // namespace
