#pragma once

#include <optional>
#include <string>

/// Where the agent keeps its files.
namespace ctl {

struct CodexHome {
    std::string path;    ///< Absolute, without a slash at its end.
    std::string origin;  ///< Who named it, for a person: "named by $CODEX_HOME".
};

/// The folder that the option names, else $CODEX_HOME where that is an absolute path, else ".codex"
/// in the home folder.
CodexHome codexHome(const std::optional<std::string>& option);

}  // namespace ctl
