#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/clock.h"

/// A table that forgets what nobody has asked for during at least ten minutes, and at most twenty.
///
/// It has two halves: what was asked for since it was aged, and what was asked for only before
/// that.
template <typename Value>
class ORVFadingTable {
public:
    /// Forgets what has not been asked for in a while. No reference to a member outlives the call.
    void age(ORVClock::TimePoint now) {
        constexpr std::chrono::minutes kHalf(10);
        if (now - agedAt_ >= kHalf || now < agedAt_) {  // The clock may have been set back.
            faded_.swap(recent_);
            recent_.clear();
            agedAt_ = now;
        }
    }

    /// Returns the member with this key, which is made if there is none.
    Value& operator[](std::string_view key) {
        Value* const found = find(key);
        return found ? *found : recent_.emplace(key, Value{}).first->second;
    }

    /// Returns the member with this key; null when there is none.
    Value* find(std::string_view key) {
        if (const auto faded = faded_.find(key); faded != faded_.end()) {
            return &recent_.insert(faded_.extract(faded)).position->second;
        }
        const auto recent = recent_.find(key);
        return recent == recent_.end() ? nullptr : &recent->second;
    }

    /// Does not count as asking.
    const Value* find(std::string_view key) const {
        for (const Half* half : {&recent_, &faded_}) {
            if (const auto found = half->find(key); found != half->end()) {
                return &found->second;
            }
        }
        return nullptr;
    }

    void erase(std::string_view key) {
        if (find(key)) {
            recent_.erase(recent_.find(key));
        }
    }

    void clear() {
        recent_.clear();
        faded_.clear();
    }

    std::size_t size() const { return recent_.size() + faded_.size(); }

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using Half = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    Half recent_;
    Half faded_;
    ORVClock::TimePoint agedAt_;
};
