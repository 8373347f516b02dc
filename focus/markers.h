#pragma once

#include "text/marker_search.h"

/// The words that select lines of a desktop log. A line without any of them is not about focus and
/// is passed over.
namespace focus {

inline constexpr std::string_view kActivityMarker = "thread_stream_view_activity_changed";
inline constexpr std::string_view kOwnerSyncMarker =
    "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync ";
inline constexpr std::string_view kRenderStateMarker = "rendererWindowAppearance=";

/// All three have "w" as their rare byte, which makes them cheaper to look for together.
inline constexpr ORVMarker kMarkers[] = {
    {kActivityMarker, 17, 18}, {kOwnerSyncMarker, 67, 73}, {kRenderStateMarker, 13, 14}};

}  // namespace focus
