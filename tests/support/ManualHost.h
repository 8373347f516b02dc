#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/ORVAppHost.h"
#include "tests/support/ManualClock.h"
#include "tests/support/ManualRunLoop.h"
#include "tests/support/MemoryDefaults.h"
#include "tests/support/MemoryFiles.h"

/// An application's host in memory. Its queue runs when the test says so, and `notes` holds what
/// the application asked of it.
class ManualHost final : public ORVAppHost {
public:
    std::string notes;
    MemoryDefaults defaults;
    ManualRunLoop loop;
    MemoryFiles disk;
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
