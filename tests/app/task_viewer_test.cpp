#include "app/ORVTaskViewer.h"

#include <gtest/gtest.h>

#include "shells/lines/answers.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

namespace {

using records::compacted;
using records::kOther;
using records::kTask;
using records::log;
using records::tokenCount;
using Fault = MemoryFiles::Fault;

/// Both sources over files of both kinds, and what they answer.
class World {
public:
    World() {
        disk.write("/Applications/Codex.app/Contents/Info.plist",
                   "<plist><dict><key>CFBundleShortVersionString</key><string>1.2</string>"
                   "</dict></plist>");
        disk.append(kOldLog, log("1 activity OTHER") + padding());
        disk.append(kLog, log("1 window | 2 route /local/TASK"));
        disk.append(file("a"),
                    compacted("w1") + records::contextCompacted("") + padding() + compacted("w2"));
        disk.append(file("b"), compacted("w2") + tokenCount("136000"));
        disk.append(file("c", kOther), tokenCount("27200"));
        disk.write(kIndex, records::title(kTask, "first"));
    }

    /// Changes the files as the applications do: one grows, one is replaced, one is shortened.
    void goOn() {
        disk.append(kLog, log("3 route /local/OTHER") + "4 half of a li");
        disk.replace(kOldLog, log("2 activity OTHER") + padding() + log("5 activity TASK"));
        disk.replace(file("a"), compacted("w4") + compacted("w1"));
        disk.append(file("b"), compacted("w3") + tokenCount("68000") + "{\"ty");
        disk.write(file("c", kOther), "");
        disk.write(kIndex, records::title(kTask, "second"));
    }

    std::string refresh() {
        const ORVTaskView view = viewer_.view({});
        return json::focus(*view.focusState) + json::snapshot(view.snapshot) +
               json::error(view.error);
    }

    const int home = setenv("HOME", "/h", 1);  ///< Before the viewer looks for it.
    MemoryFiles disk;
    ManualClock clock;

private:
    static constexpr const char* kIndex = "/codex/session_index.jsonl";
    static constexpr const char* kLog = "/h/Library/Logs/com.openai.codex/b.log";
    static constexpr const char* kOldLog = "/h/Library/Logs/com.openai.codex/old/a.log";

