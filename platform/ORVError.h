#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

/// Why something could not be done. Never shown to the user of the menu bar, never translated.
struct ORVError {
    std::string domain;  ///< "Orvellan" for the program's own codes, "posix" for an errno.
    std::int64_t code = 0;
    std::string description;  ///< For developers and scripts.
    bool operator==(const ORVError&) const = default;
};

/// A caller's place for an error; empty means that none was reported so far. A null pointer to a
/// slot means "not interested". Success is read from a call's result, never from the slot: a slot
/// may pass through several calls and keep the error of one that was passed over.
using ORVErrorSlot = std::optional<ORVError>;

/// Puts an error into the slot in place of what stands there.
inline void storeError(ORVErrorSlot* slot, ORVError error) {
    if (slot) {
        *slot = std::move(error);
    }
}

/// Puts an error into the slot unless an earlier cause stands there.
inline void storeErrorIfEmpty(ORVErrorSlot* slot, ORVError error) {
    if (slot && !*slot) {
        *slot = std::move(error);
    }
}

namespace platform {

/// The system's error for an errno value.
ORVError posixError(int errnoValue);

}  // namespace platform
