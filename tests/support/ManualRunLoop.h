#pragma once

#include <map>
#include <utility>
#include <vector>

#include "platform/run_loop.h"

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
