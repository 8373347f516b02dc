#include <gtest/gtest.h>

#include "focus/ORVCodexFocusLogSource.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/TemporaryHome.h"

namespace {

constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";
constexpr const char* kOther = "01A20E70-11AA-7C20-9D00-5B1F0C7A4E02";

std::string line(const std::string& timestamp, const std::string& text) {
    return timestamp + " info " + text + "\n";
}

/// What a render-state line says of a window.
struct Window {
    std::string webContents = "7";
    std::string id = "3";
    std::string appearance = "primary";
    std::string focused = "true";
    std::string visible = "true";
};

std::string fieldsOf(const Window& window) {
    return "rendererWebContentsId=" + window.webContents + " rendererWindowId=" + window.id +
           " rendererWindowAppearance=" + window.appearance +
           " rendererWindowFocused=" + window.focused + " rendererWindowVisible=" + window.visible;
}

std::string render(const std::string& timestamp, const Window& window = {}) {
    return line(timestamp, "[window-state] changed " + fieldsOf(window));
}

std::string route(const std::string& timestamp, const std::string& path,
                  const std::string& webContents = "7", const std::string& window = "3") {
    return line(timestamp,
                "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync "
                "originWebContentsId=" +
                    webContents + " windowId=" + window + " ownerRoutePath=" + path);
}

std::string activity(
    const std::string& timestamp, const std::string& conversation,
    const std::string& fields =
        "active=true rendererWindowAppearance=primary rendererWindowFocused=true") {
    return line(timestamp, "thread_stream_view_activity_changed " + fields +
                               (conversation.empty() ? "" : " conversationId=" + conversation));
}

std::string task(const char* identifier = kTask) {
    return std::string("/local/") + identifier;
}

class FocusTest : public testing::Test {
protected:
    static constexpr const char* kLogs = "Library/Logs/com.openai.codex/";

    static std::string log(const std::string& name = "main.log") { return kLogs + name; }

    /// The status, and the thread identifier where there is one.
    std::string focus() {
        error.reset();
        const ORVCodexFocusState state = source.currentFocusStateWithError(&error);
        EXPECT_EQ(state.status() == ORVCodexFocusStatusTaskInView, state.threadID().has_value());
        return std::to_string(state.status()) + (state.threadID() ? " " + *state.threadID() : "");
    }

