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
    const std::string kHint = "; if it is not shown, allow it in System Settings, Menu Bar";
    const uid_t kOwn = getuid();
    const struct {
        std::vector<ORVStandInProcess> processes;
        const char* version;
        bool isRunning;
        std::string text;
    } kCases[] = {
        {{}, "1.2", false, "Brimlet.app does not run"},
        {{{"", kOwn, ""}, {program + "ctl", kOwn, ""}, {program, kOwn + 1, ""}},
         "1.2",
         false,
         "Brimlet.app does not run"},
        {{{"/bin/zsh", kOwn, ""}, {program, kOwn, ""}}, "1.2", true, "version 1.2 runs" + kHint},
        {{{program, kOwn, "com.apple.quarantine"}, {"/b.app/Contents/MacOS/Brimlet", kOwn, ""}},
         "1.3",
         true,
         "version 1.2 runs, 2 times, the last from /b.app; brimletctl has another version, 1.3; it "
         "is in quarantine, and macOS may refuse to start it" +
             kHint}};
    unsetenv("CODEX_HOME");
    for (const auto& c : kCases) {
        ORVStandInProcesses = c.processes;
        const auto told = platform::menuBarProgram(c.version);
        ASSERT_TRUE(told);
        EXPECT_EQ(c.isRunning, told->isRunning) << c.text;
        EXPECT_EQ(c.isRunning ? std::optional(bundle) : std::nullopt, told->place) << c.text;
        EXPECT_EQ(c.text, told->text);
    }
    setenv("CODEX_HOME", "/c", 1);
    EXPECT_NE(std::string::npos, platform::menuBarProgram("1.2")->text.find("~/.codex"));
    unsetenv("CODEX_HOME");
}

}  // namespace
