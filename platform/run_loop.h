#pragma once

#include <chrono>
#include <functional>
#include <memory>

/// A timer that fires on the UI thread, again and again, until it is destroyed.
class ORVRepeatingTimer {
public:
    virtual ~ORVRepeatingTimer() = default;
};

/// The UI thread. It runs closures one after the other; one closure is one turn. Only post may be
/// called from another thread.
class ORVRunLoop {
public:
    using Closure = std::function<void()>;

    virtual ~ORVRunLoop() = default;

    /// Runs the closure in a turn of its own, after those that were posted before. Can be called on
    /// any thread.
    virtual void post(Closure closure) = 0;

    /// Runs the closure once, in a turn of its own, when this time has passed.
    virtual void postAfter(std::chrono::milliseconds delay, Closure closure) = 0;

    /// Makes a timer that fires for the first time one interval from now. However many firings a
    /// long turn delays, the timer fires once after it.
    [[nodiscard]] virtual std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(
        std::chrono::milliseconds interval, Closure closure) = 0;
};

/// Runs closures one after the other on a thread of its own, never the UI thread.
class ORVSerialQueue {
public:
    virtual ~ORVSerialQueue() = default;
    virtual void dispatch(std::function<void()> closure) = 0;
};
