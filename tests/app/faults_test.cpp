// Everything that can go wrong with a call to the file system, at every call of a refresh: the next
// refresh, with nothing wrong, must say what it would have said anyway.

#include <gtest/gtest.h>

#include "app/refresh_step.h"
#include "ctl/answers.h"
#include "tests/sessions/SessionSourceTest.h"

namespace {

using Fault = FaultyFiles::Fault;

constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
constexpr const char* kOther = "01a20e70-11aa-7c20-9d00-5b1f0c7a4e02";

std::string activity(int time, const std::string& task) {
    return std::to_string(time) +
           " thread_stream_view_activity_changed active=true rendererWindowAppearance=primary "
           "rendererWindowFocused=true conversationId=" +
           task + "\n";
}

std::string route(int time, const std::string& task) {
    return std::to_string(time) +
           " IAB_LIFECYCLE received browser sidebar owner sync originWebContentsId=7 windowId=3 "
           "ownerRoutePath=/local/" +
           task + "\n";
}

const std::string kWindow =
    "1 [window-state] renderer_state_changed rendererWebContentsId=7 rendererWindowId=3 "
    "rendererWindowAppearance=primary rendererWindowFocused=true rendererWindowVisible=true\n";

/// A home folder, both sources over it, and what they say.
class World {
public:
    World() {
        home_.write("Info.plist",
                    "<plist><dict><key>CFBundleShortVersionString</key><string>1.2</string>"
                    "</dict></plist>");
        home_.append("logs/old/a.log", activity(1, kOther) + padding());
        home_.append("logs/b.log", kWindow + route(2, kTask));
        home_.append(file("a"), records::compacted("w1") + padding() + records::compacted("w2"));
        home_.append(file("b"), records::compacted("w2") + records::tokenCount("136000"));
        home_.append(file("c", kOther), records::tokenCount("27200"));
        home_.setDate(file("a"), 1'000);
        home_.write("codex/session_index.jsonl", records::title(kTask, "first"));
        home_.setDate("codex/session_index.jsonl", 1'000);
    }

    /// What the applications write while Brimlet looks on: more, another file, and less.
    void goOn() {
        home_.append("logs/b.log", route(3, kOther) + "4 half of a li");
        home_.replace("logs/old/a.log", activity(2, kOther) + padding() + activity(5, kTask));
        home_.append(file("b"), records::compacted("w3") + records::tokenCount("68000") + "{\"ty");
        home_.replace(file("a"), records::compacted("w4") + records::compacted("w1"));
        home_.setDate(file("a"), 1'000);
        home_.write(file("c", kOther), "");
        home_.write("codex/session_index.jsonl", records::title(kTask, "second"));
        home_.setDate("codex/session_index.jsonl", 2'000);
    }

    std::string refresh() {
        const ORVRefreshResults results = app::refreshFromFiles(focus_, sessions_);
        return ctl::focusJSON(results.focusState) +
               ctl::snapshotJSON(withoutDate(results.snapshot)) + ctl::errorJSON(results.error);
    }

    FaultyFiles files;
    ManualClock clock;

private:
    /// More than is read at once.
    static std::string padding() { return records::message(std::string(140'000, 'x')); }
    static std::string file(const std::string& name, const std::string& task = kTask) {
        return "codex/sessions/" + name + "/" + task + ".jsonl";
    }

    /// Written at another moment in every world.
    static std::optional<ORVSessionSnapshot> withoutDate(
        const std::optional<ORVSessionSnapshot>& snapshot) {
        if (!snapshot) {
            return std::nullopt;
        }
        return ORVSessionSnapshot(snapshot->title(), snapshot->threadID(), "",
                                  snapshot->compactionCount(), snapshot->contextUsage(),
                                  snapshot->contextStatus(), snapshot->compactionStatus(), {});
    }

    TemporaryHome home_;
    ORVCodexSessionSource sessions_{files, clock, home_.path("codex")};
    ORVCodexFocusLogSource focus_{files, home_.path("logs"), home_.path("Info.plist")};
};

struct Case {
    const char* name;
    Fault fault;
    int failure;
    bool isSeen;  ///< Whether it shows in the answer that it happened to.
};

constexpr Case kCases[] = {{"EACCES", Fault::error, EACCES, true},
                           {"EIO", Fault::error, EIO, true},
                           {"ENOENT", Fault::error, ENOENT, true},
                           {"EMFILE", Fault::error, EMFILE, true},
                           {"EINTR", Fault::error, EINTR, true},
                           {"a folder unseen", Fault::unseenFolder, EACCES, true},
                           {"a larger size", Fault::largerSize, 0, false},
                           {"a smaller size", Fault::smallerSize, 0, true},
                           {"no size", Fault::noSize, 0, true},
                           {"no date", Fault::noDate, 0, true},
                           {"no file number", Fault::noFileNumber, 0, false},
                           {"a short read", Fault::shortRead, 0, false},
                           {"an early end", Fault::earlyEnd, 0, true}};

/// Lets the fault happen at every call of the first refresh, or of the one after the files changed.
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
        faulty.files.calls = 0;
        faulty.files.failingCall = call;
        faulty.files.fault = c.fault;
        faulty.files.failure = c.failure;
        seen += faulty.refresh() != expected ? 1 : 0;
        faults += faulty.files.faults;
        wasUntouched = faulty.files.calls < call;
        faulty.files.failingCall = 0;
        if (c.fault == Fault::unseenFolder) {
            faulty.clock.advance(std::chrono::seconds(11));  // A search is good for ten.
        }
        ASSERT_EQ(expected, faulty.refresh()) << c.name << " at call " << call;
    }
    EXPECT_GT(faults, 1) << c.name;
    EXPECT_EQ(c.isSeen, seen > 0) << c.name;
}

TEST(FaultsTest, AnyFaultIsMadeUpForByTheNextRefresh) {
    for (const Case& c : kCases) {
        sweep(c, false);
        sweep(c, true);
    }
}

}  // namespace
