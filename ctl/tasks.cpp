// Shows a list of tasks. Tests: tests/ctl/brimletctl_test.cpp.

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "app/figures.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "shells/lines/answers.h"
#include "shells/terminal/table.h"
#include "text/bytes.h"

namespace ctl {
namespace {

constexpr std::string_view kClearLine = "\r\x1b[K";

void clearProgressAndDie(int signalNumber) {
    [[maybe_unused]] const ssize_t ignored =
        write(STDERR_FILENO, kClearLine.data(), kClearLine.size());
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
}

/// Tells a person at a terminal how much has been read, once that takes long. It has a thread,
/// since one large file may keep all others busy.
class Progress {
public:
    Progress() {
        try {
            if (isatty(STDERR_FILENO) && !terminalIsDumb()) {
                thread_ = std::thread([this] { run(); });
            }
        } catch (const std::system_error&) {
            // Nobody is told.
        }
    }
    ~Progress() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            isOver_ = true;
        }
        over_.notify_one();
        if (thread_.joinable()) {
            thread_.join();
        }
        if (isShown_) {
            write(kClearLine);
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Can be called on any thread.
    void show(std::size_t done, std::size_t total) {
        done_ = done;
        total_ = total;
    }

private:
    void run() {
        std::chrono::milliseconds wait(500);
        std::unique_lock<std::mutex> lock(mutex_);
        while (!over_.wait_for(lock, wait, [this] { return isOver_; })) {
            wait = std::chrono::milliseconds(100);
            if (total_ == 0) {
                continue;
            }
            if (!std::exchange(isShown_, true)) {
                signal(SIGINT, clearProgressAndDie);
                signal(SIGTERM, clearProgressAndDie);
            }
            // Not a string, which might find no memory, and end the program on this thread.
            std::array<char, 80> text{};
            std::snprintf(text.data(), text.size(), "\rReading tasks: %zu of %zu", done_.load(),
                          total_.load());
            write(text.data());
        }
    }

    static void write(std::string_view text) {
        [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, text.data(), text.size());
    }

    std::atomic<std::size_t> done_ = 0;
    std::atomic<std::size_t> total_ = 0;
    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;  ///< Guarded by mutex_.
    bool isShown_ = false;
    std::thread thread_;
};

std::string tableOf(const Invocation& invocation, const ORVTaskListView& list) {
    if (list.tasks.empty()) {
        return {};
    }
    const terminal::Screen screen = terminal::screenOfOutput();
    const terminal::TableLook look = {systemLanguage(screen.showsUnicode).words,
                                      invocation.clock.now()};
    return terminal::lines(terminal::table(list.tasks, 0, list.tasks.size(), look, screen),
                           isColoured(invocation.arguments.colours));
}

std::string textOf(const Invocation& invocation, const ORVTaskListView& list) {
    const Arguments& arguments = invocation.arguments;
    if (arguments.format == Format::json) {
        return json::tasksAnswer(list) + '\n';
    }
    if (arguments.format == Format::text && isatty(STDOUT_FILENO)) {
        return tableOf(invocation, list);
    }
    std::string text;
    for (const ORVTaskView& view : list.tasks) {
        text += arguments.ownTemplate ? filledTemplate(invocation, view)
                                      : lines::tabbedTask(view, arguments.list.showsHelpers);
    }
    return text;
}

/// Whether a task that was written at this date would be in the list, had it been read: by itself,
/// or because one that works for it is.
bool wouldBeListed(const std::string& threadID, const std::optional<ORVFileDate>& date,
                   const ORVListRequest& request, const ORVTaskListView& list,
                   ORVClock::TimePoint now) {
    if (!date || request.folder) {
        return false;
    }
    const std::string identifier = text::lowerCasedASCII(threadID);
    std::size_t heads = 0;
    ORVFileDate oldest;
    for (const ORVTaskView& view : list.tasks) {
        if (view.parentID && text::lowerCasedASCII(*view.parentID) == identifier) {
            return true;
        }
        if (!view.isHelper) {
            ++heads;
            oldest = view.changedAt;
        }
    }
    const bool isOld = request.since && app::age(*date, now) > *request.since;
    return !isOld && (request.limit == 0 || heads < request.limit || *date >= oldest);
}

/// Complains of every task that had to be left out, and returns whether there is one: a file of it
/// cannot be read, or the only file that it has.
bool nameTasksLeftOut(Invocation& invocation, const ORVListRequest& request,
                      const ORVTaskListView& list) {
    std::set<std::string> named;
    const auto name = [&](const std::string& task, const ORVErrorSlot& error) {
        if (named.insert(task).second) {
            complain("cannot read the task " + task + (error ? ": " + error->description : ""));
        }
    };
    for (const ORVTaskView& view : list.tasks) {
        if (!view.snapshot) {
            name(view.threadID, view.error);
        }
    }
    for (const ORVUnreadable& file : invocation.viewer.unreadable()) {
        const auto attributes = invocation.files->attributesOfItem(file.path, nullptr);
        const std::string task = ORVCodexSessionSource::threadIDFromSessionURL(file.path).value_or(
            std::string(text::lastPathComponent(file.path)));
        if (!file.isFolder && attributes &&
            wouldBeListed(task, attributes->modifiedAt, request, list, invocation.clock.now())) {
            name(task, file.error);
        }
    }
    return !named.empty();
}

}  // namespace

int showTasks(Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    ORVListRequest request = arguments.list;
    request.countsHelpers = arguments.format == Format::json ||
                            (arguments.format == Format::text && isatty(STDOUT_FILENO));
    ORVTaskListView list;
    int status = kAnswered;
    if (arguments.isHere) {
        request.folder = realFolder(*invocation.files, arguments.folder);
        if (!request.folder) {
            return arguments.format == Format::json
                       ? finish(json::tasksAnswer(list) + '\n', kNothingToShow)
                       : kNothingToShow;
        }
    }
    {
        Progress progress;
        list = invocation.viewer.listOnce(
            request, [&](std::size_t done, std::size_t total) { progress.show(done, total); });
    }
    if (!list.hasSessionsFolder) {
        complain(reasonForNoSessions(invocation) + "; try: brimletctl doctor");
        status = kNothingToShow;
    }
    const bool leavesOut = nameTasksLeftOut(invocation, request, list);
    if (leavesOut) {
        status = kNothingToShow;
    }
    std::erase_if(list.tasks, [](const ORVTaskView& view) { return !view.snapshot; });
    tellOfUnreadable(invocation, leavesOut);
    return finish(textOf(invocation, list), status);
}

}  // namespace ctl
