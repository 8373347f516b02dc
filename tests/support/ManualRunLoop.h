#pragma once

#include <deque>
#include <map>
#include <utility>

#include "platform/run_loop.h"

/// A UI thread whose time is turned by hand.
class ManualRunLoop final : public ORVRunLoop {
public:
    void post(Closure closure) override { posted_.push_back(std::move(closure)); }

    void postAfter(std::chrono::milliseconds delay, Closure closure) override {
        delayed_.emplace(now_ + delay, std::move(closure));
    }

    std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(std::chrono::milliseconds interval,
                                                          Closure closure) override {
        ++timersMade;
        fire(now_ + interval, interval, closure);
        return std::make_unique<ORVRepeatingTimer>();
    }

    void runPosted() {
        while (!posted_.empty()) {
            const Closure closure = std::move(posted_.front());
            posted_.pop_front();
            closure();
        }
    }

    /// Lets this much time pass, and what becomes due run.
    void advance(std::chrono::milliseconds time) {
        const auto end = now_ + time;
        while (!delayed_.empty() && delayed_.begin()->first <= end) {
            now_ = delayed_.begin()->first;
            const Closure closure = std::move(delayed_.begin()->second);
            delayed_.erase(delayed_.begin());
            closure();
        }
        now_ = end;
    }

    int timersMade = 0;

private:
    void fire(std::chrono::milliseconds due, std::chrono::milliseconds interval,
              const Closure& closure) {
        delayed_.emplace(due, [this, due, interval, closure] {
            closure();
            fire(due + interval, interval, closure);
        });
    }

    std::chrono::milliseconds now_{0};
    std::deque<Closure> posted_;
    std::multimap<std::chrono::milliseconds, Closure> delayed_;
};
