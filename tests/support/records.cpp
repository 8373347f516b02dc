#include "tests/support/records.h"

#include <map>
#include <regex>
#include <sstream>

namespace records {
namespace {

constexpr std::string_view kWindow =
    "rendererWebContentsId=7 rendererWindowId=3 rendererWindowAppearance=primary "
    "rendererWindowFocused=true rendererWindowVisible=true";
constexpr std::string_view kActivity = "thread_stream_view_activity_changed active=true ";

const std::map<std::string, std::string>& kinds() {
    static const std::map<std::string, std::string> kKinds = {
        {"window", "[window-state] changed " + std::string(kWindow)},
        {"route",
         "[electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync "
         "originWebContentsId=7 windowId=3 ownerRoutePath="},
        {"activity", std::string(kActivity) +
                         "rendererWindowAppearance=primary rendererWindowFocused=true "
                         "conversationId="},
        {"both", std::string(kActivity) + std::string(kWindow) + " conversationId="}};
    return kKinds;
}

void setField(std::string& line, const std::string& end, const std::string& value) {
    const std::size_t start = line.find(end + '=') + end.size() + 1;
    line.replace(start, line.find(' ', start) - start, value);
}

void change(std::string& line, const std::string& word) {
    const std::size_t equals = word.find('=');
    if (word.find('/') == 1) {
        setField(line, "WebContentsId", word.substr(0, 1));
        setField(line, "indowId", word.substr(2));
    } else if (equals != std::string::npos && word[0] != '/') {
        setField(line, word.substr(0, equals), word.substr(equals + 1));
    } else {
        line += word;
    }
}

std::string expanded(const std::string& told) {
    std::istringstream words(told);
    std::string time;
    std::string kind;
    words >> time >> kind;
    const auto usual = kinds().find(kind);
    if (usual == kinds().end()) {
        return told.substr(told.find_first_not_of(' '));
    }
    std::string line = usual->second;
    for (std::string word; words >> word;) {
        change(line, word);
    }
    return time + " info " + line;
}

}  // namespace

std::string log(std::string_view story) {
    std::string lines;
    std::istringstream told{std::string(story)};
    for (std::string line; std::getline(told, line, '|');) {
        lines += expanded(line) + '\n';
    }
    static const std::regex kTaskName("TASK"), kOtherName("OTHER");
    return std::regex_replace(std::regex_replace(lines, kTaskName, kTask), kOtherName, kOther);
}

}  // namespace records