    /// A text that is longer than one chunk.
    static std::string padding() { return records::message(std::string(140'000, 'x')); }
    static std::string file(const std::string& name, const std::string& task = kTask) {
        return "/codex/sessions/" + name + "/" + task + ".jsonl";
    }

    ORVTaskViewer viewer_{disk, clock, "/codex", {}};
};

/// Brings about the fault at every call of the first refresh, or of the one after the files
/// changed. The next refresh, without a fault, must answer as if nothing had happened. `isSeen`
/// tells whether the fault shows in the answer of the refresh in which it happens.
void sweep(Fault fault, bool isSeen, bool afterChange) {
    const auto prepare = [afterChange](World& world) {
        if (afterChange) {
            (void)world.refresh();
            world.goOn();
        }
    };
    World healthy;
    prepare(healthy);
    const std::string expected = healthy.refresh();
    int faults = 0;
    bool wasSeen = false;
    bool wasUntouched = false;
    for (int call = 1; !wasUntouched; ++call) {
        World faulty;
        prepare(faulty);
        faulty.disk.failingCall = faulty.disk.calls + call;
        faulty.disk.fault = fault;
        wasSeen = faulty.refresh() != expected || wasSeen;
        faults += faulty.disk.faults;
        wasUntouched = faulty.disk.calls < faulty.disk.failingCall;
        faulty.disk.failingCall = 0;
        // A search that missed a folder is kept for ten seconds.
        const bool isOfSearch = fault == Fault::unseenFolder || fault == Fault::error;
        faulty.clock.time += std::chrono::seconds(isOfSearch ? 11 : 0);
        ASSERT_EQ(expected, faulty.refresh()) << "at call " << call;
    }
    EXPECT_GT(faults, 0);
    EXPECT_EQ(isSeen, wasSeen);
}

TEST(TaskViewerTest, ASnapshotIsAskedForOnlyWhileATaskIsInView) {
    constexpr int kAttributesOfTheLog = 3;  // The calls before it: property list and walk.
    constexpr const char* kLog = "/h/Library/Logs/com.openai.codex/main.log";
    const std::string file = "/codex/sessions/" + kTask + ".jsonl";
    MemoryFiles disk;
    const ManualClock clock;
    setenv("HOME", "/h", 1);
    ORVTaskViewer viewer(disk, clock, "/codex", {});
    /// Returns the focus status, the snapshot's task, and the error.
    const auto refresh = [&](int failingCall) {
        disk.failingCall = failingCall == 0 ? 0 : disk.calls + failingCall;
        const ORVTaskView view = viewer.view({});
        return std::to_string(view.focusState->status()) +
               (view.snapshot ? " " + view.snapshot->threadID() : "") +
               (view.error ? " error " + std::to_string(view.error->code) : "");
    };
    EXPECT_EQ("2 error " + std::to_string(ENOENT), refresh(0));
    disk.append(kLog, log("1 activity TASK"));
    disk.append(file, "");
    EXPECT_EQ("0 " + kTask, refresh(0));
    EXPECT_EQ("0 " + kTask + " error " + std::to_string(EIO), refresh(kAttributesOfTheLog))
        << "the focus source's error stands beside a snapshot";
    disk.remove(file);
    EXPECT_EQ("0 error " + std::to_string(EIO), refresh(kAttributesOfTheLog))
        << "and before a missing task";
    EXPECT_EQ("0 error 2", refresh(0));
    disk.append(kLog, log("2 activity client-new-thread:1"));
    EXPECT_EQ("1", refresh(0));
}

/// Tasks that are named by one letter, and what is shown of them.
class ShownTaskTest : public testing::Test {
protected:
    static std::string idOf(char task) {
        return "01a20e72-0000-7000-8000-00000000000" + std::string(1, task);
    }

    void begin(char task, const std::string& parent = "") {
        disk.write(fileOf(task),
                   (parent.empty() ? "" : records::helperMeta(parent)) + tokenCount("27200"));
    }
    void goOn(char task) { disk.append(fileOf(task), tokenCount("27200")); }

    char latest() {
        clock.time += std::chrono::seconds(2);
        view = viewer.view({ORVShownTask::Choice::latest, ""});
        return view.snapshot ? view.snapshot->threadID().back() : '-';
    }

    MemoryFiles disk;
    ManualClock clock;
    ORVTaskViewer viewer{disk, clock, "/codex", {.shortID = true}};
    ORVTaskView view;  ///< The one that was asked for last.

private:
    static std::string fileOf(char task) { return "/codex/sessions/" + idOf(task) + ".jsonl"; }
};

TEST_F(ShownTaskTest, AHelperNeverMakesTheShownTaskFlip) {
    EXPECT_EQ('-', latest());
    begin('a');
    begin('b', idOf('a'));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ('a', latest());
        goOn(i % 2 == 0 ? 'b' : 'a');
    }
    EXPECT_EQ('a', latest());
    EXPECT_LT(view.snapshot->lastUpdated(), view.changedAt) << "the family changed after its head";
}

TEST_F(ShownTaskTest, TwoTasksAtWorkDoNotTakeTurnsButATaskThatBeginsIsShown) {
    begin('a');
    begin('b');
    EXPECT_EQ('b', latest());
    goOn('a');
    EXPECT_EQ('a', latest()) << "nobody saw the other one change";
    for (int i = 0; i < 4; ++i) {
        goOn('b');
        EXPECT_EQ('a', latest());
        goOn('a');
        goOn('b');
        EXPECT_EQ('a', latest());
    }
    for (int i = 0; i < 4; ++i) {
        goOn('b');
        EXPECT_EQ('a', latest()) << i;
    }
    goOn('b');
    EXPECT_EQ('b', latest()) << "ten seconds after the last change";
    goOn('b');
    begin('c');
    EXPECT_EQ('c', latest());
}

TEST_F(ShownTaskTest, APartOfAnIdentifierMeansOneTaskOrNone) {
    const auto shown = [&](const std::string& part) {
        view = viewer.view({ORVShownTask::Choice::identified, part});
        return (view.snapshot ? view.snapshot->threadID() : "") +
               (view.error ? view.error->domain + std::to_string(view.error->code) : "");
    };
    EXPECT_EQ("Orvellan1", shown("A"));
    begin('a');
    EXPECT_EQ("Orvellan2", shown("B"));
    EXPECT_EQ(idOf('a'), shown("8000"));
    begin('b', idOf('a'));
    EXPECT_EQ(idOf('b'), shown("000B")) << "a helper, too";
    EXPECT_EQ("brimletctl3", shown("01a20e72"));
    EXPECT_EQ(idOf('a'), shown("8000")) << "who was meant is meant";
    const auto several = viewer.severalMeantBy("01a20e72");
    ASSERT_EQ(2U, several->choiceCount);
    EXPECT_EQ("00000b", several->choices.front().shortID);
    EXPECT_EQ(std::nullopt, viewer.severalMeantBy("00a"));
}

using ListedTasksTest = ShownTaskTest;

TEST_F(ListedTasksTest, RowsAreReadInPiecesAndKept) {
    for (const char task : {'a', 'b', 'c'}) {
        begin(task);
    }
    begin('d', idOf('a'));
    const auto rows = [&](const ORVListRequest& request) {
        std::string text;
        clock.time += std::chrono::seconds(2);
        const auto list = viewer.list(request);
        for (const ORVTaskView& row : list->tasks) {
            text += row.threadID.back();
            text += row.isRead ? (row.snapshot ? "" : "!") : "?";
        }
        return text + (list->isComplete ? "" : " more");
    };
    ORVListRequest request{.readAtOnce = 1};
    EXPECT_EQ("a more", rows(request)) << "a helper's change is its head's";
    EXPECT_EQ("acb? more", rows(request));
    EXPECT_EQ("acb", rows(request));
    request.showsHelpers = true;
    EXPECT_EQ("adcb", rows(request));
    const int opened = disk.opened;
    EXPECT_EQ("adcb", rows(request));
    EXPECT_EQ(opened, disk.opened) << "nothing changed";
    goOn('b');
    for (int i = 0; i < 4; ++i) {
        (void)rows(request);  // A file that was not written lately is asked for its date in turn.
    }
    EXPECT_EQ("badc", rows(request));
    EXPECT_EQ(opened + 1, disk.opened);
    EXPECT_EQ(viewer.list(request), viewer.list(request)) << "the same list while nothing changes";
    request.limit = 1;
    request.showsHelpers = false;
    EXPECT_EQ("b", rows(request));
    const auto changedAt = viewer.list(request)->tasks.front().changedAt;
    request.since = std::chrono::floor<std::chrono::seconds>(clock.time.time_since_epoch()) -
                    std::chrono::seconds(changedAt.seconds - 3);
    EXPECT_EQ("b", rows(request));
    EXPECT_EQ("", rows(request)) << "time passes";
}

TEST_F(ListedTasksTest, WhoAsksOnceOpensEachFileOnce) {
    begin('a');
    begin('b', idOf('a'));
    begin('c', idOf('9'));
    const auto rows = [&](const ORVListRequest& request) {
        const int before = disk.opened;
        std::string text;
        for (const ORVTaskView& row :
             viewer.listOnce(request, [](std::size_t, std::size_t) {}).tasks) {
            text += row.threadID.back();
            text += row.snapshot && row.isHelper == (row.threadID.back() == 'b') ? "" : "!";
        }
        return text + ' ' + std::to_string(disk.opened - before);
    };
    EXPECT_EQ("ca 4", rows({.limit = 0})) << "c's twice: it looks like a helper, but has no head";
    EXPECT_EQ("cab 3", rows({.limit = 0, .showsHelpers = true})) << "nothing was kept but those";
    disk.locked = {"/codex/sessions"};
    EXPECT_TRUE(viewer.list({})->mayHaveFiles);
    disk.locked.clear();
    disk.remove("/codex/sessions");
    EXPECT_FALSE(viewer.list({})->mayHaveFiles);
}

TEST(FaultsTest, AnyFaultIsMadeUpForByTheNextRefresh) {
    const std::pair<Fault, bool> kCases[] = {
        {Fault::error, true},         {Fault::unseenFolder, true}, {Fault::largerSize, false},
        {Fault::smallerSize, true},   {Fault::noSize, true},       {Fault::noDate, true},
        {Fault::noFileNumber, false}, {Fault::shortRead, false},   {Fault::earlyEnd, true}};
    for (const auto& [fault, isSeen] : kCases) {
        SCOPED_TRACE(static_cast<int>(fault));
        sweep(fault, isSeen, false);
        sweep(fault, isSeen, true);
    }
}

}  // namespace
