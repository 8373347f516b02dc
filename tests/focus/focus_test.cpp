#include <gtest/gtest.h>

#include "focus/ORVCodexFocusLogSource.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/records.h"

namespace {

using records::log;

const std::string kInTask = "0 " + records::kTask;
const std::string kInOther = "0 " + records::kOther;

struct LogCase {
    const char* name;
    const char* story;
    std::string focus;
};

const LogCase kLogCases[] = {
    {"nothing", "1 nothing", "3"},
    {"window and route", "1 window | 2 route /local/TASK", kInTask},
    {"query and fragment", "1 window | 2 route /local/TASK?foo=1#bar", kInTask},
    {"fragment and query", "1 window | 2 route /local/TASK#?", kInTask},
    {"new task", "1 window | 2 route /", "1"},
    {"new task with a query", "1 window | 2 route /?a", "1"},
    {"no identifier", "1 window | 2 route /local/abc", "4"},
    {"another page", "1 window | 2 route /settings", "4"},
    {"empty route", "1 window | 2 route", "4"},
    {"identifier and more", "1 window | 2 route /local/TASK/x", "4"},
    {"another window", "1 window | 2 route 7/4 /local/TASK", "3"},
    {"unknown web contents", "1 window | 2 route 8/3 /local/TASK", "3"},
    {"route before its window", "1 route /local/TASK | 2 window", "3"},
    {"unfocused window offers nothing", "1 window Focused=false | 2 route /local/TASK", "3"},
    {"invisible window offers nothing", "1 window Visible=false | 2 route /local/TASK", "3"},
    {"secondary window offers nothing", "1 window Appearance=hud | 2 route /local/TASK", "3"},
    {"losing the focus withdraws nothing",
     "1 window | 2 route /local/TASK | 3 window Focused=false", kInTask},
    {"line without appearance", "1 window | 2 window Appearance= Focused=no | 3 route /", "1"},
    {"line without focus", "1 window | 2 window Appearance=hud Focused= | 3 route /", "1"},
    {"line without visibility", "1 window | 2 window Focused=false Visible= | 3 route /", "1"},
    {"line without window", "1 window | 2 window 7/ Focused=false | 3 route /", "1"},
    {"the second window takes the focus",
     "1 window | 1 window 8/4 Focused=false | 3 route 8/4 /local/OTHER | 4 route /local/TASK | "
     "5 window 8/4",
     kInOther},
    {"and the first one takes it back",
     "1 window | 2 route /local/TASK | 3 window Focused=false | 4 window 8/4 | "
     "5 route 8/4 /local/OTHER | 6 window",
     kInTask},
    {"a visible flag alone renews nothing",
     "1 window | 1 window 8/4 Visible=false | 3 route 8/4 /local/OTHER | 4 route /local/TASK | "
     "5 window 8/4",
     kInTask},
    {"an older line loses", "1 window | 3 route /local/TASK | 2 activity OTHER", kInTask},
    {"an equal one wins", "1 window | 3 route /local/TASK | 3 activity OTHER", kInOther},
    {"time stamps are strings", "1 window | 9 route /local/TASK | 10 activity OTHER", kInTask},
    {"activity alone", "1 activity TASK", kInTask},
    {"activity of a new task", "1 activity client-new-thread:x", "1"},
    {"activity without a conversation", "1 activity", "4"},
    {"activity of something else", "1 activity abc", "4"},
    {"inactive", "1 activity TASK active=false", "3"},
    {"the first active= counts",
     "1 thread_stream_view_activity_changed isactive=false active=true "
     "rendererWindowAppearance=primary rendererWindowFocused=true conversationId=TASK",
     "3"},
    {"a field's name in other words",
     "1 thread_stream_view_activity_changed is active for conversationId active=true "
     "rendererWindowAppearance=primary rendererWindowFocused=true conversationId=TASK",
     kInTask},
    {"activity of a secondary window", "1 activity TASK Appearance=hud", "3"},
    {"activity without the focus", "1 activity TASK Focused=false", "3"},
    {"activity without an appearance", "1 activity TASK Appearance=", "4"},
    {"activity without a focus", "1 activity TASK Focused=", "4"},
    {"activity of a window with a route", "1 window | 2 route /local/TASK | 3 both OTHER", kInTask},
    {"activity of a window without one", "1 window | 3 both OTHER", kInOther},
    {"another window under its web contents",
     "1 window | 2 route /local/TASK | 3 window 7/9 | 4 both OTHER 7/9", kInOther},
    {"wide space after a value", "1 window | 2 route /local/TASK\u2003x", kInTask},
    {"and after a time stamp", "2\u3000 activity TASK | 2 activity OTHER", kInOther},
    {"not UTF-8", "1 activity TASK | 2 activity OTHER \xFF", kInTask},
    {"no marker", "1 active=true rendererWindowFocused=true conversationId=TASK", "3"},
};

std::string described(const ORVCodexFocusState& state) {
    return std::to_string(state.status()) + (state.threadID() ? " " + *state.threadID() : "");
}

std::string focusOf(const std::string& lines) {
    MemoryFiles disk;
    const ManualClock clock;
    disk.append("/logs/main.log", lines);
    return described(ORVCodexFocusLogSource(disk, clock, "/logs", "/Info.plist")
                         .currentFocusStateWithError(nullptr));
}

TEST(FocusLinesTest, LinesOfOneFile) {
    for (const LogCase& c : kLogCases) {
        EXPECT_EQ(c.focus, focusOf(log(c.story))) << c.name;
    }
    std::string window = log("1 window");
    EXPECT_EQ("3", focusOf(window.insert(window.size() - 1, "\r") + log("2 route /local/TASK")))
        << "a carriage return is part of the last value";
    EXPECT_EQ("3", focusOf(" " + log("1 activity TASK"))) << "no time stamp";
    EXPECT_EQ(kInTask, focusOf(log("1 window") + " " + log("2 route /local/TASK")));
    EXPECT_EQ(kInOther,
              focusOf(log("1 activity OTHER | 1 window") + " " + log("2 route /local/TASK")));
}

class FocusTest : public testing::Test {
protected:
    std::string focus() {
        error.reset();
        return described(source.currentFocusStateWithError(&error));
    }

