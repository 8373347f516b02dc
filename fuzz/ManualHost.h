#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/ORVAppHost.h"
#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/MemoryDefaults.h"

/// An application's host in memory; its threads run when they are told to.
class ManualHost final : public ORVAppHost {
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

    ManualClock clock_;
    MemoryDefaults defaults_;
    Closures dispatched_;
};
