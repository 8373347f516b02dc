#pragma once

#include <atomic>
#include <map>
#include <memory>
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
    bool isUsable() const { return wakeReadEnd_ >= 0; }

    void post(Closure closure) override;
    void postAfter(std::chrono::milliseconds delay, Closure closure) override;
    std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(std::chrono::milliseconds interval,
                                                          Closure closure) override;

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

    /// Runs until stop is called, and returns the status that was passed to it.
    int run();
    void stop(int status);

    /// Destroys all closures except those of timers, and so releases the objects that they keep
    /// alive.
    void dropClosures();

private:
    using Clock = std::chrono::steady_clock;
    class Timer;
    struct Watch {
        Interest interest;
        Closure ready;
    };

    void turn(const Closure& closure);
    void runPosted();
    void runDue();
    void waitForEvents();
    int millisecondsToNextDue() const;

    std::mutex mutex_;
    std::vector<Closure> posted_;  ///< Guarded by mutex_.

    std::multimap<Clock::time_point, Closure> delayed_;
    std::vector<Timer*> timers_;  ///< Each removes itself when it is destroyed.
    std::map<int, Watch> watches_;
    Closure turnEnd_;
    Closure wakened_;
    std::atomic<bool> isSignalled_ = false;  ///< Set by a signal handler.
    int wakeReadEnd_ = -1;
    int wakeWriteEnd_ = -1;
    bool isStopped_ = false;
    int status_ = 0;
};
