#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/descriptors.h"
#include "platform/run_loop.h"

/// A run loop of a process without a desktop: sleeps until a closure is posted, a timer is due, or
/// a descriptor that is watched has something to say.
class ORVPosixRunLoop final : public ORVRunLoop {
public:
    ORVPosixRunLoop();
    ~ORVPosixRunLoop() override;

    /// False where the process had no descriptors left. The loop must then not be run.
    bool isUsable() const { return wakeReadEnd_ >= 0; }

    void post(Closure closure) override;
    void postAfter(std::chrono::milliseconds delay, Closure closure) override;
    std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(std::chrono::milliseconds interval,
                                                          Closure closure) override;

    using Interest = ORVWatchedDescriptor::Interest;

    /// Calls `ready` in a turn of its own whenever the descriptor is; one watch for each
    /// descriptor.
    void watch(int descriptor, Interest interest, Closure ready);
    void unwatch(int descriptor);

    /// Called at the end of every turn.
    void setTurnEnd(Closure turnEnd) { turnEnd_ = std::move(turnEnd); }

    /// Wakes the loop; may be called by a signal handler. The loop then calls `wakened` in a turn.
    void wakeFromSignal();
    void setWakened(Closure wakened) { wakened_ = std::move(wakened); }

    /// Runs until stop is called; returns the status given there.
    int run();
    void stop(int status);

    /// Forgets every closure that has not run, with what it keeps alive.
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
    std::vector<Timer*> timers_;  ///< Owned by whoever made them; they sign off when destroyed.
    std::map<int, Watch> watches_;
    Closure turnEnd_;
    Closure wakened_;
    std::atomic<bool> isSignalled_ = false;  ///< Set by a signal handler.
    int wakeReadEnd_ = -1;
    int wakeWriteEnd_ = -1;
    bool isStopped_ = false;
    int status_ = 0;
};
