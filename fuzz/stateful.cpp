// Plays what may happen to the files and to the clock, decided by the input's bytes, and compares
// every answer of the two sources with that of the model, which reads the files whole.

#include <utility>

#include "app/refresh_step.h"
#include "fuzz/ManualClock.h"
#include "fuzz/MemoryFiles.h"
#include "fuzz/answers.h"
#include "fuzz/expect.h"
#include "fuzz/lines.h"
#include "fuzz/model/FocusModel.h"
#include "fuzz/model/SessionModel.h"
#include "fuzz/model/text.h"
#include "sessions/ORVCodexSessionSource.h"

namespace {

constexpr const char* kIndex = "/codex/session_index.jsonl";
constexpr const char* kInfoPlist = "/Info.plist";

constexpr const char* kLog = "/logs/main.log";

constexpr std::size_t kLimitFileBytes = 4096;  // A file written twice over and over has no end.

std::string anySessionFile(Input& input) {
    static const std::string kFolders[] = {"/codex/sessions/1/", "/codex/sessions/1/",
                                           "/codex/sessions/2/", "/codex/sessions/"};
    static const std::string kFirst = fuzz::kThreadIDs[0];
    static const std::string kSecond = fuzz::kThreadIDs[2];
    static const std::string kNames[] = {"x-" + kFirst + ".jsonl",
                                         "x-" + std::string(fuzz::kThreadIDs[1]) + "-b.JSONL",
                                         "a" + kSecond + ".jsonl",
                                         kFirst + "_" + kSecond + ".jsonl",
                                         "notes.jsonl",
                                         kFirst + ".jsonl.bak",
                                         "." + kFirst + ".jsonl"};
    const std::string folder = input.pick(kFolders);
    return folder + input.pick(kNames);
}

std::string anyFile(Input& input) {
    static const std::string kLogs[] = {kLog, "/logs/a/main.log", "/logs/a/b.LOG",
                                        "/logs/main.log.1"};
    return input.oneIn(2) ? input.pick(kLogs) : anySessionFile(input);
}

/// The world and both ways of looking at it.
class Play {
public:
    explicit Play(Input& input) : input_(input) {
        files_.makeFolder("/codex/sessions");
        files_.makeFolder("/logs");
        file_ = anySessionFile(input_);
    }

    void step() {
        switch (input_.below(16)) {
            case 0:
            case 1:
            case 2:
            case 3:
                return extendFile();
            case 4:
            case 5:
                return changeFile(pickFile());
            case 6:
                return turnClock();
            case 7:
                return changeIndex();
            case 8:
                return damageSomething();
            case 9:
                return changeInstalledVersion();
            case 10:
            case 11:
                return checkTask();
            case 12:
                return checkLatest();
            case 13:
                return checkTitles();
            default:
                return checkRefresh();
        }
    }

    void checkRefresh() {
        const ORVRefreshResults found = app::refreshFromFiles(focusSource_, source_);
        std::string error;
        const std::string focus = focusModel_.focus(error);
        const std::string task =
            focus.starts_with("0 ") ? sessionModel_.task(focus.substr(2), error) : "none";
        check(focus, fuzz::described(found.focusState), error, found.error);
        check(task, fuzz::described(found.snapshot), error, found.error);
        const MemoryFiles::Item* list = files_.find(kInfoPlist);
        const bool canBeRead =
            list && list->canBeOpened && list->damagedFrom > list->content.size();
        fuzz::expectEqual(canBeRead ? version_ : "", found.focusState.codexVersion().value_or(""),
                          "version");
    }

private:
    /// Mostly one of the two files that were picked last: what happens to a file matters when
    /// something else happened to it before.
    std::string pickFile() {
        const std::size_t choice = input_.below(8);
        if (choice > 3) {
            std::swap(file_, otherFile_);
        }
        if (choice > 5) {
            file_ = anyFile(input_);
        }
        return file_;
    }

    /// Appends the rest of a line that was begun, or lines, the last one whole or not.
    void extendFile() {
        const std::string path = pickFile();
        std::string bytes = std::exchange(unwritten_, "");
        for (std::size_t lines = bytes.empty() ? 1 + input_.below(4) : 0; lines > 0; --lines) {
            bytes += path.starts_with("/logs") ? fuzz::logLine(input_) : fuzz::sessionLine(input_);
            bytes += '\n';
        }
        if (input_.oneIn(4)) {
            const std::size_t cut = input_.byte() * bytes.size() / 256;
            unwritten_ = bytes.substr(cut);
            bytes.resize(cut);
        }
        files_.append(path, bytes);
    }

