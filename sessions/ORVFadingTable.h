#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/clock.h"

/// A table that forgets what nobody has asked for during at least ten minutes, and at most twenty.
template <typename Value>
class ORVFadingTable {
public:
    /// Forgets what has not been asked for in a while. No reference to a member outlives the call.
    void age(ORVClock::TimePoint now) {
        constexpr std::chrono::minutes kPeriod(10);
        if (now - agedAt_ >= kPeriod || now < agedAt_) {  // The clock may have been set back.
            for (auto at = members_.begin(); at != members_.end();) {
                const bool isKept = std::exchange(at->second.isAskedFor, false);
                at = isKept ? std::next(at) : members_.erase(at);
            }
            agedAt_ = now;
        }
    }

    /// Returns the member with this key, which is made if there is none.
    Value& operator[](std::string_view key) {
        Value* const found = find(key);
        return found ? *found : members_.emplace(key, Member{}).first->second.value;
    }

    /// Returns the member with this key; null when there is none.
    Value* find(std::string_view key) {
        const auto found = members_.find(key);
        if (found == members_.end()) {
            return nullptr;
        }
        found->second.isAskedFor = true;
        return &found->second.value;
    }

    /// Does not count as asking.
    const Value* find(std::string_view key) const {
        const auto found = members_.find(key);
        return found == members_.end() ? nullptr : &found->second.value;
    }

    void erase(std::string_view key) {
        if (const auto found = members_.find(key); found != members_.end()) {
            members_.erase(found);
        }
    }
    void reserve(std::size_t count) {
        if (count > members_.size()) {  // Else the GNU library would make the table smaller.
            members_.reserve(count);
        }
    }
    void clear() { members_.clear(); }
    std::size_t size() const { return members_.size(); }

private:
    struct Member {
        Value value;
        bool isAskedFor = true;  ///< Since the table was aged.
    };
    /// Not noexcept: the GNU library keeps the hash of each key only where making it may throw.
    /// Otherwise it makes them again while it looks for a key.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const {
            return std::hash<std::string_view>()(key);
        }
    };
    std::unordered_map<std::string, Member, Hash, std::equal_to<>> members_;
    ORVClock::TimePoint agedAt_;
};
