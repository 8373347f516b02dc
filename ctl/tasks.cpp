// Shows all tasks. As many threads as there are processors read them, each with a source of its
// own; they share nothing but the list of tasks and the place in it, so that the answer does not
// depend on their number. Tests: tests/ctl/brimletctl_test.cpp, tests/sessions/tasks_test.cpp.

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
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
        if (!isWanted_) {
            return;
        }
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

    const std::size_t total_;
    const bool isWanted_;
    bool isShown_ = false;
};

/// Reads a list of tasks on several threads.
class Reading {
public:
    Reading(const std::vector<ORVTask>& tasks, const std::string& codexHome)
        : tasks_(tasks), codexHome_(codexHome), results_(tasks.size()) {}

    std::vector<ReadTask> run() {
        const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
        std::vector<std::thread> threads;
        try {
            while (threads.size() < std::min(processors, tasks_.size())) {
                threads.emplace_back([this] { readTasks(); });
            }
        } catch (const std::system_error&) {
            // Fewer threads do it as well; without any, this one does.
        }
        if (threads.empty()) {
            readTasks();
        }
        showProgressUntilDone();
        for (std::thread& thread : threads) {
            thread.join();
        }
        return std::move(results_);
    }

private:
    void readTasks() {
        Sources sources(codexHome_);
        for (std::size_t i = next_++; i < tasks_.size(); i = next_++) {
            readTask(sources.session, tasks_[i], results_[i]);
            const std::lock_guard<std::mutex> lock(mutex_);
            if (++done_ == tasks_.size()) {
                changed_.notify_one();
            }
        }
    }

    static void readTask(ORVCodexSessionSource& source, const ORVTask& task, ReadTask& result) {
        try {
            source.readTitlesOnce();
            result.snapshot = source.snapshotForTask(task, &result.error);
            result.folder = source.workingFolderForTask(task);
            source.forgetFiles();
        } catch (const std::bad_alloc&) {
            result.snapshot.reset();
            result.error = platform::posixError(ENOMEM);
        }
    }

    void showProgressUntilDone() {
        Progress progress(tasks_.size());
        constexpr std::chrono::milliseconds kPatience(500);
        constexpr std::chrono::milliseconds kStep(100);
        const auto isDone = [this] { return done_ == tasks_.size(); };
        std::unique_lock<std::mutex> lock(mutex_);
        for (auto wait = kPatience; !changed_.wait_for(lock, wait, isDone); wait = kStep) {
            progress.show(done_);
        }
    }

    const std::vector<ORVTask>& tasks_;
    const std::string& codexHome_;
    std::vector<ReadTask> results_;  ///< Each is written by one thread.
    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t done_ = 0;  ///< Guarded by mutex_.
};

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

int showTasks(Sources& sources, const Arguments& arguments, const std::string& codexHome) {
    auto tasks = sources.session.tasksWithError(nullptr);
    int status = kAnswered;
    if (!tasks) {
        complain(reasonForNoSessions(sources));
        status = kNothingToShow;
        tasks.emplace();
    }
    leaveOut(*tasks, arguments, sources.clock.now());
    std::vector<ReadTask> read = Reading(*tasks, codexHome).run();
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
