#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <set>
#include <sstream>

#include "l10n/languages.h"
#include "platform/confinement.h"
#include "platform/files.h"
#include "platform/locale.h"
#include "platform/posix_run_loop.h"
#include "platform/user_defaults.h"
#include "tests/support/TemporaryHome.h"

namespace {

#ifdef BRIMLET_LANGUAGE_FROM_ENVIRONMENT

TEST(PreferredLanguagesTest, OfTheEnvironment) {
    const std::pair<const char*, std::vector<std::string>> kCases[] = {
        {"", {}},
        {"LANG=zh_CN.UTF-8", {"zh-CN"}},
        {"LC_MESSAGES=de_DE@euro LANG=zh_CN.UTF-8", {"de-DE"}},
        {"LC_ALL=C LC_MESSAGES=de_DE LANG=zh_CN.UTF-8", {}},
        {"LC_ALL=C.UTF-8", {}},
        {"LC_ALL=POSIX", {}},
        {"LANGUAGE=zh_CN:en: LC_ALL=C", {"zh-CN", "en"}},
        {"LANGUAGE= LC_ALL= LC_MESSAGES= LANG=en_US", {"en-US"}}};
    for (const auto& [variables, expected] : kCases) {
        for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
            unsetenv(name);
        }
        std::istringstream words(variables);
        for (std::string name, value;
             std::getline(words, name, '=') && getline(words, value, ' ');) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        EXPECT_EQ(expected, platform::preferredLanguages()) << variables;
    }
}

#endif

