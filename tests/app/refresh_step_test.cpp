#include "app/refresh_step.h"

#include <gtest/gtest.h>

#include "ctl/answers.h"
#include "sessions/ORVCodexSessionSource.h"
#include "tests/support/ManualClock.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

namespace {

using records::kOther;
using records::kTask;
using records::log;
using Fault = MemoryFiles::Fault;

/// Both sources over files of both kinds, and what they answer.
class World {
public:
    World() {
        disk.write("/Info.plist",
                   "<plist><dict><key>CFBundleShortVersionString</key><string>1.2</string>"
                   "</dict></plist>");
        disk.append("/logs/old/a.log", log("1 activity OTHER") + padding());
        disk.append("/logs/b.log", log("1 window | 2 route /local/TASK"));
        disk.append(file("a"), records::compacted("w1") + records::contextCompacted("") +
                                   padding() + records::compacted("w2"));
        disk.append(file("b"), records::compacted("w2") + records::tokenCount("136000"));
        disk.append(file("c", kOther), records::tokenCount("27200"));
        disk.write(kIndex, records::title(kTask, "first"));
    }

    /// Changes the files as the applications do: one grows, one is replaced, one is shortened.
    void goOn() {
        disk.append("/logs/b.log", log("3 route /local/OTHER") + "4 half of a li");
        disk.replace("/logs/old/a.log",
                     log("2 activity OTHER") + padding() + log("5 activity TASK"));
        disk.replace(file("a"), records::compacted("w4") + records::compacted("w1"));
        disk.append(file("b"), records::compacted("w3") + records::tokenCount("68000") + "{\"ty");
        disk.write(file("c", kOther), "");
        disk.write(kIndex, records::title(kTask, "second"));
    }

    std::string refresh() {
        const ORVRefreshResults results = app::refreshOfTaskInView(focus_, sessions_);
        return ctl::focusJSON(results.focusState) + ctl::snapshotJSON(results.snapshot) +
               ctl::errorJSON(results.error);
    }

    MemoryFiles disk;
    ManualClock clock;

private:
    static constexpr const char* kIndex = "/codex/session_index.jsonl";

    /// A text that is longer than one chunk.
    static std::string padding() { return records::message(std::string(140'000, 'x')); }
    static std::string file(const std::string& name, const std::string& task = kTask) {
        return "/codex/sessions/" + name + "/" + task + ".jsonl";
    }

    ORVCodexSessionSource sessions_{disk, clock, "/codex"};
    ORVCodexFocusLogSource focus_{disk, clock, "/logs", "/Info.plist"};
};

struct Case {
    Fault fault;
    bool isSeen;  ///< Whether it shows in the answer of the refresh in which it happens.
};

constexpr Case kCases[] = {
    {Fault::error, true},         {Fault::unseenFolder, true}, {Fault::largerSize, false},
    {Fault::smallerSize, true},   {Fault::noSize, true},       {Fault::noDate, true},
    {Fault::noFileNumber, false}, {Fault::shortRead, false},   {Fault::earlyEnd, true}};

/// Brings about the fault at every call of the first refresh, or of the one after the files
/// changed. The next refresh, without a fault, must answer as if nothing had happened.
void sweep(const Case& c, bool afterChange) {
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
    int seen = 0;
    bool wasUntouched = false;
    for (int call = 1; !wasUntouched; ++call) {
        World faulty;
        prepare(faulty);
        faulty.disk.failingCall = faulty.disk.calls + call;
        faulty.disk.fault = c.fault;
        seen += faulty.refresh() != expected ? 1 : 0;
        faults += faulty.disk.faults;
        wasUntouched = faulty.disk.calls < faulty.disk.failingCall;
        faulty.disk.failingCall = 0;
        if (c.fault == Fault::unseenFolder || c.fault == Fault::error) {
            // A search that missed a folder is kept for ten seconds.
            faulty.clock.time += std::chrono::seconds(11);
        }
        ASSERT_EQ(expected, faulty.refresh()) << "at call " << call;
    }
    EXPECT_GT(faults, 0);
    EXPECT_EQ(c.isSeen, seen > 0);
}

TEST(RefreshStepTest, ASnapshotIsAskedForOnlyWhileATaskIsInView) {
    constexpr int kAttributesOfTheLog = 3;  // The calls before it: property list and walk.
    constexpr const char* kLog = "/logs/main.log";
    const std::string file = std::string("/codex/sessions/") + kTask + ".jsonl";
    MemoryFiles disk;
    const ManualClock clock;
    ORVCodexSessionSource sessions(disk, clock, "/codex");
    ORVCodexFocusLogSource focus(disk, clock, "/logs", "/Info.plist");
    /// Returns the focus status, the snapshot's task, and the error.
    const auto refresh = [&](int failingCall) {
        disk.failingCall = failingCall == 0 ? 0 : disk.calls + failingCall;
        const ORVRefreshResults results = app::refreshOfTaskInView(focus, sessions);
        return std::to_string(results.focusState.status()) +
               (results.snapshot ? " " + results.snapshot->threadID() : "") +
               (results.error ? " error " + std::to_string(results.error->code) : "");
    };
    const std::string task = kTask;
    EXPECT_EQ("2 error " + std::to_string(ENOENT), refresh(0));
    disk.append(kLog, log("1 activity TASK"));
    disk.append(file, "");
    EXPECT_EQ("0 " + task, refresh(0));
    EXPECT_EQ("0 " + task + " error " + std::to_string(EIO), refresh(kAttributesOfTheLog))
        << "the focus source's error stands beside a snapshot";
    disk.remove(file);
    EXPECT_EQ("0 error " + std::to_string(EIO), refresh(kAttributesOfTheLog))
        << "and before a missing task";
    EXPECT_EQ("0 error 2", refresh(0));
    disk.append(kLog, log("2 activity client-new-thread:1"));
    EXPECT_EQ("1", refresh(0));
}

TEST(FaultsTest, AnyFaultIsMadeUpForByTheNextRefresh) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(static_cast<int>(c.fault));
        sweep(c, false);
        sweep(c, true);
    }
}

}  // namespace
