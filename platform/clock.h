#pragma once

#include <chrono>

/// The wall clock. It may be set back at any moment. Tests turn it by hand.
class ORVClock {
public:
    using TimePoint = std::chrono::system_clock::time_point;
    virtual ~ORVClock() = default;
    virtual TimePoint now() const = 0;
};

/// This machine's clock.
class ORVSystemClock final : public ORVClock {
public:
    TimePoint now() const override { return std::chrono::system_clock::now(); }
};
