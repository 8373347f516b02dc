#pragma once

#include <chrono>
#include <functional>
#include <memory>

/// Fires again and again on the UI thread until it is destroyed.
class ORVRepeatingTimer {
public:
    virtual ~ORVRepeatingTimer() = default;
};

/// The UI thread: runs closures one after the other. One closure is one turn.
///
/// Only post may be called from another thread.
class ORVRunLoop {
public:
    using Closure = std::function<void()>;

    virtual ~ORVRunLoop() = default;

    /// Runs the closure in a turn of its own, after those posted before. Any thread.
    virtual void post(Closure closure) = 0;

    /// Runs the closure once, in a turn of its own, when this time has passed.
    virtual void postAfter(std::chrono::milliseconds delay, Closure closure) = 0;

    /// A timer whose first firing is one interval from now. What is due while a turn runs fires
    /// once, afterwards.
    [[nodiscard]] virtual std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(
        std::chrono::milliseconds interval, Closure closure) = 0;
};

/// Runs closures one after the other on a thread of its own, never the UI thread.
class ORVSerialQueue {
public:
    virtual ~ORVSerialQueue() = default;
    virtual void dispatch(std::function<void()> closure) = 0;
};
