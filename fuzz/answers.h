#pragma once

#include <optional>
#include <string>

#include "focus/ORVCodexFocusState.h"
#include "platform/ORVError.h"
#include "sessions/ORVSessionParseState.h"
#include "sessions/ORVSessionSnapshot.h"

/// The program's answers in the model's words.
namespace fuzz {

std::string described(const std::optional<ORVSessionSnapshot>& snapshot);
std::string described(const ORVSessionParseState& state);

/// Checks that the message is the one of the status, too.
std::string described(const ORVCodexFocusState& focusState);

std::string described(const ORVErrorSlot& error);

}  // namespace fuzz
