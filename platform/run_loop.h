#pragma once

#include <chrono>
#include <functional>

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

    /// Runs the closure again and again until the loop ends, for the first time one interval from
    /// now. However many firings a long turn delays, the closure runs once after it.
    virtual void repeat(std::chrono::milliseconds interval, Closure closure) = 0;
};

/// Runs closures one after the other on a thread of its own, never the UI thread.
class ORVSerialQueue {
public:
    virtual ~ORVSerialQueue() = default;
    virtual void dispatch(std::function<void()> closure) = 0;
};
