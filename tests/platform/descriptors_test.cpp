// Tests both systems' way of waiting. On Linux this file is compiled a second time, with the Mac's
// source over a stand-in for its kernel queue.

#include "platform/descriptors.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <thread>

#include "tests/support/TemporaryHome.h"

namespace {

using Interest = ORVWatchedDescriptor::Interest;

constexpr int kNotAtAll = 20;  // Milliseconds to wait when nothing must happen.
constexpr int kSoon = 5'000;   // Milliseconds to wait when something must.

class DescriptorsTest : public testing::Test {
protected:
    DescriptorsTest() {
        EXPECT_EQ(0, pipe(pipe_.data()));
        EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, sockets_.data()));
        for (const int end : {pipe_[1], sockets_[1]}) {
            fcntl(end, F_SETFL, O_NONBLOCK);
        }
    }
    ~DescriptorsTest() override {
        for (const int descriptor : {pipe_[0], pipe_[1], sockets_[0], sockets_[1]}) {
            close(descriptor);
        }
    }

    static void fill(int descriptor) {
        const std::string much(4'096, 'x');
        while (write(descriptor, much.data(), much.size()) > 0) {
        }
    }

    static bool isReady(int descriptor, Interest interest, int milliseconds) {
        std::vector<ORVWatchedDescriptor> watched = {{descriptor, interest}};
        EXPECT_EQ(0, platform::waitForDescriptors(watched, milliseconds));
        return watched.front().isReady;
    }

    std::array<int, 2> pipe_{};
    std::array<int, 2> sockets_{};
};

TEST_F(DescriptorsTest, ReadyOnesAreToldFromTheOthers) {
    EXPECT_FALSE(isReady(pipe_[0], Interest::readable, kNotAtAll));
    EXPECT_TRUE(isReady(pipe_[1], Interest::writable, kSoon));
    EXPECT_EQ(1, write(pipe_[1], "x", 1));
    std::vector<ORVWatchedDescriptor> watched = {{sockets_[0], Interest::readable},
                                                 {pipe_[0], Interest::readable},
                                                 {pipe_[1], Interest::hangUpOnly}};
    EXPECT_EQ(0, platform::waitForDescriptors(watched, -1));
    EXPECT_FALSE(watched[0].isReady);
    EXPECT_TRUE(watched[1].isReady);
    EXPECT_FALSE(watched[2].isReady);
    fill(pipe_[1]);
    EXPECT_FALSE(platform::isWritable(pipe_[1], kNotAtAll));
    EXPECT_TRUE(platform::isWritable(sockets_[0], 0));
}

TEST_F(DescriptorsTest, AReaderThatLeavesIsAHangUp) {
    EXPECT_FALSE(isReady(pipe_[1], Interest::hangUpOnly, kNotAtAll));
    close(pipe_[0]);
    EXPECT_TRUE(isReady(pipe_[1], Interest::hangUpOnly, kSoon));
    EXPECT_TRUE(isReady(pipe_[1], Interest::writable, kSoon)) << "the write tells";
    EXPECT_EQ(1, write(sockets_[1], "x", 1));
    EXPECT_FALSE(isReady(sockets_[0], Interest::hangUpOnly, kNotAtAll)) << "the other side writes";
    fill(sockets_[1]);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(isReady(sockets_[0], Interest::hangUpOnly, kNotAtAll));
    EXPECT_LE(std::chrono::milliseconds(kNotAtAll), std::chrono::steady_clock::now() - start);
    std::thread reader([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(kNotAtAll));
        close(sockets_[1]);
    });
    EXPECT_TRUE(isReady(sockets_[0], Interest::hangUpOnly, -1) ||
                isReady(sockets_[0], Interest::hangUpOnly, -1))
        << "a wait may end without a reason";
    reader.join();
    pipe_[0] = sockets_[1] = -1;
}

TEST_F(DescriptorsTest, FilesAndTerminalsDoNotHangUp) {
    TemporaryHome home;
    home.write("output", "some lines");
    const int file = open(home.path("output").c_str(), O_WRONLY);
    home.truncate("output", 0);
    EXPECT_FALSE(isReady(file, Interest::hangUpOnly, kNotAtAll));
    EXPECT_TRUE(isReady(file, Interest::writable, kSoon));
    close(file);
    const int keyboard = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_EQ(0, grantpt(keyboard) + unlockpt(keyboard));
    const int terminal = open(ptsname(keyboard), O_RDWR | O_NOCTTY);
    EXPECT_FALSE(isReady(terminal, Interest::readable, kNotAtAll));
    EXPECT_EQ(2, write(keyboard, "x\n", 2));
    EXPECT_TRUE(isReady(terminal, Interest::readable, kSoon));
    EXPECT_FALSE(isReady(terminal, Interest::hangUpOnly, kNotAtAll)) << "a line was typed";
    close(terminal);
    close(keyboard);
}

TEST_F(DescriptorsTest, OneThatIsNotOpenIsReadyForItsError) {
    const int closed = dup(pipe_[0]);
    close(closed);
    EXPECT_TRUE(isReady(closed, Interest::readable, kSoon));
}

}  // namespace