TEST(FolderWatchTest, ChangesAreToldUnderTheFoldersPresentPath) {
    TemporaryHome home;
    const auto watch = platform::makeFolderWatch();
    const auto told = [&] {
        std::set<std::string> paths;
        EXPECT_TRUE(watch->visitChanges(
            [&](const std::string& path) { paths.insert(path.substr(home.root().size() + 1)); }));
        return paths;
    };
    using Paths = std::set<std::string>;
    home.append("a/x", "");
    ASSERT_TRUE(watch->watch(home.path("a")));
    home.append("a/x", "1");
    EXPECT_EQ(Paths{"a/x"}, told());
    std::filesystem::rename(home.path("a"), home.path("b"));
    EXPECT_TRUE(watch->watch(home.path("b")));
    watch->forget(home.path("a"));
    home.setDate("b/x", 1'000);
    EXPECT_EQ(Paths{"b/x"}, told());
    std::filesystem::rename(home.path("b"), home.path("c"));
    home.append("b/y", "");
    EXPECT_TRUE(watch->watch(home.path("b")));
    home.append("b/y", "1");
    home.append("c/x", "1");
    EXPECT_EQ(Paths{"b/y"}, told()) << "another folder has the path";
    watch->forget(home.path("b"));
    home.append("b/y", "1");
    EXPECT_EQ(Paths{}, told());
    EXPECT_FALSE(watch->watch(home.path("none")));
    EXPECT_FALSE(watch->watch("/proc")) << "not a file system that tells everything";
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

TEST(RunLoopTest, AWaitThatFailsEndsTheLoop) {
    ORVPosixRunLoop loop;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);  // poll then refuses to wait for any descriptor.
    EXPECT_EQ(1, loop.run());
    EXPECT_TRUE(platform::isWritable(STDOUT_FILENO, -1)) << "the reason can be told";
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(EINVAL, loop.failure());
}

class UserDefaultsTest : public testing::Test {
protected:
    UserDefaultsTest() { setenv("XDG_CONFIG_HOME", home.path("config").c_str(), 1); }
    ~UserDefaultsTest() override { unsetenv("XDG_CONFIG_HOME"); }

    std::optional<std::int64_t> stored() {
        return platform::standardUserDefaults([](const ORVStoringFailure&) {})
            ->integerForKey("mode");
    }

    /// Stores twice, as from a menu. `complaints` gets a line for each complaint.
    void store(std::int64_t value) {
        complaints.clear();
        const auto defaults = platform::standardUserDefaults([&](const ORVStoringFailure& failure) {
            complaints += failure.path + ": " + failure.reason + '\n';
        });
        defaults->setInteger(value, "mode");
        defaults->setInteger(value, "mode");
    }

    mode_t modeOf(const std::string& name) const {
        struct stat status {};
        stat(home.path(name).c_str(), &status);
        return status.st_mode & 07777;
    }

    TemporaryHome home;
    const std::string file = "config/brimlet/defaults.json";
    std::string complaints;
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
    chmod(home.path(file).c_str(), 02644);
    store(2);
    EXPECT_EQ("", complaints);
    EXPECT_EQ(2, stored());
    EXPECT_EQ("{\"their \\\"own\\\"\":[1.5,{\"a\":null}],\"mode\":2}\n", home.content(file));
    EXPECT_EQ(0644U, modeOf(file));
    home.write(file, "");
    store(1);
    EXPECT_EQ("{\"mode\":1}\n", home.content(file)) << "as if it were {}";
    home.remove("config");
    store(1);
    EXPECT_EQ(1, stored()) << "folders are made as needed";
    EXPECT_EQ(0700U, modeOf("config/brimlet")) << "for the user alone";
    EXPECT_EQ(home.path(file), platform::placeOfUserDefaults());
    EXPECT_EQ(std::vector{home.path("config/brimlet")},
              platform::makeFoldersOfUserDefaults("mode"));
    home.makeFolder("empty");
    setenv("HOME", home.path("no-home").c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    store(1);
    EXPECT_FALSE(home.holds("no-home")) << "a home folder is not";
    EXPECT_NE("", complaints);
}

TEST_F(UserDefaultsTest, WhatKilledProgramsLeftIsRemoved) {
    for (const char* left : {".brimlet-young1", ".brimlet-older1", ".backup"}) {
        home.write(file + left, "{}");
        home.setDate(file + left, 1'000);
    }
    home.setDate(file + ".brimlet-young1", static_cast<double>(std::time(nullptr)));
    store(1);
    EXPECT_TRUE(home.holds(file + ".brimlet-young1")) << "its program may be storing";
    EXPECT_FALSE(home.holds(file + ".brimlet-older1"));
    EXPECT_TRUE(home.holds(file + ".backup"));
}

TEST_F(UserDefaultsTest, ALinkIsFollowedToSettingsOfTheSameOwnerOnly) {
    home.makeFolder("config/brimlet");
    home.makeLink(file, "../../elsewhere/settings");
    for (const char* settings : {"", " {}", R"({"mode":"x"})", R"({"a":1,"mode":0})"}) {
        home.write("elsewhere/settings", settings);
        store(2);
        EXPECT_EQ("", complaints) << settings;
        EXPECT_EQ(2, stored()) << settings;
    }
    EXPECT_EQ("{\"a\":1,\"mode\":2}\n", home.content("elsewhere/settings"));
    EXPECT_EQ(std::vector{home.path("elsewhere")}, platform::makeFoldersOfUserDefaults("mode"));
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
    home.write("editor", R"({"tabs":4})");
    home.makeFolder("folder");
    for (const char* target :
         {"notes", "large", "list", "editor", "folder", "nowhere", "/dev/null"}) {
        home.remove("config");
        home.makeFolder("config/brimlet");
        home.makeLink(file, *target == '/' ? target : home.path(target));
        const std::string before = home.content(file);
        store(2);
        EXPECT_EQ(1, std::count(complaints.begin(), complaints.end(), '\n')) << complaints;
        EXPECT_TRUE(complaints.starts_with(home.path(file) + ": ")) << complaints;
        EXPECT_TRUE(std::filesystem::is_symlink(home.path(file))) << target;
        EXPECT_EQ(before, home.content(file)) << target;
        EXPECT_FALSE(home.holds("nowhere"));
        EXPECT_TRUE(platform::makeFoldersOfUserDefaults("mode").empty())
            << "nothing is left to write in";
    }
    home.remove("config");
    home.write(file, "not JSON");
    store(2);
    EXPECT_EQ("not JSON", home.content(file));
    home.remove("config");
    home.write("config/brimlet", "a file in the folder's place");
    store(1);
    EXPECT_EQ(1, std::count(complaints.begin(), complaints.end(), '\n')) << complaints;
}

}  // namespace
