#pragma once

#include "text/marker_search.h"

/// The words that select lines of a session file. A line without any of them cannot change what is
/// wanted; it is passed over without being cut out or parsed.
namespace sessions {

inline constexpr std::string_view kCompact = "compact";
inline constexpr std::string_view kTokenCount = "token_count";
inline constexpr std::string_view kTurnContext = "turn_context";

/// The rare bytes, "m…c" and "k…_", are those that were fastest on session files.
inline constexpr ORVMarker kMarkers[] = {{kCompact, 2, 5}, {kTokenCount, 2, 5}};
inline constexpr ORVMarker kMarkersWithFacts[] = {
    {kCompact, 2, 5}, {kTokenCount, 2, 5}, {kTurnContext, 4, 10}};

}  // namespace sessions
