#pragma once

#include <string_view>

/// What a log line must hold to be about focus.
namespace focus {

inline constexpr std::string_view kActivityMarker = "thread_stream_view_activity_changed";
inline constexpr std::string_view kOwnerSyncMarker =
    "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync ";
inline constexpr std::string_view kRenderStateMarker = "rendererWindowAppearance=";

}  // namespace focus