    TemporaryHome home;
    FaultyFiles files;
    ORVErrorSlot error;
    ORVCodexFocusLogSource source{files, home.path("Library/Logs/com.openai.codex"),
                                  home.path("Info.plist")};
};

const std::string kInTask = std::string("0 ") + kTask;
const std::string kInOther = std::string("0 ") + kOther;

TEST_F(FocusTest, LinesOfOneFile) {
    struct Case {
        const char* name;
        std::string lines;
        std::string focus;
    };
    const Window secondWindow{"8", "4", "primary", "false", "true"};
    const Window secondFocused{"8", "4"};
    const Case kCases[] = {
        {"nothing", "", "3"},
        {"window and route", render("1") + route("2", task()), kInTask},
        {"query and fragment", render("1") + route("2", task() + "?foo=1#bar"), kInTask},
        {"fragment and query", render("1") + route("2", task() + "#?"), kInTask},
        {"new task", render("1") + route("2", "/"), "1"},
        {"new task with a query", render("1") + route("2", "/?a"), "1"},
        {"no identifier", render("1") + route("2", "/local/abc"), "4"},
        {"another page", render("1") + route("2", "/settings"), "4"},
        {"empty route", render("1") + route("2", ""), "4"},
        {"identifier and more", render("1") + route("2", task() + "/x"), "4"},
        {"another window", render("1") + route("2", task(), "7", "4"), "3"},
        {"unknown web contents", render("1") + route("2", task(), "8"), "3"},
        {"route before its window", route("1", task()) + render("2"), "3"},
        {"unfocused window offers nothing",
         render("1", {"7", "3", "primary", "false"}) + route("2", task()), "3"},
        {"invisible window offers nothing",
         render("1", {"7", "3", "primary", "true", "false"}) + route("2", task()), "3"},
        {"secondary window offers nothing",
         render("1", {"7", "3", "secondary"}) + route("2", task()), "3"},
        {"losing the focus withdraws nothing",
         render("1") + route("2", task()) + render("3", {"7", "3", "primary", "false"}), kInTask},
        {"incomplete render line leaves the window",
         render("1") +
             line("2",
                  "rendererWebContentsId=7 rendererWindowId=3 "
                  "rendererWindowAppearance=secondary") +
             route("3", task()),
         kInTask},
        {"the second window takes the focus",
         render("1") + render("1", secondWindow) + route("3", task(kOther), "8", "4") +
             route("4", task()) + render("5", secondFocused),
         kInOther},
        {"a visible flag alone renews nothing",
         render("1") + render("1", {"8", "4", "primary", "true", "false"}) +
             route("3", task(kOther), "8", "4") + route("4", task()) + render("5", secondFocused),
         kInTask},
        {"an older line loses", render("1") + route("3", task()) + activity("2", kOther), kInTask},
        {"an equal one wins", render("1") + route("3", task()) + activity("3", kOther), kInOther},
        {"time stamps are strings", render("1") + route("9", task()) + activity("10", kOther),
         kInTask},
        {"activity alone", activity("1", kTask), kInTask},
        {"activity of a new task", activity("1", "client-new-thread:x"), "1"},
        {"activity without a conversation", activity("1", ""), "4"},
        {"activity of something else", activity("1", "abc"), "4"},
        {"inactive",
         activity("1", kTask,
                  "active=false rendererWindowAppearance=primary "
                  "rendererWindowFocused=true"),
         "3"},
        {"the first active= counts",
         activity("1", kTask,
                  "isactive=false active=true rendererWindowAppearance=primary "
                  "rendererWindowFocused=true"),
         "3"},
        {"activity of a secondary window",
         activity("1", kTask,
                  "active=true rendererWindowAppearance=secondary "
                  "rendererWindowFocused=true"),
         "3"},
        {"activity without an appearance", activity("1", kTask, "active=true"), "4"},
        {"activity of a window with a route is not asked",
         render("1") + route("2", task()) + activity("3", kOther, "active=true " + fieldsOf({})),
         kInTask},
        {"activity of a window without a route",
         render("1") + activity("3", kOther, "active=true " + fieldsOf({})), kInOther},
        {"a window replaced under its web contents",
         render("1") + route("2", task()) + render("3", {"7", "9"}) +
             activity("4", kOther, "active=true " + fieldsOf({"7", "9"})),
         kInOther},
        {"carriage return at the end", "1 info " + fieldsOf({}) + "\r\n" + route("2", task()), "3"},
        {"tab and wide spaces",
         "1\u3000info " + fieldsOf({}) +
             "\n2\tinfo [electron-message-handler] IAB_LIFECYCLE "
             "received browser sidebar owner sync "
             "originWebContentsId=7\u00a0windowId=3\townerRoutePath=" +
             task() + "\u2003x\n",
         kInTask},
        {"no time stamp", " info " + activity("", kTask), "3"},
        {"route without a time stamp", render("1") + " " + route("", task()), kInTask},
        {"route without a time stamp loses",
         activity("1", kOther) + render("1") + " " + route("", task()), kInOther},
        {"not UTF-8", "1 \xFF" + activity("", kTask), "3"},
        {"no marker", line("1", "active=true rendererWindowFocused=true conversationId=x"), "3"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        TemporaryHome own;
        own.append("logs/main.log", c.lines);
        ORVCodexFocusLogSource fresh(files, own.path("logs"), own.path("Info.plist"));
        const ORVCodexFocusState state = fresh.currentFocusStateWithError(&error);
        EXPECT_EQ(c.focus, std::to_string(state.status()) +
                               (state.threadID() ? " " + *state.threadID() : ""));
    }
}

TEST_F(FocusTest, FilesAreFoundAndReadOldestFirst) {
    EXPECT_EQ("2", focus());
    EXPECT_EQ(ENOENT, error->code) << "the platform's error beside the state";
    home.makeFolder(kLogs);
    home.append(log("x.txt"), activity("9", kTask));
    home.append(log(".x.log"), activity("9", kTask));
    home.append(log("main.log.1"), activity("9", kTask));
    home.append(log(".old/main.log"), activity("9", kTask));
    home.makeLink(log("link.log"), home.path(log("x.txt")));
    home.makeLink(log("loop"), home.path(kLogs));
    EXPECT_EQ("2", focus());
    EXPECT_FALSE(error);
    home.makeFIFO(log("fifo.log"));
    home.makeFolder(log("folder.log"));
    EXPECT_EQ("2", focus());
    home.append(log("a/b/c/newer.LOG"), activity("5", kTask));
    home.append(log("older.log"), activity("5", kOther));
    home.setDate(log("a/b/c/newer.LOG"), 2'000);
    home.setDate(log("older.log"), 1'000);
    EXPECT_EQ(kInTask, focus()) << "of equal time stamps the newest file's";
    home.append(log("older.log"), activity("6", kOther));
    EXPECT_EQ(kInOther, focus());
}

TEST_F(FocusTest, FilesAreFollowed) {
    const std::string whole = route("2", task());
    home.append(log(), render("1") + whole.substr(0, 40));
    EXPECT_EQ("3", focus());
    home.append(log(), whole.substr(40));
    EXPECT_EQ(kInTask, focus());
    const int opened = files.opened;
    EXPECT_EQ(kInTask, focus());
    EXPECT_EQ(opened, files.opened) << "a file without new bytes is not opened";

    home.replace(log(), std::string(5'000, 'x') + "\n" + route("3", task(kOther)));
    EXPECT_EQ(kInTask, focus()) << "another file knows no windows";
    home.write(log(), render("4") + route("4", task(kOther)));
    EXPECT_EQ(kInOther, focus()) << "a shorter file is read from its start";
    home.remove(log());
    EXPECT_EQ("2", focus());
    home.append(log("other.log"), "nothing\n");
    EXPECT_EQ(kInOther, focus()) << "the event outlives its file";
    home.append(log(), route("5", task()));
    EXPECT_EQ(kInOther, focus()) << "its windows do not";
}

TEST_F(FocusTest, ALongLineIsReadWhole) {
    const std::string padding(3'000'000, 'x');
    home.append(log(),
                line("1", fieldsOf({}) + " " + padding) + route("2", task() + " " + padding));
    EXPECT_EQ(kInTask, focus());
}

TEST_F(FocusTest, EveryFailingCallIsMadeUpForByTheNextRefresh) {
    bool wasUntouched = false;
    for (int call = 1; !wasUntouched; ++call) {
        TemporaryHome own;
        own.append("logs/a.log",
                   render("1") + line("1", std::string(300'000, 'x')) + route("2", task()));
        own.append("logs/b.log", activity("1", kOther) + line("1", std::string(300'000, 'x')) +
                                     activity("1", "abc"));
        ORVCodexFocusLogSource fresh(files, own.path("logs"), own.path("Info.plist"));
        files.calls = 0;
        files.failingCall = call;
        ORVErrorSlot first;
        (void)fresh.currentFocusStateWithError(&first);
        wasUntouched = files.calls < call;
        files.failingCall = 0;
        EXPECT_EQ(kTask, fresh.currentFocusStateWithError(&error).threadID()) << "call " << call;
        EXPECT_EQ(call >= 2 && !wasUntouched, first.has_value())
            << "every failure but the property list's is told, call " << call;
    }
}

TEST_F(FocusTest, AFileShorterThanItsAttributesSayIsNoError) {
    home.append(log(), activity("1", kTask));
    files.extraSize = 100;
    EXPECT_EQ(kInTask, focus());
    EXPECT_FALSE(error) << "an early end leaves no error of the platform";
}

TEST_F(FocusTest, TheInstalledVersionStandsInEveryState) {
    const auto version = [&] { return source.currentFocusStateWithError(nullptr).codexVersion(); };
    const auto list = [](const std::string& value) {
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
               "<key>CFBundleName</key><string>Codex</string>"
               "<key>CFBundleShortVersionString</key>" +
               value + "</dict></plist>";
    };
    EXPECT_EQ(std::nullopt, version());
    home.write("Info.plist", list("<string>1.2.3 — β</string>"));
    EXPECT_EQ("1.2.3 — β", version());
    home.write("Info.plist", list("<integer>7</integer>"));
    EXPECT_EQ(std::nullopt, version());
    home.write("Info.plist", list("<string>2.0</string>"));
    home.append(log(), activity("1", kTask));
    EXPECT_EQ("2.0", version());
    home.remove("Info.plist");
    home.makeFIFO("Info.plist");
    EXPECT_EQ(std::nullopt, version());
}

}  // namespace
