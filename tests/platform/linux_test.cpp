// What Linux gives in place of a Mac's user defaults, preferred languages and locales.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "l10n/languages.h"
#include "platform/confinement.h"
#include "platform/preferred_languages.h"
#include "platform/time_of_day.h"
#include "platform/user_defaults.h"
#include "shells/ORVPosixHost.h"
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
    const auto at = [](std::int64_t seconds, const char* language) {
        return platform::mediumTimeOfDay({seconds, 999'999'999},
                                         l10n::languageForTag(language).timeFormat);
    };
    EXPECT_EQ("12:00:00\u202FAM", at(0, "en"));
    EXPECT_EQ("12:34:56\u202FPM", at(45'296, "en"));
    EXPECT_EQ("3:04:05\u202FPM", at(54'245, "en"));
    EXPECT_EQ("00:00:00", at(0, "zh-CN"));
    EXPECT_EQ("15:04:05", at(54'245, "zh-CN"));
    setenv("TZ", "JST-9", 1);
    EXPECT_EQ("09:00:00", at(0, "zh-CN")) << "a zone that changes is noticed";
    EXPECT_FALSE(at(std::numeric_limits<std::int64_t>::max(), "en").empty());
}

class UserDefaultsTest : public testing::Test {
protected:
    UserDefaultsTest() { setenv("XDG_CONFIG_HOME", home.path("config").c_str(), 1); }
    ~UserDefaultsTest() override {
        unsetenv("XDG_CONFIG_HOME");
        home_ ? setenv("HOME", home_->c_str(), 1) : unsetenv("HOME");
    }

    std::optional<std::int64_t> stored() {
        return platform::standardUserDefaults([](const ORVStoringFailure&) {})
            ->integerForKey("mode");
    }

    /// Twice, as from a menu; what was complained of stands in `complaints`, a line each.
    void store(std::int64_t value) {
        complaints.clear();
        const auto defaults = platform::standardUserDefaults([&](const ORVStoringFailure& failure) {
            complaints += failure.path + ": " + failure.reason + '\n';
        });
        defaults->setInteger(value, "mode");
        defaults->setInteger(value, "mode");
    }

    std::string contentOf(const std::string& name) {
        if (std::filesystem::is_directory(home.path(name))) {
            return "";
        }
        std::ifstream content(home.path(name));
        return {std::istreambuf_iterator<char>(content), {}};
    }

    TemporaryHome home;
    const std::string file = "config/brimlet/defaults.json";
    std::string complaints;

private:
    const std::optional<std::string> home_ =
        getenv("HOME") ? std::optional(std::string(getenv("HOME"))) : std::nullopt;
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
    home.write(file, R"({"mode":0,"their \"own\"":[1.5,{"a":null}],"mode":1})");
    chmod(home.path(file).c_str(), 0644);
    store(2);
    EXPECT_EQ("", complaints);
    EXPECT_EQ(2, stored());
    EXPECT_EQ("{\"their \\\"own\\\"\":[1.5,{\"a\":null}],\"mode\":2}\n", contentOf(file));
    struct stat status {};
    stat(home.path(file).c_str(), &status);
    EXPECT_EQ(0644U, status.st_mode & 07777);
    home.remove("config");
    store(1);
    EXPECT_EQ(1, stored()) << "folders are made as needed";
    home.makeFolder("empty");
    setenv("HOME", home.path("no-home").c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    store(1);
    EXPECT_FALSE(home.holds("no-home")) << "a home folder is not";
    EXPECT_NE("", complaints);
}

TEST_F(UserDefaultsTest, ALinkIsFollowedToSettingsOfTheSameOwnerOnly) {
    home.write("elsewhere/settings", R"({"a":1})");
    home.makeFolder("config/brimlet");
    home.makeLink(file, "../../elsewhere/settings");
    store(2);
    EXPECT_EQ("", complaints);
    EXPECT_EQ("{\"a\":1,\"mode\":2}\n", contentOf("elsewhere/settings"));
    EXPECT_EQ(std::vector{home.path("elsewhere")}, platform::foldersOfUserDefaults());
    if (geteuid() == 0 && chown(home.path("elsewhere/settings").c_str(), 12345, 12345) == 0) {
        store(1);
        EXPECT_NE(std::string::npos, complaints.find("another user")) << complaints;
        EXPECT_EQ(2, stored());
        EXPECT_EQ(0, chown(home.path("elsewhere/settings").c_str(), 0, 0));
        EXPECT_EQ(0, lchown(home.path(file).c_str(), 12345, 12345));
        store(1);
        EXPECT_EQ(2, stored()) << "a user's link in the way of root";
    }
}

TEST_F(UserDefaultsTest, WhatIsNoSettingsFileStaysAsItIs) {
    home.write("notes", "# not settings\n");
    home.write("large", "{\"a\":\"" + std::string(70'000, 'x') + "\"}");
    home.write("list", "[1]");
    home.makeFolder("folder");
    for (const char* target : {"notes", "large", "list", "folder", "nowhere", "/dev/null"}) {
        home.remove("config");
        home.makeFolder("config/brimlet");
        home.makeLink(file, *target == '/' ? target : home.path(target));
        const std::string before = contentOf(file);
        store(2);
        EXPECT_EQ(1, std::count(complaints.begin(), complaints.end(), '\n')) << complaints;
        EXPECT_TRUE(complaints.starts_with(home.path(file) + ": ")) << complaints;
        EXPECT_TRUE(std::filesystem::is_symlink(home.path(file))) << target;
        EXPECT_EQ(before, contentOf(file)) << target;
        EXPECT_FALSE(home.holds("nowhere"));
        EXPECT_TRUE(platform::foldersOfUserDefaults().empty()) << "nothing is left to write in";
    }
    home.remove("config");
    home.write(file, "not JSON");
    store(2);
    EXPECT_EQ("not JSON", contentOf(file));
}

TEST_F(UserDefaultsTest, SayWhereTheyAreStored) {
    EXPECT_EQ(std::vector{home.root()}, platform::foldersOfUserDefaults()) << "what exists so far";
    EXPECT_EQ(home.path(file), platform::placeOfUserDefaults());
}

TEST_F(UserDefaultsTest, AFolderThatCannotBeWrittenIsToldOnce) {
    home.write("config/brimlet", "a file in the folder's place");
    store(1);
    EXPECT_EQ(1, std::count(complaints.begin(), complaints.end(), '\n')) << complaints;
    EXPECT_EQ(std::nullopt, stored());
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
            platform::confineProcess({home.path("open")});
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
                      platform::confineThreadToReading();
                      expect(7, !canWrite("open/another"));
                      expect(8, isRefused(unlink(old.c_str())));
                      expect(9, open(old.c_str(), O_RDONLY) >= 0);
                  }).join();
                  expect(10, canWrite("open/another"));
              }));
}

TEST_F(ConfinementTest, TheThreadThatReadsForTheMenuWritesNothing) {
    EXPECT_EQ(0, confined([&] {
                  ORVPosixHost host({home.path(".codex"), {}}, platform::makeFiles(),
                                    std::make_unique<MemoryDefaults>(), [](const std::string&) {});
                  const auto queue = host.makeSerialQueue("");
                  queue->dispatch([&] { expect(1, !canWrite("open/other")); });
                  while (!host.readerIsIdle()) {
                  }
                  expect(2, canWrite("open/other"));
              }));
}

#endif

}  // namespace
