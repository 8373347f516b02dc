// The file system itself, over real folders.

#include "platform/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "platform/home_folder.h"
#include "tests/support/TemporaryHome.h"

namespace {

class FilesTest : public testing::Test {
protected:
    /// The files with "x" in their names, and whether the walk could be started.
    std::string walked(const std::string& root) {
        std::vector<std::string> paths;
        failures.clear();
        const bool started = files->walk(
            root, [](std::string_view name) { return name.find('x') != std::string_view::npos; },
            [&](ORVWalkedFile&& file) {
                EXPECT_EQ(files->contentModificationDate(file.path), file.modifiedAt);
                paths.push_back(file.path.substr(root.size()));
            },
            [&](ORVError&& failure) { failures.push_back(failure.code); });
        std::sort(paths.begin(), paths.end());
        std::string text = started ? "" : "not started";
        for (const std::string& path : paths) {
            text += path + ' ';
        }
        return text;
    }

    TemporaryHome home;
    std::unique_ptr<ORVFiles> files = platform::makeFiles();
    std::vector<std::int64_t> failures;
    ORVErrorSlot error;
};

TEST_F(FilesTest, AWalkMeetsRegularFilesThatAreNotHidden) {
    for (const char* file : {"root/x", "root/a/b/c/x.log", "root/x y", "root/ax/\xC3\xA4x",
                             "root/.x", "root/.hidden/x", "root/a/.b/x", "elsewhere/x"}) {
        home.append(file, "");
    }
    home.append("root/other", "");
    home.makeFolder("root/folder x");
    home.makeFIFO("root/fifo x");
    home.makeLink("root/link x", home.path("root/x"));
    home.makeLink("root/dangling x", "nowhere");
    home.makeLink("root/loop", home.path("root"));
    home.makeLink("link", "root");
    home.setDate("root/x", 1'000.25);
    const std::string all = "/a/b/c/x.log /ax/\xC3\xA4x /x /x y ";
    EXPECT_EQ(all, walked(home.path("root")));
    EXPECT_EQ(all, walked(home.path("link"))) << "the root itself may be a link";
    EXPECT_TRUE(failures.empty());
    EXPECT_EQ("not started", walked(home.path("nowhere")));
    EXPECT_EQ(std::vector<std::int64_t>{ENOENT}, failures);
    EXPECT_EQ("not started", walked(home.path("root/x")));
    EXPECT_EQ(std::vector<std::int64_t>{ENOTDIR}, failures);
}

TEST_F(FilesTest, AttributesAreThoseOfTheItem) {
    home.append("file", "12345");
    home.setDate("file", 1'000.25);
    home.makeLink("link", "file");
    home.setDate("link", 2'000);
    const auto file = files->attributesOfItem(home.path("file"), &error);
    const auto link = files->attributesOfItem(home.path("link"), &error);
    EXPECT_EQ(5U, file->size);
    EXPECT_EQ(4U, link->size);
    EXPECT_EQ((ORVFileDate{1'000, 250'000'000}), file->modifiedAt);
    EXPECT_EQ(file->modifiedAt, files->contentModificationDate(home.path("link"))) << "followed";
    home.append("file", "6");
    EXPECT_EQ(file->fileNumber, files->attributesOfItem(home.path("file"), &error)->fileNumber);
    home.replace("file", "");
    EXPECT_NE(file->fileNumber, files->attributesOfItem(home.path("file"), &error)->fileNumber);
    EXPECT_FALSE(error);
    home.remove("file");
    EXPECT_FALSE(files->itemExists(home.path("link"))) << "followed";
    EXPECT_EQ(std::nullopt, files->contentModificationDate(home.path("link")));
    EXPECT_FALSE(files->attributesOfItem(home.path("file"), &error));
    EXPECT_EQ(ENOENT, error->code);
    EXPECT_TRUE(files->itemExists(home.root()));
}

TEST_F(FilesTest, ReadingNeverWaits) {
    home.append("file", "0123456789");
    home.makeFIFO("fifo");
    char bytes[20];
    const auto read = [&](const std::string& name, std::uint64_t offset) {
        const auto file = files->openForReading(home.path(name), &error);
        const auto count = file ? file->readAt(offset, bytes, sizeof bytes, &error) : std::nullopt;
        return count ? std::string(bytes, *count) : std::to_string(error->code);
    };
    EXPECT_EQ("0123456789", read("file", 0));
    EXPECT_EQ("89", read("file", 8));
    EXPECT_EQ("", read("file", 10));
    EXPECT_EQ(std::to_string(ENOENT), read("nowhere", 0));
    EXPECT_EQ(std::to_string(EISDIR), read("", 0));
    EXPECT_EQ(std::to_string(ESPIPE), read("fifo", 0));
    const std::string large(100'000, 'x');
    home.write("large", large);
    EXPECT_EQ(large, platform::contentsOfFile(*files, home.path("large"), large.size()));
    EXPECT_FALSE(platform::contentsOfFile(*files, home.path("large"), large.size() - 1));
    EXPECT_FALSE(platform::contentsOfFile(*files, home.path("nowhere"), 1));
}

TEST(HomeFolderTest, IsAnAbsolutePathWithoutASlashAtItsEnd) {
    const std::optional<std::string> before =
        getenv("HOME") ? std::optional(std::string(getenv("HOME"))) : std::nullopt;
    const auto folder = [](const char* variable) {
        setenv("HOME", variable, 1);
        return platform::homeFolder();
    };
    EXPECT_EQ("/a/b", folder("/a/b"));
    EXPECT_EQ("/a", folder("/a//"));
    EXPECT_EQ("", folder("/"));
    EXPECT_TRUE(folder("a").ends_with("/a"));
    EXPECT_TRUE(folder("a").starts_with("/")) << "from the working folder";
    const std::string ofUser = folder("");
    EXPECT_TRUE(ofUser.empty() || ofUser.starts_with("/"));
    unsetenv("HOME");
    EXPECT_EQ(ofUser, platform::homeFolder());
    before ? setenv("HOME", before->c_str(), 1) : unsetenv("HOME");
}

}  // namespace
