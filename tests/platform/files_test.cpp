#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "platform/files.h"
#include "platform/program.h"
#include "tests/support/TemporaryHome.h"

namespace {

class FilesTest : public testing::Test {
protected:
    /// Returns the files below the folder with "x" in their names, or why there was no walk.
    std::string walked(const std::string& name) {
        const std::string root = home.path(name);
        std::vector<std::string> paths;
        std::string failures;
        const bool isStarted = files->walk(
            root, [](std::string_view file) { return file.find('x') != std::string_view::npos; },
            [&](ORVWalkedFile&& file) {
                EXPECT_EQ(files->contentModificationDate(file.path), file.modifiedAt);
                paths.push_back(file.path.substr(root.size()));
            },
            [&](ORVError&& failure) { failures += std::to_string(failure.code); });
        EXPECT_EQ(isStarted, failures.empty());
        std::sort(paths.begin(), paths.end());
        for (const std::string& path : paths) {
            failures += path + ' ';
        }
        return failures;
    }

    /// Returns what the file holds from the offset on, or why it cannot be read.
    std::string read(const std::string& name, std::uint64_t offset) {
        char bytes[20];
        const auto file = files->openForReading(home.path(name), &error);
        const auto count = file ? file->readAt(offset, bytes, sizeof bytes, &error) : std::nullopt;
        return count ? std::string(bytes, *count) : std::to_string(error->code);
    }

    std::optional<ORVFileAttributes> attributes(const std::string& name) {
        return files->attributesOfItem(home.path(name), &error);
    }

    TemporaryHome home;
    std::unique_ptr<ORVFiles> files = platform::makeFiles();
    ORVErrorSlot error;
};

TEST_F(FilesTest, AWalkMeetsRegularFilesThatAreNotHidden) {
    for (const char* file :
         {"root/x", "root/a/b/c/x.log", "root/x y", "root/ax/\xC3\xA4x", "root/other", "root/.x",
          "root/.hidden/x", "root/a/.b/x", "beside/x"}) {
        home.append(file, "");
    }
    home.makeFolder("root/folder x");
    home.makeFIFO("root/fifo x");
    home.makeLink("root/link x", home.path("root/x"));
    home.makeLink("root/dangling x", "nowhere");
    home.makeLink("root/loop", home.path("root"));
    home.makeLink("link", "root");
    home.setDate("root/x", 1'000.25);
    const std::string all = "/a/b/c/x.log /ax/\xC3\xA4x /x /x y ";
    EXPECT_EQ(all, walked("root"));
    EXPECT_EQ(all, walked("link")) << "the root itself may be a link";
    EXPECT_EQ(std::to_string(ENOENT), walked("nowhere"));
    EXPECT_EQ(std::to_string(ENOTDIR), walked("root/x"));
}

TEST_F(FilesTest, AttributesAreThoseOfTheItem) {
    home.append("file", "12345");
    home.setDate("file", 1'000.25);
    home.makeLink("link", "file");
    home.setDate("link", 2'000);
    const auto file = attributes("file");
    EXPECT_EQ(5U, file->size);
    EXPECT_EQ(4U, attributes("link")->size);
    EXPECT_EQ((ORVFileDate{1'000, 250'000'000}), file->modifiedAt);
    EXPECT_EQ(file->modifiedAt, files->contentModificationDate(home.path("link"))) << "followed";
    home.append("file", "6");
    EXPECT_EQ(file->fileIdentifier, attributes("file")->fileIdentifier);
    home.replace("file", "");
    EXPECT_NE(file->fileIdentifier, attributes("file")->fileIdentifier);
    EXPECT_TRUE(files->itemExists(home.path("link")));
    EXPECT_FALSE(error);
    home.remove("file");
    EXPECT_FALSE(files->itemExists(home.path("link"))) << "followed";
    EXPECT_EQ(std::nullopt, files->contentModificationDate(home.path("link")));
    EXPECT_FALSE(attributes("file"));
    EXPECT_EQ(ENOENT, error->code);
}

TEST_F(FilesTest, HolesAreTold) {
    constexpr std::uint64_t kHole = 10'000'000;
    home.write("file", "x");
    home.truncate("file", kHole);
    home.append("file", "x");
    home.truncate("file", 2 * kHole);
    const auto file = files->openForReading(home.path("file"), nullptr);
    EXPECT_EQ(0U, file->nextData(0));
    EXPECT_EQ(kHole, file->nextData(kHole));
    // A file system need not have holes.
    EXPECT_LE(file->nextData(kHole / 2), kHole);
    EXPECT_GE(file->nextData(kHole / 2), kHole / 2);
    const std::uint64_t rest = file->nextData(kHole + kHole / 2);
    EXPECT_TRUE(rest == kHole + kHole / 2 || rest == UINT64_MAX) << rest;
}

TEST_F(FilesTest, ReadingNeverWaits) {
    home.append("file", "0123456789");
    home.makeFIFO("fifo");
    const std::pair<std::string, std::string> kCases[] = {{"file", "89"},
                                                          {"nowhere", std::to_string(ENOENT)},
                                                          {"", std::to_string(EISDIR)},
                                                          {"fifo", std::to_string(ESPIPE)}};
    for (const auto& [name, expected] : kCases) {
        EXPECT_EQ(expected, read(name, 8)) << name;
    }
    EXPECT_EQ("", read("file", 10));
    const std::string large(100'000, 'x');
    home.write("large", large);
    EXPECT_EQ(large, platform::contentsOfFile(*files, home.path("large"), large.size(), nullptr));
    const auto errorFor = [&](const char* name, std::size_t limit) {
        error.reset();
        EXPECT_FALSE(platform::contentsOfFile(*files, home.path(name), limit, &error));
        return error->code;
    };
    EXPECT_EQ(EFBIG, errorFor("large", large.size() - 1));
    EXPECT_EQ(ENOENT, errorFor("nowhere", 1));
    EXPECT_EQ(EISDIR, errorFor(".", 1));
}

TEST(HomeFolderTest, IsAnAbsolutePathWithoutASlashAtItsEnd) {
    const auto folder = [](const char* value) {
        setenv("HOME", value, 1);
        return platform::homeFolder();
    };
    EXPECT_EQ("/a/b", folder("/a/b"));
    EXPECT_EQ("/a", folder("/a//"));
    EXPECT_EQ("", folder("/"));
    EXPECT_TRUE(folder("a").starts_with("/") && folder("a").ends_with("/a"));
    const std::string ofUser = folder("");
    const passwd* entry = getpwuid(getuid());
    EXPECT_TRUE(!entry || ofUser == entry->pw_dir) << ofUser;
    unsetenv("HOME");
    EXPECT_EQ(ofUser, platform::homeFolder());
}

}  // namespace
