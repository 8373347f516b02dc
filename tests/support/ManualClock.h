#pragma once

#include "platform/clock.h"

/// A wall clock that is turned by hand.
class ManualClock final : public ORVClock {
public:
    TimePoint now() const override { return time; }

    TimePoint time{std::chrono::hours(500'000)};
};
