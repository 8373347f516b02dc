#include "platform/program.h"

#include <gtest/gtest.h>
#include <libproc.h>

#include <cstdlib>

#include "tests/support/TemporaryHome.h"

namespace {

TEST(ProgramTest, TheMenuBarsProgramIsFoundAmongTheUsersProcesses) {
    TemporaryHome home;
    home.write("Brimlet.app/Contents/Info.plist",
               "<plist><dict><key>CFBundleShortVersionString</key><string>1.2</string></dict>"
               "</plist>");
    const std::string bundle = home.path("Brimlet.app");
    const std::string program = bundle + "/Contents/MacOS/Brimlet";
    const std::string kNone = "Brimlet.app does not run";
    const std::string kHint = "; if it is not shown, allow it in System Settings, Menu Bar";
    const uid_t kOwn = getuid();
    const std::pair<std::vector<ORVStandInProcess>, std::string> kCases[] = {
        {{}, kNone},
        {{{"", kOwn, ""}, {program + "ctl", kOwn, ""}, {program, kOwn + 1, ""}}, kNone},
        {{{"/bin/zsh", kOwn, ""}, {program, kOwn, ""}}, "version 1.2 runs" + kHint},
        {{{program, kOwn, "com.apple.quarantine"}, {"/b.app/Contents/MacOS/Brimlet", kOwn, ""}},
         "version 1.2 runs, 2 times, the last from /b.app; it is in quarantine, and macOS may "
         "refuse to start it" +
             kHint}};
    unsetenv("CODEX_HOME");
    for (const auto& [processes, text] : kCases) {
        ORVStandInProcesses = processes;
        const auto told = platform::menuBarProgram("1.2");
        ASSERT_TRUE(told);
        EXPECT_EQ(text != kNone, told->isRunning) << text;
        EXPECT_EQ(told->isRunning ? std::optional(bundle) : std::nullopt, told->place) << text;
        EXPECT_EQ(text, told->text);
    }
    EXPECT_NE(std::string::npos,
              platform::menuBarProgram("1.3")->text.find("has another version, 1.3"));
    setenv("CODEX_HOME", "/c", 1);
    EXPECT_NE(std::string::npos, platform::menuBarProgram("1.2")->text.find("~/.codex"));
    unsetenv("CODEX_HOME");
}

}  // namespace
