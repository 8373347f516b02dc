#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/ORVAppHost.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/MemoryFiles.h"

/// A UI thread whose clock is turned by hand.
class ManualRunLoop final : public ORVRunLoop {
public:
    int timersMade = 0;

    void post(Closure closure) override { posted_.push_back(std::move(closure)); }

    void postAfter(std::chrono::milliseconds delay, Closure closure) override {
        delayed_.emplace(now_ + delay, std::move(closure));
    }

    void repeat(std::chrono::milliseconds interval, Closure closure) override {
        ++timersMade;
        fireAfter(interval, closure);
    }

    void runPosted() {
        for (const Closure& closure : std::exchange(posted_, {})) {
            closure();
        }
    }

    /// Lets this much time pass and runs what becomes due.
    void advance(std::chrono::milliseconds time) {
        const auto end = now_ + time;
        while (!delayed_.empty() && delayed_.begin()->first <= end) {
            now_ = delayed_.begin()->first;
            delayed_.extract(delayed_.begin()).mapped()();
        }
        now_ = end;
    }

private:
    void fireAfter(std::chrono::milliseconds interval, const Closure& closure) {
        postAfter(interval, [this, interval, closure] {
            closure();
            fireAfter(interval, closure);
        });
    }

    std::chrono::milliseconds now_{0};
    std::vector<Closure> posted_;
    std::multimap<std::chrono::milliseconds, Closure> delayed_;
};

/// An application's host in memory. Its queue runs when the test says so, and `notes` holds what
/// the application asked of it.
class ManualHost final : public ORVAppHost {
public:
    std::string notes;
    MemoryDefaults defaults;
    ManualRunLoop loop;
    MemoryFiles disk;
    ORVRefreshRequest request;
    std::vector<std::function<void()>> dispatched;

    /// Runs what was dispatched and delivers the results.
    void runDispatched() {
        for (const auto& closure : std::exchange(dispatched, {})) {
            closure();
        }
        loop.runPosted();
    }

    ORVUserDefaults& standardUserDefaults() override { return defaults; }
    std::vector<std::string> preferredLanguages() override { return {"en-US"}; }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string&) override {
        return std::make_unique<Queue>(*this);
    }
    ORVRunLoop& runLoop() override { return loop; }
    ORVFiles& files() override { return disk; }
    const ORVClock& clock() override { return clock_; }
    ORVRefreshRequest refreshRequest() override { return request; }
    void terminate() override { notes += "terminate "; }

private:
    struct Queue final : ORVSerialQueue {
        explicit Queue(ManualHost& host) : host_(host) {}
        void dispatch(std::function<void()> closure) override {
            host_.notes += host_.loop.timersMade == 0 ? "dispatch-before-timer " : "dispatch ";
            host_.dispatched.push_back(std::move(closure));
        }
        ManualHost& host_;
    };

    ManualClock clock_;
};
