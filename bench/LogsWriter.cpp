#include "bench/LogsWriter.h"

#include <array>
#include <ctime>
#include <fstream>

namespace {

constexpr std::uint64_t kLargestLog = 16'000'000;
constexpr std::size_t kLogs = 20;
constexpr const char* kOtherTask = "01a20e72-983b-7e83-81c7-e87b7b63d182";

}  // namespace

LogsWriter::LogsWriter(WrittenFiles& files, Random& random, std::string folder)
    : files_(files), random_(random), folder_(std::move(folder)) {
    rotate();
}

void LogsWriter::step() {
    if (current().size > kLargestLog || current().isAmbiguous || random_.oneIn(2000)) {
        rotate();
    } else if (random_.oneIn(1000)) {
        changeLog();
    } else {
        // Now and then a second copy of the application writes as well.
        WrittenFile& other = logs_[random_.below(logs_.size())];
        WrittenFile& log = random_.oneIn(10) && !other.isAmbiguous ? other : current();
        files_.appendInPieces(log, log.rest.empty() ? lines() : "", random_);
    }
}

void LogsWriter::changeLog() {
    WrittenFile& log = logs_[random_.below(logs_.size())];
    switch (random_.below(3)) {
        case 0:
            files_.remove(log);
            break;
        case 1:
            shorten(log);
            break;
        default:
            files_.replace(log, lines());
    }
}

/// To nothing, or to some whole lines.
void LogsWriter::shorten(WrittenFile& log) {
    std::string text(random_.oneIn(3) ? 0 : random_.below(log.size + 1), '\0');
    std::ifstream(log.path).read(text.data(), static_cast<std::streamsize>(text.size()));
    files_.shorten(log, text.rfind('\n') + 1);
}

/// The log gets another name, which may be that of a log as well, and a new one begins under its
/// own.
void LogsWriter::rotate() {
    const std::string number = std::to_string(++lastNumber_);
    const std::string day = folder_ + "/2026/11/" + std::to_string(20 + lastNumber_ % 4);
    if (!logs_.empty() && current().size > 0) {
        const std::string path = current().path;
        const bool isLog = random_.oneIn(2);
        files_.rename(current(), day + "/rotated-" + number + (isLog ? ".log" : ".log.1"));
        if (!isLog) {
            files_.remove(current());
            logs_.pop_back();
        }
        WrittenFile fresh;
        fresh.path = random_.oneIn(2) ? path : day + "/codex-desktop-" + number + ".log";
        logs_.push_back(std::move(fresh));
    } else if (logs_.empty()) {
        logs_.emplace_back().path = day + "/codex-desktop-" + number + ".log";
    }
    files_.append(current(), line());
    if (logs_.size() > kLogs) {
        files_.remove(logs_.front());
        logs_.pop_front();
    }
}

void LogsWriter::settle() {
    for (WrittenFile& log : logs_) {
        files_.finishLine(log);
    }
    if (current().isAmbiguous) {
        rotate();
    }
    files_.append(current(), showLines());
    for (WrittenFile& log : logs_) {
        log.isAmbiguous = false;  // Seen by every reader before the next step.
    }
}

std::string LogsWriter::lines() {
    std::string text;
    for (std::uint64_t count = random_.between(1, 30); count > 0; --count) {
        text += random_.oneIn(20) ? focusLine() : line();
    }
    return random_.oneIn(4) ? text + showLines() : text;
}

std::string LogsWriter::line() {
    const std::uint64_t bytes = random_.oneIn(5000) ? 2'000'000 : 100;
    return timestamp() +
           " info [electron-main] request_completed windowId=3 conversationId=" + kOtherTask +
           " text=" + std::string(random_.below(bytes), 'x') + '\n';
}

/// About any window. Where such a line decides, the next ones about the window in view decide
/// again.
std::string LogsWriter::focusLine() {
    const std::uint64_t window = random_.below(9);
    switch (random_.below(4)) {
        case 0:
            return render(window, random_.oneIn(8));
        case 1:
            return route(window, "/local/" + std::string(kOtherTask));
        case 2:
            return route(window, random_.oneIn(2) ? "/" : "/settings");
        default:
            return timestamp() + " info thread_stream_view_activity_changed active=" +
                   (random_.oneIn(4) ? "true" : "false") +
                   " rendererWindowAppearance=primary rendererWindowFocused=true conversationId=" +
                   kOtherTask + '\n';
    }
}

std::string LogsWriter::showLines() {
    const std::uint64_t window = random_.below(4);
    std::string text = render(window, true);
    text += route(window, routeInView_);  // With the later time stamp.
    return text;
}

std::string LogsWriter::render(std::uint64_t window, bool isFocused) {
    const std::string number = std::to_string(window);
    return timestamp() +
           " info [window-state] renderer_state_changed rendererWebContentsId=" + number +
           " rendererWindowId=" + number +
           " rendererWindowAppearance=primary rendererWindowFocused=" +
           (isFocused ? "true" : "false") + " rendererWindowVisible=true\n";
}

std::string LogsWriter::route(std::uint64_t window, const std::string& path) {
    const std::string number = std::to_string(window);
    return timestamp() +
           " info [electron-message-handler] IAB_LIFECYCLE received browser sidebar owner sync "
           "originWebContentsId=" +
           number + " windowId=" + number + " ownerRoutePath=" + path + '\n';
}

std::string LogsWriter::timestamp() {
    constexpr std::time_t kBegin = 1'795'500'000;
    const std::time_t second = kBegin + static_cast<std::time_t>(++milliseconds_ / 1000);
    std::tm parts{};
    gmtime_r(&second, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &parts);
    return text.data() + std::to_string(1000 + milliseconds_ % 1000).substr(1) + 'Z';
}
