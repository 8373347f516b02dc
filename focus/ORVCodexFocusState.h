#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

enum ORVCodexFocusStatus : std::int64_t {
    ORVCodexFocusStatusTaskInView = 0,
    ORVCodexFocusStatusNewTask = 1,          ///< The task in view has no thread yet.
    ORVCodexFocusStatusLogsUnavailable = 2,  ///< There is no desktop log.
    ORVCodexFocusStatusNoFocusRecord = 3,    ///< No task stands in the logs so far.
    ORVCodexFocusStatusIncompatible = 4,     ///< The latest record had an unexpected shape.
};

/// Which task the user has in view, or why none is. A state does not change; it is made on the
/// refresh queue and moved to the UI thread.
class ORVCodexFocusState {
public:
    ORVCodexFocusState(ORVCodexFocusStatus status, std::optional<std::string> threadID,
                       std::optional<std::string> codexVersion, std::string message)
        : status_(status),
          threadID_(std::move(threadID)),
          codexVersion_(std::move(codexVersion)),
          message_(std::move(message)) {}

    ORVCodexFocusStatus status() const { return status_; }

    /// Returns the identifier of the task in view, in the log's spelling; none for other statuses.
    const std::optional<std::string>& threadID() const { return threadID_; }

    /// Returns the version in the installed application's Info.plist, whatever the status; none
    /// when it cannot be read.
    const std::optional<std::string>& codexVersion() const { return codexVersion_; }

    /// Returns a fixed text for the status, for scripts and developers. It is not shown in the
    /// menu.
    const std::string& message() const { return message_; }

private:
    ORVCodexFocusStatus status_;
    std::optional<std::string> threadID_;
    std::optional<std::string> codexVersion_;
    std::string message_;
};
