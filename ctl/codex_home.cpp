// Finds the folder that the agent uses. A relative $CODEX_HOME is ignored, since it would name
// another folder wherever the program is started. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/codex_home.h"

#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "sessions/ORVCodexSessionSource.h"

namespace ctl {
namespace {

std::string absolutePath(std::string path) {
    if (!path.starts_with('/')) {
        const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
        path = std::string(folder ? folder.get() : "") + '/' + path;
    }
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

}  // namespace

CodexHome codexHome(const std::optional<std::string>& option) {
    if (option) {
        return {absolutePath(*option), "named by --codex-home"};
    }
    const char* variable = std::getenv("CODEX_HOME");
    if (variable && *variable == '/') {
        return {absolutePath(variable), "named by $CODEX_HOME"};
    }
    return {ORVCodexSessionSource::defaultCodexHome(), "in the home folder"};
}

}  // namespace ctl