    MemoryFiles disk;
    ManualClock clock;
    ORVErrorSlot error;
    ORVCodexFocusLogSource source{disk, clock, "/logs", "/Info.plist"};
};

TEST_F(FocusTest, FilesAreFoundAndReadOldestFirst) {
    EXPECT_EQ("2", focus());
    EXPECT_EQ(ENOENT, error->code) << "the system's error beside the state";
    disk.append("/logs/x.txt", log("9 activity TASK"));
    disk.append("/logs/main.log.1", log("9 activity TASK"));
    EXPECT_EQ("2", focus());
    EXPECT_FALSE(error);
    disk.append("/logs/b/c/newer.LOG", log("5 activity TASK"));
    disk.write("/logs/older.log", log("5 activity OTHER"), 1'000);
    EXPECT_EQ(kInTask, focus()) << "of equal time stamps the newest file's";
    disk.append("/logs/older.log", log("6 activity OTHER"));
    EXPECT_EQ(kInOther, focus());
}

TEST_F(FocusTest, FilesAreFollowed) {
    const std::string kLog = "/logs/main.log";
    const std::string whole = log("2 route /local/TASK");
    disk.append(kLog, log("1 window") + whole.substr(0, 40));
    EXPECT_EQ("3", focus());
    disk.append(kLog, whole.substr(40));
    EXPECT_EQ(kInTask, focus());
    const int opened = disk.opened;
    EXPECT_EQ(kInTask, focus());
    EXPECT_EQ(opened, disk.opened) << "a file without new bytes is not opened";

    disk.replace(kLog, std::string(5'000, 'x') + "\n" + log("3 route /local/OTHER"));
    EXPECT_EQ(kInTask, focus()) << "another file knows no windows";
    disk.write(kLog, log("4 window | 4 route /local/OTHER"));
    EXPECT_EQ(kInOther, focus()) << "a shorter file is read from its start";
    disk.append("/logs/other.log", log("5 route /local/TASK"));
    EXPECT_EQ(kInOther, focus()) << "a window is known in its own file only";
    disk.givesFileNumbers = false;  // Else a file that comes back would have another number.
    EXPECT_EQ(kInOther, focus());
    disk.remove(kLog);
    EXPECT_EQ(kInOther, focus()) << "the event outlives its file";
    disk.append(kLog, std::string(5'000, 'x') + "\n" + log("6 route /local/TASK"));
    EXPECT_EQ(kInOther, focus()) << "its windows do not";
    disk.remove("/logs");
    EXPECT_EQ("2", focus());
    disk.append("/logs/empty.log", "");
    EXPECT_EQ(kInOther, focus()) << "nor does it end with the last of them";
}

TEST_F(FocusTest, LinesAreReadUpToAGreatLength) {
    constexpr std::size_t kLongest = 64 * 1024 * 1024;
    const std::string line = log("1 activity TASK");
    for (const std::size_t length : {kLongest, kLongest + 1}) {
        const std::string padding(length - line.size() + 1, ' ');
        disk.replace("/logs/main.log", line.substr(0, line.size() - 1) + padding + "\n");
        ORVCodexFocusLogSource fresh(disk, clock, "/logs", "/Info.plist");
        EXPECT_EQ(length == kLongest ? kInTask : "3",
                  described(fresh.currentFocusStateWithError(nullptr)));
    }
    disk.append("/logs/main.log", log("2 activity OTHER"));
    EXPECT_EQ(kInOther, focus());

    disk.tellsHoles = true;
    disk.replace("/logs/main.log", std::string(1'000'000, '\0') + log("3 activity TASK"));
    ORVCodexFocusLogSource fresh(disk, clock, "/logs", "/Info.plist");
    EXPECT_EQ(kInTask, described(fresh.currentFocusStateWithError(nullptr)))
        << "a line with a hole is text";
    disk.replace("/logs/main.log", std::string(kLongest + 1, '\0') + log("4 activity TASK"));
    const int calls = disk.calls;
    EXPECT_EQ(kInOther, focus());
    EXPECT_GT(calls + 20, disk.calls) << "a hole that makes a line too long is skipped";
}

TEST_F(FocusTest, ErrorsAreToldBesideTheState) {
    bool wasUntouched = false;
    for (int call = 1; !wasUntouched; ++call) {
        disk.append("/logs/a.log", log("1 activity TASK"));
        disk.failingCall = disk.calls + call;
        (void)focus();
        wasUntouched = disk.calls < disk.failingCall;
        EXPECT_EQ(call > 1 && !wasUntouched, error.has_value())
            << "every failure but the property list's is told, call " << call;
    }
    constexpr int kWalk = 2;
    constexpr int kAttributes = 3;
    for (const int call : {kWalk, kAttributes}) {
        error = ORVError{"posix", EACCES, "from elsewhere"};
        disk.failingCall = disk.calls + call;
        (void)source.currentFocusStateWithError(&error);
        EXPECT_EQ(call == kWalk ? EACCES : EIO, error->code) << "a file's error replaces others";
    }
}

TEST_F(FocusTest, TheInstalledVersionStandsInEveryState) {
    const auto version = [&](const std::string& value) {
        disk.write("/Info.plist",
                   "<plist><dict><key>CFBundleName</key><string>Codex</string>"
                   "<key>CFBundleShortVersionString</key>" +
                       value + "</dict></plist>");
        return source.currentFocusStateWithError(nullptr).codexVersion();
    };
    EXPECT_EQ("1.2.3 — β", version("<string>1.2.3 — β</string>"));
    EXPECT_EQ(std::nullopt, version("<integer>7</integer>"));
    disk.append("/logs/main.log", log("1 activity TASK"));
    EXPECT_EQ("2.0", version("<string>2.0</string>"));
    disk.remove("/Info.plist");
    EXPECT_EQ(std::nullopt, source.currentFocusStateWithError(nullptr).codexVersion());
}

TEST_F(FocusTest, TheApplicationIsFoundUnderEitherName) {
    const std::string kOldName = "/Applications/Codex.app/Contents/Info.plist";
    const std::string kNewName = "/Applications/ChatGPT.app/Contents/Info.plist";
    const auto found = [&] { return ORVCodexFocusLogSource::installedCodexInfoPlistURL(disk); };
    EXPECT_EQ(kOldName, found()) << "where it would be";
    disk.write(kNewName, "");
    EXPECT_EQ(kNewName, found());
    disk.write(kOldName, "");
    EXPECT_EQ(kOldName, found());
}

}  // namespace
