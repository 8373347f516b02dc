// Compares the living picture of the session files with a full walk, over real folders.

#include "sessions/ORVSessionTree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <random>

#include "tests/support/MemoryFiles.h"
#include "tests/support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;

std::string described(const ORVWalkedFile& file) {
    return file.path + ' ' + std::to_string(file.modifiedAt.seconds) + '.' +
           std::to_string(file.modifiedAt.nanoseconds) + ' ' + std::to_string(file.fileIdentifier) +
           ' ' + std::to_string(file.size) + '\n';
}

/// The folders of a system that does not tell what is written.
class UnwatchedFiles final : public MemoryFiles {
public:
    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links links,
                                              ORVErrorSlot* error) override {
        return files_->openFolder(path, links, error);
    }
    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        return files_->contentModificationDate(path);
    }

private:
    std::unique_ptr<ORVFiles> files_ = platform::makeFiles();
};

using Picture = std::set<std::string>;

Picture pictureOf(const ORVSessionTree& tree) {
    Picture all;
    tree.forEachFile([&](const ORVWalkedFile& file) { all.insert(described(file)); });
    return all;
}

/// With and without a watch.
class SessionTreeTest : public testing::TestWithParam<bool> {
protected:
    SessionTreeTest() {
        clock.time = ORVSystemClock().now();
        // So many that few of them are asked for their dates at every refresh.
        for (int i = 0; i < 1'000; ++i) {
            home.append("s/many/" + std::to_string(i) + ".jsonl", "");
            home.setDate("s/many/" + std::to_string(i) + ".jsonl", 1'000);
        }
    }

    void refresh() {
        clock.time += 2s;
        EXPECT_TRUE(tree.refresh(nullptr));
        for (const ORVSessionTree::Change& change : tree.changes()) {
            if (change.kind == ORVSessionTree::Change::Kind::vanished) {
                fromChanges.erase(change.file);
            } else {
                fromChanges.insert(change.file);
            }
        }
    }

    Picture pictureFromChanges() const {
        Picture all;
        for (const ORVWalkedFile* file : fromChanges) {
            all.insert(described(*file));
        }
        return all;
    }

    Picture walked() {
        Picture all;
        files->walk(
            home.path("s"), [](std::string_view name) { return name.ends_with(".jsonl"); },
            [&](ORVWalkedFile&& file) { all.insert(described(file)); }, [](ORVError&&) {});
        return all;
    }

    /// Waits until the file system gives a change another date than it gave the last one.
    void passDateStep() {
        const auto dateOfChange = [&] {
            home.write("probe", "");
            return files->contentModificationDate(home.path("probe"));
        };
        for (const auto before = dateOfChange(); dateOfChange() == before;) {
        }
    }

    /// Changes a file or a folder below the root at random.
    void changeSomething() {
        const std::string file = anyFile();
        const std::string folder = anyFolder();
        const std::function<void()> kChanges[] = {
            [&] { home.append(file, "x"); },
            [&] { home.replace(file, "y"); },
            [&] { move(file, anyFile()); },
            [&] { home.remove(file); },
            [&] { home.setDate(home.holds(file) ? file : "s", 1'000'000 + any(3)); },
            [&] { move(folder, anyFolder()); },
            [&] { home.holds(folder) ? home.setDate(folder, 1'000'000) : void(); },
            [&] { move(folder, "s/." + std::to_string(any(99))); },
            [&] { home.remove(any(3) == 0 ? folder : file); }};
        kChanges[any(std::size(kChanges))]();
    }

    TemporaryHome home;
    std::unique_ptr<ORVFiles> files =
        GetParam() ? platform::makeFiles() : std::make_unique<UnwatchedFiles>();
    ManualClock clock;
    ORVSessionTree tree{*files, clock, home.path("s")};
    std::set<const ORVWalkedFile*> fromChanges;

private:
    unsigned any(std::size_t count) { return static_cast<unsigned>(random_() % count); }

    std::string anyFolder() {
        std::string folder = "s";
        for (unsigned depth = any(4); depth > 0; --depth) {
            folder += "/" + std::to_string(any(3));
        }
        return folder == "s" ? "s/9" : folder;
    }

    std::string anyFile() {
        return anyFolder() + "/" + std::to_string(any(4)) + (any(5) == 0 ? ".txt" : ".jsonl");
    }

    void move(const std::string& from, const std::string& to) {
        if (home.holds(from)) {
            home.makeFolder(to.substr(0, to.rfind('/')));
            rename(home.path(from).c_str(), home.path(to).c_str());
        }
    }

    std::mt19937 random_{1};
};

TEST_P(SessionTreeTest, AnyChangesAreNoticedWithinSixRefreshes) {
    for (int round = 0; round < 60; ++round) {
        for (int count = round % 5; count > 0; --count) {
            changeSomething();
            if (round % 3 == 0) {
                refresh();
            }
        }
        for (int i = 0; i < 6; ++i) {
            passDateStep();
            refresh();
        }
        const Picture expected = walked();
        ASSERT_EQ(expected, pictureOf(tree)) << "round " << round;
        ASSERT_EQ(expected, pictureFromChanges());
        ASSERT_EQ(expected.size(), tree.fileCount());
    }
}

TEST_P(SessionTreeTest, ChangesThatWereLostAreMadeUpFor) {
    for (int i = 0; i < 8; ++i) {
        refresh();
    }
    // As many changes, none equal to the one before, are more than the system keeps.
    std::ofstream a(home.path("s/many/10.jsonl"));
    std::ofstream b(home.path("s/many/11.jsonl"));
    for (int i = 0; i < 20'000; ++i) {
        (i % 2 == 0 ? a : b) << 'x' << std::flush;
    }
    for (const char* name : {"s/many/1.jsonl", "s/many/99.jsonl"}) {
        home.append(name, "x");
        for (int i = 0; i < 6; ++i) {
            refresh();
        }
        EXPECT_EQ(walked(), pictureOf(tree));
    }
}

TEST_P(SessionTreeTest, AFolderThatBecomesALinkIsGone) {
    home.append("s/1/2/a.jsonl", "");
    refresh();
    rename(home.path("s/1").c_str(), home.path("elsewhere").c_str());
    home.makeLink("s/1", home.path("elsewhere"));
    refresh();
    EXPECT_EQ(walked(), pictureOf(tree));
    EXPECT_EQ(1'000U, tree.fileCount());
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutAWatch, SessionTreeTest, testing::Bool());

/// A disk in memory that tells what is written, as far as the test wants it to.
class TellingFiles final : public MemoryFiles {
public:
    std::set<std::string> watched;
    std::set<std::string> written;
    bool tellsNothing = false;
    bool losesChanges = false;

    std::unique_ptr<ORVFolderWatch> makeFolderWatch() override {
        return tellsNothing ? nullptr : std::make_unique<Watch>(*this);
    }

private:
    struct Watch final : ORVFolderWatch {
        explicit Watch(TellingFiles& disk) : disk_(disk) {}
        bool watch(const std::string& folder) override {
            return disk_.watched.insert(folder).second;
        }
        void forget(const std::string& folder) override { disk_.watched.erase(folder); }
        bool visitChanges(const ChangeVisitor& visit) override {
            for (const std::string& path : std::exchange(disk_.written, {})) {
                visit(path);
            }
            return !std::exchange(disk_.losesChanges, false);
        }
        TellingFiles& disk_;
    };
};

class TreeInMemoryTest : public testing::Test {
protected:
    TreeInMemoryTest() {
        for (int i = 100; i < 700; ++i) {
            disk.write(pathOf(i), "", 1'000);
        }
        EXPECT_TRUE(tree.refresh(nullptr));
    }

    static std::string pathOf(int number) { return "/s/1/" + std::to_string(number) + ".jsonl"; }

    /// Returns after how many refreshes a change is noticed; 0 when none of so many notices it.
    int noticedAfter(int most) {
        for (int count = 1; count <= most; ++count) {
            clock.time += 2s;
            EXPECT_TRUE(tree.refresh(nullptr));
            if (!tree.changes().empty()) {
                return count;
            }
        }
        return 0;
    }

    /// Makes a change that no folder's date tells.
    template <typename Change>
    void secretly(Change change) {
        const auto before = disk.items().at("/s/1").modifiedAt;
        change();
        disk.setDate("/s/1", before.seconds, before.nanoseconds);
    }

    TellingFiles disk;
    ManualClock clock;
    ORVSessionTree tree{disk, clock, "/s"};
};

TEST_F(TreeInMemoryTest, AFolderIsReadAgainWhileItsDateIsYoung) {
    const auto add = [&](int number) { secretly([&] { disk.append(pathOf(number), ""); }); };
    add(1);
    EXPECT_EQ(0, noticedAfter(3)) << "old";
    disk.setDate("/s/1", clock.time.time_since_epoch() / 1s);
    EXPECT_EQ(1, noticedAfter(1));
    add(2);
    EXPECT_EQ(1, noticedAfter(1));
    add(3);
    EXPECT_EQ(1, noticedAfter(1));
    add(4);
    EXPECT_EQ(0, noticedAfter(3)) << "not young any more";
    secretly([&] { disk.remove(pathOf(150)); });
    EXPECT_LT(0, noticedAfter(6)) << "a file that is gone when it is asked";
    EXPECT_EQ(603U, tree.fileCount());
}

TEST_F(TreeInMemoryTest, WhatIsWrittenIsNoticedInTurnOrAtOnce) {
    disk.write(pathOf(690), "x", 1'000);
    EXPECT_LT(0, noticedAfter(6)) << "a size of the same date";
    clock.time += 2min;
    EXPECT_EQ(0, noticedAfter(7));
    EXPECT_EQ(std::set<std::string>{"/s/1"}, disk.watched);
    disk.append(pathOf(150), "x");
    EXPECT_EQ(0, noticedAfter(1)) << "only in turn, by now";
    disk.written = {pathOf(150), "/s/1/none.jsonl", "/none/none.jsonl"};
    EXPECT_EQ(1, noticedAfter(1)) << "told";
    EXPECT_EQ(0, noticedAfter(2));
    disk.append(pathOf(150), "x");
    EXPECT_EQ(1, noticedAfter(1)) << "written lately";
    clock.time += 2min;
    disk.append(pathOf(689), "x");
    EXPECT_LT(1, noticedAfter(16)) << "not told";
    disk.losesChanges = true;
    disk.watched.clear();
    disk.append(pathOf(130), "x");
    EXPECT_LT(0, noticedAfter(6)) << "lost";
    EXPECT_EQ(0, noticedAfter(6));
    disk.append(pathOf(5), "");
    EXPECT_EQ(1, noticedAfter(1));
    disk.watched.clear();
    disk.append(pathOf(140), "x");
    EXPECT_LT(0, noticedAfter(6)) << "perhaps another folder";
    EXPECT_EQ(0, noticedAfter(6));
    EXPECT_FALSE(disk.watched.empty());
    disk.remove("/s/1");
    EXPECT_EQ(1, noticedAfter(1));
    EXPECT_TRUE(disk.watched.empty());
    EXPECT_EQ(0U, tree.fileCount());
}

TEST_F(TreeInMemoryTest, OfVeryManyFilesTheNewestAreAskedMoreOften) {
    disk.tellsNothing = true;
    for (int i = 0; i < 5'500; ++i) {
        const std::string path = (i < 500 ? "/s/0/" : "/s/2/") + std::to_string(i) + ".jsonl";
        disk.write(path, "", 1'000);
    }
    EXPECT_EQ(1, noticedAfter(1));
    clock.time += 2min;
    EXPECT_EQ(0, noticedAfter(16));
    const int calls = disk.calls;
    EXPECT_EQ(0, noticedAfter(1));
    EXPECT_GT(calls + 5'000 / 5 + 1'100 / 10, disk.calls) << "a fifth of the newest, few others";
    for (const auto& [path, most] : {std::pair(pathOf(690), 15), {"/s/2/5000.jsonl", 5}}) {
        disk.append(path, "x");
        EXPECT_LT(0, noticedAfter(most)) << path;
    }
}

TEST_F(TreeInMemoryTest, AFolderThatMayNotBeReadHoldsNothing) {
    disk.append("/s/1/2/a.jsonl", "");
    disk.append("/s/10/a.jsonl", "");
    EXPECT_EQ(1, noticedAfter(1));
    disk.locked = {"/s/1"};
    disk.append(pathOf(1), "");
    EXPECT_EQ(1, noticedAfter(1));
    EXPECT_EQ(1U, tree.fileCount());
    ASSERT_EQ(1U, tree.unreadable().size());
    EXPECT_EQ("/s/1", tree.unreadable().front().path);
    EXPECT_TRUE(tree.unreadable().front().isFolder);
    EXPECT_EQ(EACCES, tree.unreadable().front().error.code);
    disk.locked = {"/s"};
    clock.time += 2s;
    EXPECT_FALSE(tree.refresh(nullptr));
    EXPECT_EQ("/s", tree.unreadable().front().path);
    disk.locked.clear();
    EXPECT_EQ(1, noticedAfter(1));
    EXPECT_EQ(603U, tree.fileCount());
    EXPECT_TRUE(tree.unreadable().empty());
}

/// Lets the call with this number fail in a refresh that has something to notice. Returns how much
/// was told of it; none when there is no such call.
std::optional<std::size_t> toldAfterFault(MemoryFiles::Fault fault, int call) {
    MemoryFiles disk;
    ManualClock clock;
    ORVSessionTree tree(disk, clock, "/s");
    for (const char* path : {"/s/a.jsonl", "/s/1/a.jsonl", "/s/1/2/a.jsonl", "/s/3/a.jsonl"}) {
        disk.write(path, "");
    }
    EXPECT_TRUE(tree.refresh(nullptr));
    disk.append("/s/1/b.jsonl", "");
    disk.append("/s/3/a.jsonl", "x");
    disk.fault = fault;
    disk.failingCall = disk.calls + call;
    EXPECT_TRUE(tree.refresh(nullptr) || !tree.unreadable().empty());
    const std::size_t told = tree.unreadable().size();
    if (disk.calls < disk.failingCall) {
        return std::nullopt;
    }
    disk.failingCall = 0;
    for (int i = 0; i < 6; ++i) {
        clock.time += 2s;
        EXPECT_TRUE(tree.refresh(nullptr));
    }
    EXPECT_TRUE(tree.unreadable().empty());
    ORVSessionTree fresh(disk, clock, "/s");
    EXPECT_TRUE(fresh.refresh(nullptr));
    EXPECT_EQ(pictureOf(fresh), pictureOf(tree)) << "after a fault at call " << call;
    return told;
}

TEST(SessionTreeFaultsTest, AnyFaultIsToldAndMadeUpFor) {
    for (const auto fault : {MemoryFiles::Fault::error, MemoryFiles::Fault::unseenFolder}) {
        std::size_t told = 0;
        int call = 1;
        while (const auto more = toldAfterFault(fault, call)) {
            told += *more;
            ++call;
        }
        EXPECT_LE(1U, told);
    }
}

}  // namespace
