#pragma once

#include <optional>
#include <string>

/// Finds the folder in which the agent keeps its files.
namespace ctl {

struct CodexHome {
    std::string path;    ///< Absolute, without a slash at its end.
    std::string origin;  ///< Why it is this one, for a person: "named by $CODEX_HOME".
};

/// Returns the folder that the option names, else $CODEX_HOME if that is an absolute path, else
/// ".codex" in the home folder.
CodexHome codexHome(const std::optional<std::string>& option);

}  // namespace ctl
