// Shows a list of tasks. Tests: tests/ctl/brimletctl_test.cpp.

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <set>
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

/// Tells a person at a terminal how many tasks have been read, once that takes long.
class Progress {
public:
    Progress() : isWanted_(isatty(STDERR_FILENO) != 0 && !terminalIsDumb()) {}
    ~Progress() {
        if (isShown_) {
            write(std::string(kClearLine));
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::size_t done, std::size_t total) {
        constexpr std::chrono::milliseconds kStep(100);
        const auto now = std::chrono::steady_clock::now();
        if (!isWanted_ || now < next_) {
            return;
        }
        if (!std::exchange(isShown_, true)) {
            signal(SIGINT, clearProgressAndDie);
            signal(SIGTERM, clearProgressAndDie);
        }
        next_ = now + kStep;
        write("\rReading tasks: " + std::to_string(done) + " of " + std::to_string(total));
    }

private:
    static void write(const std::string& text) {
        [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, text.data(), text.size());
    }

    static constexpr std::chrono::milliseconds kPatience{500};

    const bool isWanted_;
    bool isShown_ = false;
    std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + kPatience;
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

/// Whether a task that was written at this date would be in the list, had it been read.
bool wouldBeListed(const std::optional<ORVFileDate>& date, const ORVListRequest& request,
                   const ORVTaskListView& list, ORVClock::TimePoint now) {
    if (!date || request.folder || (request.since && app::age(*date, now) > *request.since)) {
        return false;
    }
    std::size_t heads = 0;
    ORVFileDate oldest;
    for (const ORVTaskView& view : list.tasks) {
        if (!view.isHelper) {
            ++heads;
            oldest = view.changedAt;
        }
    }
    return request.limit == 0 || heads < request.limit || *date >= oldest;
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
        if (!file.isFolder && attributes &&
            wouldBeListed(attributes->modifiedAt, request, list, invocation.clock.now())) {
            const auto task = ORVCodexSessionSource::threadIDFromSessionURL(file.path);
            name(task.value_or(std::string(text::lastPathComponent(file.path))), file.error);
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
