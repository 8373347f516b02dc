#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "focus/ORVCodexFocusState.h"
#include "platform/ORVFollowedFile.h"
#include "platform/clock.h"
#include "platform/files.h"

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

/// What one log line says about the task in view. Exactly one of threadID, waitingForThread and
/// incompatibleFormat is set.
struct ORVFocusLogEvent {
    /// The first word of the line. It is compared as a string and never read as a date. When the
    /// event's window takes the focus again, the word of that line takes its place.
    std::string timestamp;

    std::optional<std::string> threadID;
    bool waitingForThread = false;    ///< A new task without a thread.
    bool incompatibleFormat = false;  ///< The right kind of line in an unexpected form.
};

/// A window of the desktop application as the lines of one log file have described it so far.
struct ORVFocusWindowState {
    std::string windowID;  ///< Never empty. A line with another one is not about this window.
    bool primary = false;
    bool focused = false;
    bool visible = false;

    /// The event of the window's last owner-sync line. It is shared with the source's latestEvent_,
    /// because a new time stamp must show in both.
    std::shared_ptr<ORVFocusLogEvent> routeEvent;
};

/// How far one log file has been read, and the windows that its lines have described.
///
/// The state of a file that is no longer found is dropped.
struct ORVFocusLogFileState : ORVFollowedFile {
    /// By web-contents identifier. The same identifier in another file is another window.
    std::unordered_map<std::string, ORVFocusWindowState> windows;
};

/// Decides from the desktop application's logs which task is in view.
///
/// A source lives as long as the program. It is used on the refresh queue only and locks nothing.
/// Of all events in the logs, one is current: the one with the greatest time stamp, and among equal
/// ones the one that was read last. It stays current until a newer one is read, even when its
/// window loses the focus or its file is removed.
class ORVCodexFocusLogSource {
public:
    /// Without paths, a source reads the logs of this user's desktop application. `files` and
    /// `clock` must outlive the source.
    ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock);
    ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock, std::string logsRoot);
    ORVCodexFocusLogSource(ORVFiles& files, const ORVClock& clock, std::string logsRoot,
                           std::string infoPlistPath);

    /// Return the paths at which the logs and the installed application's property list are looked
    /// for.
    const std::string& logsRoot() const { return logsRoot_; }
    const std::string& infoPlistPath() const { return infoPlistPath_; }

    // Decision (decision.cpp)

    /// Returns which task the user has in view.
    ///
    /// A call reads only what was appended since the last one; the first call that finds a log
    /// reads all of it. There is always an answer: a log that cannot be read is passed over, and
    /// the answer rests on the lines read so far. *error may then hold the system's error beside a
    /// valid state.
    ORVCodexFocusState currentFocusStateWithError(ORVErrorSlot* error);

    /// Makes the event current unless its time stamp sorts before that of the current event.
    void acceptEventIfNewer(std::shared_ptr<ORVFocusLogEvent> event);

    /// Returns the path of the installed application's Info.plist, and when none is installed, the
    /// path at which it would stand.
    static std::string installedCodexInfoPlistURL(ORVFiles& files);

    /// Returns "CFBundleShortVersionString" of the property list at infoPlistPath(), which is read
    /// at every call; none when the file cannot be read or holds no such string.
    std::optional<std::string> installedCodexVersion();

    // Log lines (log_lines.cpp)

    /// Interprets one line that holds a marker, without its line feed. The line may change the
    /// file's windows and the current event.
    void consumeLineData(std::string_view line, ORVFocusLogFileState& fileState);

    /// Returns the event of an activity line, whatever is known of its window. Returns null for any
    /// other line, and for one that is not about an active thread in a focused primary window. The
    /// line must be valid UTF-8.
    static std::shared_ptr<ORVFocusLogEvent> eventFromLineData(std::string_view line);

    /// Returns what follows the first "field=" of the line, up to white space; none when the line
    /// has no such field. The field's name may be the end of a longer word.
    static std::optional<std::string_view> valueForField(std::string_view field,
                                                         std::string_view line);

    static bool isValidThreadID(std::string_view text);

private:
    // Tailing (tailing.cpp)
    std::vector<std::string> logFileURLsWithError(ORVErrorSlot* error);
    bool initializeFromLogURLs(const std::vector<std::string>& paths, ORVErrorSlot* error);
    bool consumeUpdatesFromLogURLs(const std::vector<std::string>& paths, ORVErrorSlot* error);
    bool consumeUpdates(const std::string& path, ORVReadingMemory& memory, ORVErrorSlot* error);
    bool updateFileState(ORVFocusLogFileState& fileState, const std::string& path,
                         std::uint64_t fileSize, ORVReadingMemory& memory, ORVErrorSlot* error);

    // Log lines (log_lines.cpp)
    static ORVFocusWindowState* findWindow(ORVFocusLogFileState& fileState,
                                           std::string_view webContentsID,
                                           std::string_view windowID);
    static std::shared_ptr<ORVFocusLogEvent> routeEventFromLine(std::string_view line);
    static ORVFocusWindowState* updateWindow(ORVFocusLogFileState& fileState,
                                             std::string_view line);

    ORVFiles& files_;
    const ORVFileFollower follower_;
    const std::string logsRoot_;
    const std::string infoPlistPath_;
    std::unordered_map<std::string, ORVFocusLogFileState> fileStates_;  ///< By path.
    std::shared_ptr<ORVFocusLogEvent> latestEvent_;  ///< Current; shared with its window.
    bool initialized_ = false;
};
