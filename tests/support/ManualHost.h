#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "app/ORVAppHost.h"
#include "tests/support/ManualClock.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/MemoryFiles.h"

/// An application's host in memory: the queue runs when told to, and what the application does is
/// noted down.
class ManualHost final : public ORVAppHost {
public:
    std::string notes;
    MemoryDefaults defaults;
    ManualRunLoop loop;
    MemoryFiles disk;
    std::deque<std::function<void()>> dispatched;

    /// Lets what was dispatched run and its results arrive.
    void runDispatched() {
        while (!dispatched.empty()) {
            dispatched.front()();
            dispatched.pop_front();
        }
        loop.runPosted();
    }

    ORVUserDefaults& standardUserDefaults() override {
        notes += "defaults ";
        return defaults;
    }
    std::unique_ptr<ORVSerialQueue> makeSerialQueue(const std::string& label) override {
        notes += label.substr(label.rfind('.') + 1) + " ";
        return std::make_unique<Queue>(*this);
    }
    ORVRunLoop& runLoop() override { return loop; }
    ORVFiles& files() override { return disk; }
    const ORVClock& clock() override { return clock_; }
    void terminate() override { notes += "terminate "; }

private:
    class Queue final : public ORVSerialQueue {
    public:
        explicit Queue(ManualHost& owner) : owner_(owner) {}
        void dispatch(std::function<void()> closure) override {
            owner_.notes += owner_.loop.timersMade == 0 ? "dispatch-before-timer " : "dispatch ";
            owner_.dispatched.push_back(std::move(closure));
        }

    private:
        ManualHost& owner_;
    };

    ManualClock clock_;
};