    void changeFile(const std::string& path) {
        const MemoryFiles::Item* item = files_.find(path);
        const std::string content = item ? item->content.substr(0, kLimitFileBytes) : "";
        const std::size_t position = input_.byte() * content.size() / 256;
        switch (input_.below(7)) {
            case 0:
                return files_.write(path, content.substr(0, position));
            case 1:
                return files_.replace(path, content.substr(position) + content);
            case 2:
                return files_.replace(path, content);
            case 3:
                return files_.write(path, content.substr(position) + content.substr(0, position));
            case 4:
                return files_.rename(path, pickFile());
            case 5:
                return files_.remove(path);
            default:
                return setDate(path);
        }
    }

    void setDate(const std::string& path) {
        if (MemoryFiles::Item* item = files_.find(path)) {
            item->modifiedAt = {static_cast<std::int64_t>(input_.below(4)) * 10, 0};
        }
    }

    void turnClock() {
        static constexpr int kMilliseconds[] = {1,      9'999,   10'000,  10'001,
                                                -1'000, 100'000, -50'000, 2'000};
        clock_.time += std::chrono::milliseconds(input_.pick(kMilliseconds));
        const auto seconds =
            std::chrono::floor<std::chrono::seconds>(clock_.time.time_since_epoch());
        files_.now.seconds = seconds.count();  // Such a disk keeps no fractions.
    }

    void changeIndex() {
        const ORVFileDate now = files_.now;
        if (const MemoryFiles::Item* item = files_.find(kIndex); item && input_.oneIn(4)) {
            files_.now = item->modifiedAt;  // It does not look changed.
        }
        const std::string line = fuzz::indexLine(input_);
        input_.oneIn(4) ? files_.replace(kIndex, line) : files_.append(kIndex, line);
        files_.now = now;
    }

    void changeInstalledVersion() {
        const fuzz::PropertyList list = fuzz::propertyList(input_);
        files_.write(kInfoPlist, list.bytes);
        version_ = list.version;
    }

    std::string pickDamaged() {
        static const std::string kOthers[] = {kIndex, "/codex/sessions", "/logs", kInfoPlist};
        switch (input_.below(8)) {
            case 0:
                return input_.pick(kOthers);
            case 1:
            case 2:
                return model::folder(file_);  // What is in it goes away for a while.
            default:
                return pickFile();
        }
    }

    void damageSomething() {
        MemoryFiles::Item* item = files_.find(pickDamaged());
        files_.bytesPerRead = input_.oneIn(4) ? 1 + input_.byte() : 100'000;
        if (!item) {
            return;
        }
        const std::size_t kind = input_.below(8);
        item->hasAttributes = kind != 1;
        item->canBeOpened = kind != 2;
        item->givesNumber = kind != 3;
        item->givesSize = kind != 4;
        item->givesDate = kind != 5;
        item->extraSize = kind == 6 ? input_.byte() : 0;
        item->damagedFrom = kind == 7 ? input_.byte() : MemoryFiles::Item{}.damagedFrom;
    }

    void checkTask() {
        static constexpr const char* kQueries[] = {"", "983b", "A408", "notes", "."};
        const std::string threadID =
            input_.oneIn(4) ? input_.pick(kQueries) : input_.pick(fuzz::kThreadIDs);
        ORVErrorSlot foundError;
        std::string error;
        const std::string found =
            fuzz::described(source_.snapshotForThreadID(threadID, &foundError));
        check(sessionModel_.task(threadID, error), found, error, foundError);
    }

    void checkLatest() {
        ORVErrorSlot foundError;
        std::string error;
        const std::string found = fuzz::described(source_.latestSnapshotWithError(&foundError));
        check(sessionModel_.latest(error), found, error, foundError);
    }

    void checkTitles() {
        std::string found;
        for (const auto& [threadID, title] : source_.threadTitles()) {
            found += threadID + '\t' + title + '\n';
        }
        fuzz::expectEqual(sessionModel_.titles(), found, "titles");
    }

    static void check(const std::string& expected, const std::string& found,
                      const std::string& error, const ORVErrorSlot& foundError) {
        fuzz::expectEqual(expected, found, "answer");
        fuzz::expectEqual(error, fuzz::described(foundError), "error");
    }

    Input& input_;
    MemoryFiles files_;
    ManualClock clock_;
    ORVCodexSessionSource source_{files_, clock_, "/codex"};
    ORVCodexFocusLogSource focusSource_{files_, "/logs", kInfoPlist};
    model::SessionModel sessionModel_{files_, clock_, "/codex"};
    model::FocusModel focusModel_{files_, "/logs"};
    std::string file_;
    std::string otherFile_ = kLog;
    std::string version_;
    std::string unwritten_;  ///< The rest of a line that was begun.
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kLimitSteps = 128;
    Input input(data, size);
    Play play(input);
    for (int step = 0; step < kLimitSteps && !input.empty(); ++step) {
        play.step();
    }
    play.checkRefresh();
    return 0;
}
