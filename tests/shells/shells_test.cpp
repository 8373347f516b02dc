#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <future>
#include <sstream>

#include "app/ORVAppDelegate.h"
#include "shells/ORVPosixApplication.h"
#include "shells/lines/ORVLineSurface.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/MemoryFiles.h"

namespace {

/// A disk whose walks hang until the test lets them go on.
class HangingFiles final : public MemoryFiles {
public:
    std::unique_ptr<ORVOpenFolder> openFolder(const std::string& path, Links links,
                                              ORVErrorSlot* error) override {
        hasGoneOn_.wait();
        return MemoryFiles::openFolder(path, links, error);
    }
    void goOn() { goesOn_.set_value(); }

private:
    std::promise<void> goesOn_;
    std::shared_future<void> hasGoneOn_ = goesOn_.get_future().share();
};

TEST(HangingDiskTest, KeysAnswerAndTheProgramEndsWhileAReadHangs) {
    auto defaults = std::make_unique<MemoryDefaults>();
    defaults->stored = ORVLanguageModeEnglish;
    auto owned = std::make_unique<HangingFiles>();
    HangingFiles& files = *owned;
    ORVPosixHost host({"/h/.codex", {}}, std::move(owned), std::move(defaults),
                      [](std::string_view) {});
    auto app = std::make_shared<ORVAppDelegate>(host);
    ORVPosixRunLoop& loop = host.runLoop();
    std::string titles;
    loop.setTurnEnd([&] { titles += app->statusItem().title + "|"; });
    loop.post([&] { app->applicationDidFinishLaunching(); });
    loop.post([&] { app->performKeyEquivalent("r"); });
    loop.post([&] { app->chooseItemNamed("chineseLanguageItem"); });
    loop.post([&] { app->performKeyEquivalent("q"); });
    EXPECT_EQ(0, loop.run());
    EXPECT_EQ("C– · --%|Checking…|正在检测…|正在检测…|", titles);
    EXPECT_FALSE(host.readerIsIdle());
    files.goOn();
    while (!host.readerIsIdle()) {
    }
    loop.dropClosures();
}

TEST(RunLoopTest, DelaysAndTimersComeInTheirOrder) {
    ORVPosixRunLoop loop;
    std::string order;
    loop.post([&] {
        loop.repeat(std::chrono::milliseconds(20), [&] {
            order += 't';
            if (order.size() >= 5) {
                loop.stop(7);
            }
        });
        loop.postAfter(std::chrono::milliseconds(1), [&] { order += 'b'; });
        loop.postAfter(std::chrono::milliseconds(0), [&] { order += 'a'; });
        order += 'n';
    });
    EXPECT_EQ(7, loop.run());
    EXPECT_EQ("nabtt", order);
}

TEST(RunLoopTest, MemoryThatRunsOutEndsTheLoop) {
    const auto runOut = [] { throw std::bad_alloc(); };
    for (const bool isInTurn : {true, false}) {
        ORVPosixRunLoop loop;
        platform::ThreadQueue queue(loop);
        isInTurn ? loop.post(runOut) : queue.dispatch(runOut);
        EXPECT_EQ(1, loop.run());
        EXPECT_EQ(ENOMEM, loop.failure());
        EXPECT_TRUE(queue.waitUntilIdle(std::chrono::seconds(30))) << "the thread goes on";
    }
}

TEST(RunLoopTest, AQueuesThreadIsNotAskedToEnd) {
    ORVPosixRunLoop loop;
    platform::ThreadQueue queue(loop);
    queue.dispatch([&] {
        raise(SIGTERM);
        loop.post([&] { loop.stop(7); });
    });
    EXPECT_EQ(7, loop.run());
}

TEST(LineSurfaceTest, ASlowReaderMissesLinesButNeverTheLatest) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    ORVPosixRunLoop loop;
    std::string shown;
    ORVLineSurface surface(
        loop, ends[1], [&] { return shown; }, [](int) { FAIL(); });
    const auto line = [](int number) { return std::to_string(number) + std::string(20'000, '.'); };
    loop.post([&] {
        for (int i = 0; i < 1'000; ++i) {
            shown = line(i);
            surface.show();
        }
    });
    std::string received;
    const std::string end = "999" + std::string(20'000, '.') + "\n";
    loop.repeat(std::chrono::milliseconds(1), [&] {
        char bytes[65'536];
        const ssize_t count = read(ends[0], bytes, sizeof bytes);
        received.append(bytes, static_cast<std::size_t>(count));
        if (received.ends_with(end)) {
            loop.stop(0);
        }
    });
    loop.run();
    std::istringstream all(received);
    int previous = -1;
    int lines = 0;
    for (std::string each; std::getline(all, each); ++lines) {
        const int number = std::atoi(each.c_str());
        EXPECT_GT(number, previous);
        EXPECT_EQ(line(number), each) << "no line is cut";
        previous = number;
    }
    EXPECT_LT(lines, 20);
    close(ends[0]);
    close(ends[1]);
}

TEST(CommandInputTest, EachLineIsATurnAndLongOnesCostNothing) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    ORVPosixRunLoop loop;
    std::string commands;
    std::size_t longest = 0;
    int turns = 0;
    ORVCommandInput input(loop, ends[0], [&](const std::string& line) {
        longest = std::max(longest, line.size());
        commands += line.substr(0, 8) + "|";
        if (++turns == 5) {
            loop.stop(0);
        }
    });
    std::string text = "key r\n\nchoose x\r\n" + std::string(50'000, 'x') + "\nhalf";
    ASSERT_EQ(static_cast<ssize_t>(text.size()), write(ends[1], text.data(), text.size()));
    close(ends[1]);
    loop.run();
    EXPECT_EQ("key r||choose x|xxxxxxxx|half|", commands);
    EXPECT_EQ(5, turns);
    EXPECT_LE(longest, 4'096U);
    close(ends[0]);
}

}  // namespace
