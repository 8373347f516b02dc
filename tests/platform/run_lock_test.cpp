#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "platform/program.h"
#include "tests/support/TemporaryHome.h"

namespace {

using platform::RunLock;

TEST(RunLockTest, OneOfManySimultaneousStartsRuns) {
    const TemporaryHome home;
    const std::string folder = home.path("Library/Application Support/Brimlet");
    for (int round = 0; round < 3; ++round) {
        int start[2], answers[2];
        ASSERT_EQ(0, pipe(start) + pipe(answers));
        std::vector<pid_t> copies(40);
        for (pid_t& copy : copies) {
            copy = fork();
            if (copy == 0) {
                char c = 0;
                close(start[1]);
                (void)!read(start[0], &c, 1);  // Ends when the test closes the other end.
                c = platform::lockForRun(folder, nullptr) == RunLock::held            ? 'h'
                    : platform::lockForRun(folder, nullptr) == RunLock::heldByAnother ? 'a'
                                                                                      : 'u';
                (void)!write(answers[1], &c, 1);
                pause();
            }
        }
        close(start[0]);
        close(start[1]);
        std::string got(copies.size(), ' ');
        for (char& answer : got) {
            ASSERT_EQ(1, read(answers[0], &answer, 1));
        }
        close(answers[0]);
        close(answers[1]);
        EXPECT_EQ(1, std::count(got.begin(), got.end(), 'h')) << got;
        EXPECT_EQ(39, std::count(got.begin(), got.end(), 'a')) << got;
        for (const pid_t copy : copies) {
            kill(copy, SIGKILL);  // A lock ends with its process, however that ends.
            waitpid(copy, nullptr, 0);
        }
    }
    struct stat status {};
    ASSERT_EQ(0, stat(folder.c_str(), &status));
    EXPECT_EQ(0700U, status.st_mode & 0777U);
}

TEST(RunLockTest, WhereNothingCanBeLockedItSaysWhy) {
    TemporaryHome home;
    home.write("file", "");
    ORVErrorSlot error;
    EXPECT_EQ(RunLock::unknown, platform::lockForRun(home.path("file/folder"), &error));
    EXPECT_EQ(ENOTDIR, error.value().code);
    ASSERT_EQ(0, symlink("file", home.path("running.lock").c_str()));
    EXPECT_EQ(RunLock::unknown, platform::lockForRun(home.root(), &error));
    EXPECT_EQ(ELOOP, error.value().code);
}

}  // namespace
