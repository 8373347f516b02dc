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
        setenv("TZ", "UTC", 1);
        around.disk.makeFolder("/h/Library/Logs/com.openai.codex");
        around.disk.makeFolder(kSessions);
    }

    void launch() { app->applicationDidFinishLaunching(); }

    void openTask() {
        const std::string file = kSessions + ("/" + records::kTask) + ".jsonl";
        around.disk.write(file, records::compacted("w1") + records::tokenCount("128000"),
                          1'000'000'000);
        around.disk.write("/h/.codex/session_index.jsonl",
                          records::title(records::kTask, "Fix the tests"));
        around.disk.append(kLog, log("1 activity TASK"));
    }

    void finishRefresh() {
        ASSERT_EQ(1U, around.dispatched.size()) << "one refresh is under way";
        around.runDispatched();
    }

    const ORVMenuItem& item(std::string_view field) const {
        const ORVMenu* const menu = app->statusItem().menu.get();
        const ORVMenu* const languages = menu->items[10]->submenu.get();
        for (const ORVMenu* shown : {menu, languages}) {
            for (const auto& each : shown->items) {
                if (each->field == field) {
                    return *each;
                }
            }
        }
        std::abort();
    }

    std::string barTitle() const { return app->statusItem().title; }

    /// Returns the refresh item's title and image, and whether it can be chosen.
    std::string refreshItem() const {
        const ORVMenuItem& refresh = item("refreshItem");
        EXPECT_EQ(refresh.title, refresh.image->description);
        return refresh.title + " " + refresh.image->name + (refresh.enabled ? "" : " disabled");
    }

    /// Returns the titles of the visible information lines, with a plain space before AM: systems
    /// use different ones.
    std::string lines() const {
        std::string text;
        for (const char* field :
             {"titleItem", "focusItem", "contextItem", "compactionItem", "updatedItem"}) {
            text += item(field).hidden ? "" : item(field).title + "\n";
        }
        const std::size_t space = text.find("\u202F");
        return space == text.npos ? text : text.replace(space, 3, " ");
    }

    ManualHost around;
    std::shared_ptr<ORVAppDelegate> app = std::make_shared<ORVAppDelegate>(around);
};

const char* const kTaskLines =
    "Current task: Fix the tests\nContext usage: 128k / 272k (47%)\nCompactions: 1\n"
    "Last session update: 1:46:40 AM\n";

TEST_F(AppDelegateTest, StartsWithTheLoadingTextsAndAFirstRefreshBeforeTheTimer) {
    launch();
    EXPECT_EQ("dispatch-before-timer ", around.notes);
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
    for (const auto& each : app->statusItem().menu->items) {
        layout += (each->isSeparator() ? "-" : each->field) + each->keyEquivalent + " ";
        EXPECT_TRUE(each->enabled);
    }
    EXPECT_EQ(
        "titleItem focusItem - contextItem compactionItem updatedItem - sourceItem "
        "privacyItem - languageItem refreshItemr quitItemq ",
        layout);
    EXPECT_EQ("globe", item("languageItem").image->name);
    EXPECT_EQ("Detect Now arrow.clockwise", refreshItem());
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
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    EXPECT_EQ("✓ Check Complete", barTitle()) << "no task without an error";
}

TEST_F(AppDelegateTest, FiguresThatCannotBeShown) {
    launch();
    const auto render = [&](ORVCompactionStatus compactions, ORVContextStatus context) {
        const ORVContextUsage usage(12'345, 258'400);
        app->renderSnapshot({"100% %@ %ld", "id", "/x", 3, usage, context, compactions, {}});
        return barTitle() + "|" + item("contextItem").title + "|" + item("compactionItem").title;
    };
    EXPECT_EQ("C3 · 5%|Context usage: 12.3k / 258.4k (5%)|Compactions: 3",
              render(ORVCompactionStatusValid, ORVContextStatusAvailable));
    EXPECT_EQ("Current task: 100% %@ %ld", item("titleItem").title) << "a title is no format";
    EXPECT_EQ(
        "C– · --%|Context usage: Waiting for data|Compactions: Format changed; update Brimlet",
        render(ORVCompactionStatusIncompatible, ORVContextStatusWaiting));
    EXPECT_EQ("C3 · --%|Context usage: Format changed; update Brimlet|Compactions: 3",
              render(ORVCompactionStatusValid, ORVContextStatusIncompatible));
}

