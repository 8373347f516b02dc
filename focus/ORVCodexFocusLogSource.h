#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "focus/ORVCodexFocusState.h"
#include "focus/ORVFocusLogEvent.h"
#include "focus/ORVFocusLogFileState.h"
#include "platform/chunk_buffer.h"
#include "platform/files.h"

/// Decides from the desktop application's logs which task is in view.
///
/// Lives as long as the program. Of all the events that the logs have told, one is current: the one
/// with the greatest time stamp, among equal ones the one read last. It stays until a newer one is
/// read, also when its window loses the focus or its file goes away. Refresh queue only; nothing is
/// locked.
class ORVCodexFocusLogSource {
public:
    /// The logs of this user's desktop application. `files` must outlive the source.
    explicit ORVCodexFocusLogSource(ORVFiles& files);
    ORVCodexFocusLogSource(ORVFiles& files, std::string logsRoot);
    ORVCodexFocusLogSource(ORVFiles& files, std::string logsRoot, std::string codexInfoPlistURL);

    /// Where the logs and the installed application's property list are looked for.
    const std::string& logsRoot() const { return logsRoot_; }
    const std::string& infoPlistPath() const { return codexInfoPlistURL_; }

    // Decision (decision.cpp)

    /// Which task the user has in view.
    ///
    /// Reads only what was appended since the last call; the first call that finds a log reads all
    /// of it. Always answers: what cannot be read is passed over, and the answer rests on the lines
    /// read so far. The system's error may then stand in *error beside a valid state.
    ORVCodexFocusState currentFocusStateWithError(ORVErrorSlot* error);

    // Installed version (version.cpp)

    /// Where the installed application's Info.plist is, or would be.
    static std::string installedCodexInfoPlistURL(ORVFiles& files);

    /// "CFBundleShortVersionString" of that file, read anew at every call; none when it is absent
    /// or no string.
    std::optional<std::string> installedCodexVersion();

    // Log lines (log_lines.cpp)

    /// Lets one line that holds a marker (markers.h), without its line feed, change the file's
    /// windows and the current event.
    void consumeLineData(std::string_view line, ORVFocusLogFileState& fileState);

    /// What an activity line, in valid UTF-8, says by itself, whatever its window; null for every
    /// other line.
    static std::shared_ptr<ORVFocusLogEvent> eventFromLineData(std::string_view line);

    /// What follows the first "field=" of the line, up to white space; none where it is absent. The
    /// field's name may be the end of a longer word.
    static std::optional<std::string_view> valueForField(std::string_view field,
                                                         std::string_view line);

    static bool isValidThreadID(std::string_view text);

    /// Makes the event the current one unless its time stamp sorts before that one's.
    void acceptEventIfNewer(std::shared_ptr<ORVFocusLogEvent> event);

private:
    // Tailing (tailing.cpp)
    std::vector<std::string> logFileURLsWithError(ORVErrorSlot* error);
    bool initializeFromLogURLs(const std::vector<std::string>& urls, ORVErrorSlot* error);
    bool consumeUpdatesFromLogURLs(const std::vector<std::string>& urls, ORVErrorSlot* error);
    bool consumeUpdates(const std::string& url, ORVErrorSlot* error);
    ORVFocusLogFileState& stateForFile(const std::string& url, const ORVFileAttributes& attributes);
    bool updateFileState(ORVFocusLogFileState& fileState, const std::string& url,
                         std::uint64_t fileSize, ORVErrorSlot* error);
    bool readOn(ORVFocusLogFileState& fileState, ORVOpenFile& file, std::uint64_t fileSize,
                ORVErrorSlot* error);
    void consumeCompleteLinesFromFileState(ORVFocusLogFileState& fileState, std::string_view chunk);

    // Log lines (log_lines.cpp)
    static ORVFocusWindowState* findWindow(ORVFocusLogFileState& fileState,
                                           std::string_view webContentsID,
                                           std::string_view windowID);
    static std::shared_ptr<ORVFocusLogEvent> routeEventFromLine(std::string_view line);
    static ORVFocusWindowState* updateWindow(ORVFocusLogFileState& fileState,
                                             std::string_view line);

    ORVFiles& files_;
    const std::string logsRoot_;
    const std::string codexInfoPlistURL_;
    std::unordered_map<std::string, ORVFocusLogFileState> fileStates_;  ///< By path.
    std::shared_ptr<ORVFocusLogEvent> latestEvent_;  ///< Shared with the window that it came from.
    bool initialized_ = false;
    platform::ChunkBuffer chunkBuffer_;  ///< Holds memory only while the logs are read.
};
