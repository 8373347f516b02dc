#pragma once

#include "platform/ORVError.h"

/// The errors that the program creates itself. Every other error comes unchanged from the system.
namespace sessions {

inline constexpr char kErrorDomain[] = "Orvellan";

enum ORVErrorCode : std::int64_t {
    ORVErrorSessionsDirectoryMissing = 1,  ///< The sessions folder cannot be walked.
    ORVErrorThreadSessionMissing = 2,      ///< The task has no session file.
};

inline ORVError sessionsDirectoryMissing() {
    return {kErrorDomain, ORVErrorSessionsDirectoryMissing, "没有找到 Codex 会话目录"};
}

inline ORVError threadSessionMissing() {
    return {kErrorDomain, ORVErrorThreadSessionMissing, "没有找到所选 Codex 任务的会话文件"};
}

}  // namespace sessions
