#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/ORVAppSurroundings.h"
#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "tests/support/ManualRunLoop.h"

/// An application's surroundings in memory; its threads run when they are told to.
class ManualSurroundings final : public ORVAppSurroundings {
public:
    MemoryFiles memoryFiles;
    ManualRunLoop loop;
    bool isTerminated = false;

    /// Lets this much time pass for the UI thread, and what was dispatched run.
    void advance(std::chrono::milliseconds time) {
        loop.advance(time);
        while (!dispatched_.empty()) {
            const auto closure = std::move(dispatched_.front());
            dispatched_.pop_front();
            closure();
        }
        loop.runPosted();
    }

    ORVUserDefaults& standardUserDefaults() override { return defaults_; }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string&) override {
        return std::make_unique<Queue>(dispatched_);
    }
    ORVRunLoop& runLoop() override { return loop; }
    ORVFiles& files() override { return memoryFiles; }
    const ORVClock& clock() override { return clock_; }
    void terminate() override { isTerminated = true; }

private:
    using Closures = std::deque<std::function<void()>>;

    class Queue final : public ORVSerialQueue {
    public:
        explicit Queue(Closures& dispatched) : dispatched_(dispatched) {}
        void dispatch(std::function<void()> closure) override {
            dispatched_.push_back(std::move(closure));
        }

    private:
        Closures& dispatched_;
    };

    class Defaults final : public ORVUserDefaults {
    public:
        std::optional<std::int64_t> integerForKey(std::string_view) override { return stored_; }
        void setInteger(std::int64_t value, std::string_view) override { stored_ = value; }

    private:
        std::optional<std::int64_t> stored_;
    };

    ManualClock clock_;
    Defaults defaults_;
    Closures dispatched_;
};
