// What Linux gives in place of a Mac's user defaults, preferred languages and locales.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "platform/confinement.h"
#include "platform/preferred_languages.h"
#include "platform/time_of_day.h"
#include "platform/user_defaults.h"
#include "shells/ORVPosixSurroundings.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/TemporaryHome.h"

namespace {

TEST(PreferredLanguagesTest, OfTheEnvironment) {
    struct Case {
        const char* language;
        const char* all;
        const char* messages;
        const char* lang;
        std::vector<std::string> expected;
    };
    const Case kCases[] = {
        {nullptr, nullptr, nullptr, "zh_CN.UTF-8", {"zh-CN"}},
        {nullptr, nullptr, "de_DE@euro", "zh_CN.UTF-8", {"de-DE"}},
        {nullptr, "C", "de_DE", "zh_CN.UTF-8", {}},
        {nullptr, "C.UTF-8", nullptr, nullptr, {}},
        {nullptr, "POSIX", nullptr, nullptr, {}},
        {"zh_CN:en:", "C", nullptr, nullptr, {"zh-CN", "en"}},
        {"", "", "", "en_US", {"en-US"}},
        {nullptr, nullptr, nullptr, nullptr, {}},
    };
    for (const Case& c : kCases) {
        const std::pair<const char*, const char*> variables[] = {{"LANGUAGE", c.language},
                                                                 {"LC_ALL", c.all},
                                                                 {"LC_MESSAGES", c.messages},
                                                                 {"LANG", c.lang}};
        for (const auto& [name, value] : variables) {
            value ? setenv(name, value, 1) : unsetenv(name);
        }
        EXPECT_EQ(c.expected, platform::preferredLanguages());
    }
}

TEST(TimeOfDayTest, MediumStyleInTheUsersZone) {
    setenv("TZ", "UTC", 1);
    const auto at = [](std::int64_t seconds, const char* locale) {
        return platform::mediumTimeOfDay({seconds, 999'999'999}, locale);
    };
    EXPECT_EQ("12:00:00\u202FAM", at(0, "en_US"));
    EXPECT_EQ("12:34:56\u202FPM", at(45'296, "en_US"));
    EXPECT_EQ("3:04:05\u202FPM", at(54'245, "en_US"));
    EXPECT_EQ("00:00:00", at(0, "zh_CN"));
    EXPECT_EQ("15:04:05", at(54'245, "zh_CN"));
    setenv("TZ", "JST-9", 1);
    EXPECT_EQ("09:00:00", at(0, "zh_CN")) << "a zone that changes is noticed";
    EXPECT_FALSE(at(std::numeric_limits<std::int64_t>::max(), "en_US").empty());
}

class UserDefaultsTest : public testing::Test {
protected:
    UserDefaultsTest() { setenv("XDG_CONFIG_HOME", home.path("config").c_str(), 1); }
    ~UserDefaultsTest() override { unsetenv("XDG_CONFIG_HOME"); }

    std::optional<std::int64_t> stored() {
        return platform::standardUserDefaults([](const std::string&) {})->integerForKey("mode");
    }

    TemporaryHome home;
    const std::string file = "config/brimlet/defaults.json";
};

TEST_F(UserDefaultsTest, ForeignValuesAreReadAsTheyCanBe) {
    EXPECT_EQ(std::nullopt, stored());
    const std::pair<const char*, std::optional<std::int64_t>> kCases[] = {
        {R"({"mode":2})", 2},
        {R"({"mode":"1 or so"})", 1},
        {R"({"mode":"x"})", 0},
        {R"({"mode":true})", 1},
        {R"({"mode":1.9})", 1},
        {R"({"mode":1e300})", 0},
        {R"({"mode":[1]})", 0},
        {R"({"other":1})", {}},
        {"not JSON", {}},
        {R"([{"mode":1}])", {}},
        {"", {}}};
    for (const auto& [content, value] : kCases) {
        home.write(file, content);
        EXPECT_EQ(value, stored()) << content;
    }
}

TEST_F(UserDefaultsTest, AreStoredWholeBesideOtherKeys) {
    home.write(file, R"({"theirs":"kept"})");
    const auto defaults = platform::standardUserDefaults([](const std::string&) { FAIL(); });
    defaults->setInteger(2, "mode");
    EXPECT_EQ(2, defaults->integerForKey("mode"));
    std::ifstream content(home.path(file));
    std::string line;
    std::getline(content, line);
    EXPECT_EQ(R"({"theirs":"kept","mode":2})", line);
    home.remove("config");
    defaults->setInteger(1, "mode");
    EXPECT_EQ(1, stored()) << "folders are made as needed";
}

TEST_F(UserDefaultsTest, SayWhereTheyAreStored) {
    EXPECT_EQ(home.root(), platform::foldersOfUserDefaults().front()) << "the first that exists";
    home.write("elsewhere/settings", "{}");
    home.makeFolder("config/brimlet");
    home.makeLink(file, "../../elsewhere/settings");
    EXPECT_EQ((std::vector{home.path("config/brimlet"), home.path("elsewhere")}),
              platform::foldersOfUserDefaults());
}

TEST_F(UserDefaultsTest, AFolderThatCannotBeWrittenIsToldOnce) {
    home.write("config/brimlet", "a file in the folder's place");
    int complaints = 0;
    const auto defaults = platform::standardUserDefaults([&](const std::string&) { ++complaints; });
    defaults->setInteger(1, "mode");
    defaults->setInteger(2, "mode");
    EXPECT_EQ(1, complaints);
    EXPECT_EQ(std::nullopt, defaults->integerForKey("mode"));
}

#ifdef BRIMLET_IS_CONFINED

/// What a confined process is still allowed, tried in a child; its exit status is the number of the
/// first attempt that came out otherwise than expected, 0 for none.
class ConfinementTest : public testing::Test {
protected:
    ConfinementTest() { home.write("open/old", "old"); }

    template <typename Attempts>
    int confined(Attempts attempts) {
        const pid_t child = fork();
        if (child == 0) {
            platform::giveUpRights({home.path("open")});
            attempts();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    static void expect(int number, bool isAsExpected) {
        if (!isAsExpected) {
            _exit(number);
        }
    }
    static bool isRefused(long result) { return result < 0 && (errno == EPERM || errno == EACCES); }
    bool canWrite(const std::string& name) {
        const int descriptor = open(home.path(name).c_str(), O_WRONLY | O_CREAT, 0600);
        return !isRefused(descriptor);
    }

    TemporaryHome home;
};

TEST_F(ConfinementTest, NetworkAndProcessesAreRefused) {
    EXPECT_EQ(0, confined([&] {
                  int ends[2];
                  expect(1, isRefused(socket(AF_INET, SOCK_STREAM, 0)));
                  expect(2, isRefused(socket(AF_UNIX, SOCK_STREAM, 0)));
                  expect(3, isRefused(socketpair(AF_UNIX, SOCK_STREAM, 0, ends)));
                  expect(4, isRefused(fork()));
                  expect(5, isRefused(execl("/bin/true", "true", nullptr)));
                  expect(6, system("true") != 0);
                  bool ran = false;
                  std::thread([&ran] { ran = true; }).join();
                  expect(7, ran);
                  expect(8, pipe(ends) == 0 && write(ends[1], "x", 1) == 1);
                  rlimit core{1, 1};
                  expect(10, getrlimit(RLIMIT_CORE, &core) == 0 && core.rlim_max == 0);
                  expect(9, access(home.path("open/old").c_str(), R_OK) == 0);
              }));
}

TEST_F(ConfinementTest, WritingIsRefusedButInTheFolderGiven) {
    EXPECT_EQ(0, confined([&] {
                  const std::string old = home.path("open/old");
                  expect(1, !canWrite("elsewhere"));
                  expect(2, isRefused(mkdir(home.path("folder").c_str(), 0700)));
                  expect(3, isRefused(rename(old.c_str(), home.path("old").c_str())));
                  expect(4, canWrite("open/other"));
                  expect(5, mkdir(home.path("open/folder").c_str(), 0700) == 0);
                  expect(6, rename(home.path("open/other").c_str(), old.c_str()) == 0);
                  std::thread([&] {
                      platform::giveUpWriting();
                      expect(7, !canWrite("open/another"));
                      expect(8, isRefused(unlink(old.c_str())));
                      expect(9, open(old.c_str(), O_RDONLY) >= 0);
                  }).join();
                  expect(10, canWrite("open/another"));
              }));
}

TEST_F(ConfinementTest, TheThreadThatReadsForTheMenuWritesNothing) {
    EXPECT_EQ(0, confined([&] {
                  ORVPosixSurroundings surroundings(platform::makeFiles(),
                                                    std::make_unique<MemoryDefaults>(),
                                                    [](const std::string&) {});
                  const auto queue = surroundings.makeSerialQueue("");
                  queue->dispatch([&] { expect(1, !canWrite("open/other")); });
                  while (!surroundings.readerIsIdle()) {
                  }
                  expect(2, canWrite("open/other"));
              }));
}

#endif

}  // namespace
