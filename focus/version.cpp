// The installed desktop application and its version. Tests: tests/focus/focus_test.cpp.

#include "focus/ORVCodexFocusLogSource.h"
#include "platform/property_list.h"

namespace {

constexpr const char* kInfoPlistPaths[] = {"/Applications/Codex.app/Contents/Info.plist",
                                           "/Applications/ChatGPT.app/Contents/Info.plist"};

/// No application's property list is nearly as large. A larger file counts as absent.
constexpr std::size_t kInfoPlistLimitBytes = 256 * 1024;

}  // namespace

std::string ORVCodexFocusLogSource::installedCodexInfoPlistURL(ORVFiles& files) {
    for (const char* path : kInfoPlistPaths) {
        if (files.itemExists(path)) {
            return path;
        }
    }
    return kInfoPlistPaths[0];
}

std::optional<std::string> ORVCodexFocusLogSource::installedCodexVersion() {
    const auto list = platform::contentsOfFile(files_, codexInfoPlistURL_, kInfoPlistLimitBytes);
    return list ? platform::propertyListString(*list, "CFBundleShortVersionString") : std::nullopt;
}
