#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

/// Says why something could not be done. An error is never translated and never shown in the menu;
/// scripts and developers read it.
struct ORVError {
    std::string domain;  ///< "Orvellan" for the program's own codes, "posix" for an errno.
    std::int64_t code = 0;
    std::string description;  ///< For developers and scripts.
    bool operator==(const ORVError&) const = default;
};

/// The caller's place for an error. An empty slot means that no error was reported so far; a null
/// pointer to a slot means that the caller does not want to know. Success is read from a call's
/// result, never from the slot: one slot may pass through several calls, and keep the error of a
/// file that was passed over beside a valid result.
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
inline ORVError posixError(int errnoValue) {
    return {"posix", errnoValue, std::generic_category().message(errnoValue)};
}

}  // namespace platform
