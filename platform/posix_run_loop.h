#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <vector>

#include "platform/descriptors.h"
#include "platform/run_loop.h"

/// The run loop of a process without a desktop. It sleeps until a closure is posted, a timer is
/// due, or a watched descriptor is ready.
class ORVPosixRunLoop final : public ORVRunLoop {
public:
    ORVPosixRunLoop();
    ~ORVPosixRunLoop() override;

    /// False when the process had no descriptors left for the loop; it must then not be run.
    bool isUsable() const { return wakeReadEnd_.number() >= 0; }

    void post(Closure closure) override;
    void postAfter(std::chrono::milliseconds delay, Closure closure) override;
    void repeat(std::chrono::milliseconds interval, Closure closure) override;

    using Interest = ORVWatchedDescriptor::Interest;

    /// Calls `ready`, in a turn of its own, whenever the descriptor is ready. A descriptor has one
    /// watch: a second call replaces it.
    void watch(int descriptor, Interest interest, Closure ready);
    void unwatch(int descriptor);

    /// Sets the closure that is called at the end of every turn.
    void setTurnEnd(Closure turnEnd) { turnEnd_ = std::move(turnEnd); }

    /// Wakes the loop, which then calls `wakened` in a turn. A signal handler may call this.
    void wakeFromSignal();
    void setWakened(Closure wakened) { wakened_ = std::move(wakened); }

    /// Runs until stop or fail is called, and returns the status that was passed to stop, or 1.
    /// Memory that runs out in a turn, and an error of waiting itself, fail the loop.
    int run();
    void stop(int status);

    /// Ends the loop with status 1. Can be called on any thread, and allocates nothing.
    void fail(int errnoValue);

    /// Returns the errno that ended the loop, and 0 when none did.
    int failure() const { return failure_; }

    /// Destroys all closures, and so releases the objects that they keep alive.
    void dropClosures();

private:
    using Clock = std::chrono::steady_clock;
    struct Timed {
        Closure closure;
        Clock::duration interval;  ///< 0 for a closure that runs once.
    };
    struct Watch {
        Interest interest;
        Closure ready;
    };

    void wake();
    void runTurns();
    void turn(const Closure& closure);
    void runPosted();
    void runDue();
    void waitForEvents();
    int millisecondsToNextDue() const;

    std::mutex mutex_;
    std::vector<Closure> posted_;  ///< Guarded by mutex_.

    std::multimap<Clock::time_point, Timed> timed_;  ///< By the time at which it is due.
    std::map<int, Watch> watches_;
    Closure turnEnd_;
    Closure wakened_;
    std::atomic<bool> isSignalled_ = false;  ///< Set by a signal handler.
    std::atomic<int> failure_ = 0;           ///< Set by any thread.
    platform::FileDescriptor wakeReadEnd_;
    platform::FileDescriptor wakeWriteEnd_;
    bool isStopped_ = false;
    int status_ = 0;
};
