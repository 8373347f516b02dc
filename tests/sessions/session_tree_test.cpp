// Compares the living picture of the session files with a full walk, over real folders.

#include "sessions/ORVSessionTree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <random>

#include "tests/support/ManualClock.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;

std::string described(const ORVWalkedFile& file) {
    return file.path + ' ' + std::to_string(file.modifiedAt.seconds) + '.' +
           std::to_string(file.modifiedAt.nanoseconds) + ' ' + std::to_string(file.fileIdentifier) +
           ' ' + std::to_string(file.size) + '\n';
}

class SessionTreeTest : public testing::Test {
protected:
    using Picture = std::set<std::string>;

    SessionTreeTest() {
        clock.time = ORVSystemClock().now();
        home.makeFolder("s");
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

    Picture picture() const {
        Picture all;
        tree.forEachFile([&](const ORVWalkedFile& file) { all.insert(described(file)); });
        return all;
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

    TemporaryHome home;
    std::unique_ptr<ORVFiles> files = platform::makeFiles();
    ManualClock clock;
    ORVSessionTree tree{*files, clock, home.path("s")};
    std::set<const ORVWalkedFile*> fromChanges;
};

/// Changes things below the folder at random.
class Changes {
public:
    Changes(TemporaryHome& home, unsigned seed) : home_(home), random_(seed) {}

    void make() {
        const std::string file = anyFile();
        const std::string other = anyFile();
        const std::string folder = anyFolder();
        switch (any(9)) {
            case 0:
            case 1:
                return home_.append(file, "x");
            case 2:
                return home_.replace(file, "y");
            case 3:
                return move(file, other);
            case 4:
                return home_.remove(file);
            case 5:
                return home_.setDate(home_.holds(file) ? file : "s", 1'000'000 + any(3));
            case 6:
                return move(folder, anyFolder());
            case 7:
                return home_.holds(folder) ? home_.setDate(folder, 1'000'000) : void();
            default:
                return any(3) == 0 ? home_.remove(folder) : move(folder, folder + "/.hidden");
        }
    }

private:
    unsigned any(unsigned count) { return static_cast<unsigned>(random_() % count); }

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
        if (home_.holds(from)) {
            home_.makeFolder(to.substr(0, to.rfind('/')));
            rename(home_.path(from).c_str(), home_.path(to).c_str());
        }
    }

    TemporaryHome& home_;
    std::mt19937 random_;
};

TEST_F(SessionTreeTest, AnyChangesAreNoticedWithinSixRefreshes) {
    Changes changes(home, 1);
    for (int round = 0; round < 150; ++round) {
        for (unsigned count = static_cast<unsigned>(round % 5); count > 0; --count) {
            changes.make();
            if (round % 3 == 0) {
                refresh();
            }
        }
        for (int i = 0; i < 6; ++i) {
            passDateStep();
            refresh();
        }
        ASSERT_EQ(walked(), picture()) << "round " << round;
        ASSERT_EQ(walked(), pictureFromChanges());
        ASSERT_EQ(walked().size(), tree.fileCount());
    }
}

}  // namespace
