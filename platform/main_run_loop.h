#pragma once

#include <functional>
#include <memory>

#include "platform/run_loop.h"

/// The main thread of a Mac's application: the main queue, and timers on the main run loop. Both go
/// on while a menu is open.
class ORVMainRunLoop final : public ORVRunLoop {
public:
    void post(Closure closure) override;
    void postAfter(std::chrono::milliseconds delay, Closure closure) override;
    std::unique_ptr<ORVRepeatingTimer> makeRepeatingTimer(std::chrono::milliseconds interval,
                                                          Closure closure) override;

    /// Sets the closure that is called at the end of every turn.
    void setTurnEnd(Closure turnEnd) { turnEnd_ = std::move(turnEnd); }

private:
    void turn(const Closure& closure);

    Closure turnEnd_;
};