TEST_F(AppDelegateTest, TokenCounts) {
    const std::pair<std::int64_t, const char*> kCases[] = {{-5, "-5"},          {0, "0"},
                                                           {999, "999"},        {1'000, "1k"},
                                                           {1'049, "1k"},       {1'050, "1.1k"},
                                                           {1'950, "1.9k"},     {1'960, "2k"},
                                                           {12'345, "12.3k"},   {258'400, "258.4k"},
                                                           {999'949, "999.9k"}, {999'950, "1000k"}};
    for (const auto& [count, text] : kCases) {
        EXPECT_EQ(text, ORVAppDelegate::formattedTokenCount(count)) << count;
    }
}

TEST_F(AppDelegateTest, TheRefreshCommandTellsHowItEnds) {
    openTask();
    launch();
    app->performKeyEquivalent("r");
    EXPECT_EQ("Checking…", barTitle()) << "the running refresh serves the request";
    EXPECT_EQ("Checking… arrow.triangle.2.circlepath disabled", refreshItem());
    EXPECT_EQ("Checking…", app->statusLine());
    finishRefresh();
    EXPECT_EQ("✓ Check Complete", barTitle());
    EXPECT_EQ("Brimlet, ✓ Check Complete", app->spokenStatus());
    EXPECT_EQ("✓ Check Complete checkmark.circle.fill disabled", refreshItem());
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
    EXPECT_EQ("Detect Now arrow.clockwise", refreshItem());

    around.disk.remove(kSessions);
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    EXPECT_EQ("Check Failed exclamationmark.triangle.fill disabled", refreshItem());
    app->showManualRefreshFeedbackForKey("refresh_access_required");
    around.loop.advance(milliseconds(5'000));
    EXPECT_EQ("Grant Access First", barTitle()) << "newer feedback outlives an older reset";
    EXPECT_EQ("Grant Access First lock.fill disabled", refreshItem());
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
    EXPECT_EQ("重新检测 arrow.clockwise", refreshItem());
    EXPECT_EQ("", around.notes) << "without a refresh";
    EXPECT_EQ(2, around.defaults.stored);
    EXPECT_TRUE(item("chineseLanguageItem").state);
    EXPECT_FALSE(item("systemLanguageItem").state);
    app->chooseItemNamed("refreshItem");
    finishRefresh();
    app->chooseItemNamed("englishLanguageItem");
    EXPECT_EQ("✓ Check Complete", barTitle()) << "feedback stays, in the other language";
    EXPECT_EQ("✓ Check Complete checkmark.circle.fill disabled", refreshItem());
}

TEST_F(AppDelegateTest, AnotherTaskOrListIsReadAtOnce) {
    openTask();
    around.request.task.choice = ORVShownTask::Choice::none;
    around.request.list.emplace();
    launch();
    finishRefresh();
    around.notes.clear();
    app->showList({.limit = 1});
    app->showTask({ORVShownTask::Choice::identified, records::kTask});
    EXPECT_EQ("dispatch ", around.notes) << "one refresh at a time";
    EXPECT_EQ("Current task: Reading Codex data…", item("titleItem").title);
    finishRefresh();
    EXPECT_EQ("dispatch dispatch ", around.notes)
        << "the task was asked for too late for the first";
    EXPECT_EQ("C– · --%", barTitle()) << "nothing of the task before";
    finishRefresh();
    EXPECT_EQ("C1 · 47%", barTitle());
    EXPECT_EQ(1U, app->lastList()->tasks.size());
    app->showTask({ORVShownTask::Choice::identified, records::kTask});
    EXPECT_EQ("dispatch dispatch ", around.notes) << "the same task";
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
