// Shows all tasks. Tests: tests/ctl/brimletctl_test.cpp, tests/sessions/tasks_test.cpp.

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>
#include <vector>

#include "app/age.h"
#include "app/status_title.h"
#include "ctl/answers.h"
#include "ctl/coloring.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "ctl/task_table.h"
#include "text/json_writing.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// The answer for one task.
struct ReadTask {
    std::optional<ORVSessionSnapshot> snapshot;
    std::optional<std::string> folder;
    ORVErrorSlot error;
};

constexpr std::string_view kClearLine = "\r\x1b[K";

void clearProgressAndDie(int signalNumber) {
    [[maybe_unused]] const ssize_t ignored =
        write(STDERR_FILENO, kClearLine.data(), kClearLine.size());
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
}

/// Tells a person at a terminal how many tasks have been read.
class Progress {
public:
    explicit Progress(std::size_t total)
        : total_(total), isWanted_(isatty(STDERR_FILENO) != 0 && !terminalIsDumb()) {}
    ~Progress() {
        if (isShown_) {
            write(std::string(kClearLine));
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::size_t done) {
        constexpr std::chrono::milliseconds kStep(100);
        const auto now = std::chrono::steady_clock::now();
        if (!isWanted_ || now < next_) {
            return;
        }
        next_ = now + kStep;
        if (!std::exchange(isShown_, true)) {
            signal(SIGINT, clearProgressAndDie);
            signal(SIGTERM, clearProgressAndDie);
        }
        write("\rReading tasks: " + std::to_string(done) + " of " + std::to_string(total_));
    }

private:
    static void write(const std::string& text) {
        [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, text.data(), text.size());
    }

    static constexpr std::chrono::milliseconds kPatience{500};

    const std::size_t total_;
    const bool isWanted_;
    bool isShown_ = false;
    std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + kPatience;
};

/// Reads the tasks some hundreds at a time, so that memory does not grow with their number.
std::vector<ReadTask> readTasks(std::span<const ORVTask> tasks, ORVCodexSessionSource& source) {
    constexpr std::size_t kTasksAtOnce = 500;
    std::vector<ReadTask> results;
    Progress progress(tasks.size());
    while (!tasks.empty()) {
        const auto some = tasks.first(std::min(tasks.size(), kTasksAtOnce));
        source.readWorkingFoldersAhead(some);
        source.readAhead(some, [&](std::size_t files) {
            progress.show(results.size() + std::min(files, some.size()));
        });
        for (const ORVTask& task : some) {
            ReadTask& result = results.emplace_back();
            result.snapshot = source.snapshotForTask(task, &result.error);
            result.folder = source.workingFolderForTask(task);
        }
        source.forgetFiles();
        tasks = tasks.subspan(some.size());
    }
    return results;
}

std::string tabbedLine(const ReadTask& task) {
    const ORVSessionSnapshot& snapshot = *task.snapshot;
    return app::statusItemTitle(snapshot) + '\t' + utcText(snapshot.lastUpdated()) + '\t' +
           text::forTerminal(task.folder.value_or("--")) + '\t' +
           text::forTerminal(snapshot.title()) + '\t' + text::forTerminal(snapshot.threadID()) +
           '\n';
}

std::string tasksJSON(const std::vector<ReadTask>& tasks) {
    std::string list;
    for (const ReadTask& task : tasks) {
        list += (list.empty() ? "" : ",") + taskJSON(*task.snapshot, task.folder);
    }
    return text::objectJSON({{"tasks", "[" + list + "]"}}) + '\n';
}

std::string tasksText(const std::vector<ReadTask>& tasks, const Arguments& arguments,
                      Sources& sources) {
    std::string text;
    if (arguments.format == Format::ownTemplate) {
        for (const ReadTask& task : tasks) {
            text += filledTemplate(*arguments.ownTemplate, *task.snapshot, sources) + '\n';
        }
        return text;
    }
    if (!isatty(STDOUT_FILENO)) {
        for (const ReadTask& task : tasks) {
            text += tabbedLine(task);
        }
        return text;
    }
    std::vector<TaskRow> rows;
    rows.reserve(tasks.size());
    for (const ReadTask& task : tasks) {
        rows.push_back({*task.snapshot, task.folder.value_or("")});
    }
    return taskTable(rows, sources.clock.now(), isColored(arguments.coloring, STDOUT_FILENO));
}

void leaveOut(std::vector<ORVTask>& tasks, const Arguments& arguments, ORVClock::TimePoint now) {
    if (arguments.since) {
        std::erase_if(tasks, [&](const ORVTask& task) {
            return app::age(task.newestFile().modifiedAt, now) > *arguments.since;
        });
    }
    if (arguments.limit > 0 && tasks.size() > arguments.limit) {
        tasks.resize(arguments.limit);
    }
}

}  // namespace

int showTasks(Sources& sources, const Arguments& arguments) {
    auto tasks = sources.session.tasksWithError(nullptr);
    int status = kAnswered;
    if (!tasks) {
        complain(reasonForNoSessions(sources));
        status = kNothingToShow;
        tasks.emplace();
    }
    leaveOut(*tasks, arguments, sources.clock.now());
    std::vector<ReadTask> read = readTasks(*tasks, sources.session);
    for (std::size_t i = 0; i < read.size(); ++i) {
        if (!read[i].snapshot) {
            complain("cannot read the task " + (*tasks)[i].threadID +
                     (read[i].error ? ": " + read[i].error->description : ""));
            status = kNothingToShow;
        }
    }
    std::erase_if(read, [](const ReadTask& task) { return !task.snapshot; });
    return finish(
        arguments.format == Format::json ? tasksJSON(read) : tasksText(read, arguments, sources),
        status);
}

}  // namespace ctl
