#pragma once

#include "text/marker_search.h"

/// The words by which the lines of a session file are chosen. A line that holds none of them cannot
/// change any figure, and is passed over without being cut out or parsed.
namespace sessions {

inline constexpr std::string_view kCompact = "compact";
inline constexpr std::string_view kTokenCount = "token_count";

/// The pairs of bytes were measured on session files: "m…a" and "k…_".
inline constexpr ORVMarker kMarkers[] = {{kCompact, 2, 5}, {kTokenCount, 2, 5}};

}  // namespace sessions
