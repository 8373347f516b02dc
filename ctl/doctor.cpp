// Looks at every place that the program reads, and distinguishes items that are missing from items
// that may not be read. Tests: tests/ctl/brimletctl_test.cpp.

#include <algorithm>
#include <cerrno>
#include <new>

#include "app/figures.h"
#include "app/version.h"
#include "ctl/commands.h"
#include "ctl/output.h"
#include "l10n/ORVLocalizer.h"
#include "platform/program.h"
#include "platform/user_defaults.h"
#include "shells/lines/answers.h"
#include "text/bytes.h"
#include "text/json.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// One thing that was looked at.
struct Check {
    std::string name;   ///< For scripts.
    std::string label;  ///< For people.
    std::optional<std::string> place;
    std::string state;
    std::string text;
};

constexpr const char* kFound = "found";
constexpr const char* kEmpty = "empty";
constexpr const char* kMissing = "missing";

/// Returns "missing" or "forbidden", or "broken" for any other error.
std::string stateFor(const ORVErrorSlot& failure) {
    if (!failure) {
        return kFound;
    }
    return failure->code == ENOENT                             ? kMissing
           : failure->code == EACCES || failure->code == EPERM ? "forbidden"
                                                               : "broken";
}

/// Returns "missing", or why something cannot be read; "" when it can.
std::string trouble(const ORVErrorSlot& failure) {
    if (!failure) {
        return "";
    }
    return failure->code == ENOENT ? "missing" : "cannot be read: " + failure->description;
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string roomText(std::uint64_t bytes) {
    static constexpr const char* kUnits[] = {"bytes", "KB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    std::uint64_t number = bytes;
    for (; number >= 10'000 && unit + 1 < std::size(kUnits); ++unit) {
        number /= 1'000;
    }
    return std::to_string(number) + " " + kUnits[unit];
}

class Doctor {
public:
    Doctor(Invocation& invocation, const ORVConfinement& confinement)
        : invocation_(invocation),
          viewer_(invocation.viewer),
          files_(*invocation.files),
          confinement_(confinement) {}

    int run() {
        lookAtProgram();
        lookAtCodexHome();
        lookAtSessions();
        lookAtTitles();
        lookAtUnreadSessions();
        lookAtLogs();
        lookAtFocus();
        lookAtLimits();
        lookAtLanguage();
        lookAtConfinement();
        lookAtMenuBar();
        const std::string conclusion = conclude();
        const int status = shown_ ? kAnswered : kNothingToShow;
        return finish(invocation_.arguments.format == Format::json ? asJSON() : asText(conclusion),
                      status);
    }

private:
    struct Walked {
        std::size_t count = 0;
        std::optional<ORVWalkedFile> newest;
        ORVErrorSlot failure;   ///< The error of the folder itself, or of the first one below it.
        bool isFolder = false;  ///< Whether the folder itself could be read.
    };

    void tell(Check check) { checks_.push_back(std::move(check)); }

    Walked walk(const std::string& folder, const ORVFiles::NameTest& wanted) {
        Walked walked;
        walked.isFolder = files_.walk(
            folder, wanted,
            [&](ORVWalkedFile&& file) {
                ++walked.count;
                if (!walked.newest || file.modifiedAt > walked.newest->modifiedAt) {
                    walked.newest = std::move(file);
                }
            },
            [&](ORVError&& failure) { storeErrorIfEmpty(&walked.failure, std::move(failure)); });
        return walked;
    }

    std::string ageOf(ORVFileDate date) const {
        return app::ageText(app::age(date, invocation_.clock.now()));
    }

    static std::string stateOf(const Walked& walked) {
        return walked.isFolder ? walked.count > 0 ? kFound : kEmpty : stateFor(walked.failure);
    }

    std::string described(const Walked& walked, const std::string& noun) const {
        if (!walked.isFolder) {
            return trouble(walked.failure);
        }
        return counted(walked.count, noun) +
               (walked.newest ? ", the newest " + ageOf(walked.newest->modifiedAt) + " old" : "");
    }

    void lookAtProgram() {
        const std::string path = platform::programPath();
        tell({"program", "Program", path.empty() ? std::nullopt : std::optional(path), kFound,
              "version " BRIMLET_VERSION});
    }

    void lookAtCodexHome() {
        const CodexHome& home = invocation_.home;
        ORVErrorSlot failure;
        (void)files_.openFolder(home.path, ORVFiles::Links::followed, &failure);
        tell({"codexHome", "Codex home", home.path, stateFor(failure),
              home.origin + (failure ? "; " + trouble(failure) : "")});
    }

    void lookAtSessions() {
        const std::string folder = viewer_.sessions().sessionsFolder();
        sessions_ =
            walk(folder, [](std::string_view name) { return text::hasExtension(name, "jsonl"); });
        std::string text = described(sessions_, "session file");
        const auto unreadable = unreadableSessions(invocation_);
        text += largestTasks();
        if (sessions_.isFolder && !unreadable.empty()) {
            text += "; " + unreadableText(unreadable);
        }
        tell({"sessions", "Sessions", folder, stateOf(sessions_), text});
    }

    /// Returns how much room the session files take, and the tasks that take most of it.
    std::string largestTasks() {
        constexpr std::size_t kNamed = 3;
        std::uint64_t all = 0;
        std::vector<std::pair<std::uint64_t, std::string>> tasks;
        for (const ORVTask& task : viewer_.tasks().matching("")) {
            std::uint64_t bytes = 0;
            for (const ORVWalkedFile* file : task.files) {
                bytes += file->size;
            }
            all += bytes;
            tasks.emplace_back(bytes, viewer_.tasks().shortIdentifier(task));
        }
        if (tasks.empty()) {
            return "";
        }
        std::stable_sort(tasks.begin(), tasks.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        tasks.resize(std::min(tasks.size(), kNamed));
        std::string text = ", " + roomText(all) + "; the largest: ";
        for (const auto& [bytes, name] : tasks) {
            text += (text.ends_with(": ") ? "" : ", ") + name + " " + roomText(bytes);
        }
        return text;
    }

    void lookAtTitles() {
        const auto titles = viewer_.sessions().threadTitles();
        const std::string path = viewer_.sessions().titleIndexPath();
        ORVErrorSlot failure;
        (void)files_.openForReading(path, &failure);  // Without an index there are just no titles.
        if (!failure) {
            failure = viewer_.sessions().titleIndexError();
        }
        tell({"titles", "Titles", path, !failure && titles.empty() ? kEmpty : stateFor(failure),
              failure ? trouble(failure) : counted(titles.size(), "title")});
    }

    void lookAtUnreadSessions() {
        const std::string archive = invocation_.home.path + "/archived_sessions";
        const Walked compressed =
            walk(viewer_.sessions().sessionsFolder(), [](std::string_view name) {
                return text::hasExtension(name, "zst") || text::hasExtension(name, "gz") ||
                       text::hasExtension(name, "zip");
            });
        const Walked archived = walk(archive, [](std::string_view) { return true; });
        const bool isHidden = archived.failure && archived.failure->code != ENOENT;
        tell({"notRead", "Not read", archive,
              compressed.count + archived.count > 0 ? kFound
              : isHidden                            ? stateFor(archived.failure)
                                                    : kEmpty,
              counted(compressed.count, "compressed session file") + ", " +
                  std::to_string(archived.count) + " archived" +
                  (isHidden ? "; " + trouble(archived.failure) : "")});
    }

    void lookAtLogs() {
        const std::string folder = viewer_.focus().logsRoot();
        const Walked logs =
            walk(folder, [](std::string_view name) { return text::hasExtension(name, "log"); });
        tell({"logs", "Desktop logs", folder, stateOf(logs), described(logs, "log")});
    }

    /// Returns the view of a task. Where memory ran out, nothing true could be told.
    ORVTaskView view(const ORVShownTask& task) {
        ORVTaskView found = viewer_.view(task);
        if (found.error && found.error->code == ENOMEM) {
            throw std::bad_alloc();
        }
        return found;
    }

    void lookAtFocus() {
        inView_ = view({});
        const ORVCodexFocusState& focusState = *inView_.focusState;
        tell({"inView", "In view", std::nullopt,
              focusState.status() == ORVCodexFocusStatusTaskInView ? kFound : kEmpty,
              lines::focusText(focusState)});
        const auto& version = focusState.codexVersion();
        tell({"application", "Application", viewer_.focus().infoPlistPath(),
              version ? kFound : kMissing,
              version ? "version " + *version : "no version was found there"});
    }

    void lookAtLimits() {
        const auto limits = viewer_.accountLimits();
        tell({"limits", "Rate limits", std::nullopt, limits ? kFound : kMissing,
              limits ? app::rateLimitsText(limits->rateLimits, invocation_.clock.now()) +
                           ", told " + ageOf(limits->date) + " ago"
                     : "no session file tells of them"});
    }

    void lookAtLanguage() {
        const auto defaults = platform::standardUserDefaults([](const ORVStoringFailure&) {});
        const ORVLocalizer localizer(*defaults);
        const bool isChosen = localizer.languageMode() != ORVLanguageModeSystem;
        tell({"language", "Language", platform::placeOfUserDefaults(), isChosen ? kFound : kEmpty,
              localizer.languageName() + (isChosen ? ", as chosen" : ", the system's")});
    }

    void lookAtConfinement() {
        const bool isWhole = confinement_.filtersCalls && confinement_.limitsFiles;
        tell({"confinement", "Confinement", std::nullopt, isWhole ? kFound : kMissing,
              std::string(confinement_.filtersCalls ? "the kernel allows no network and no programs"
                                                    : "the kernel does not filter system calls") +
                  (confinement_.limitsFiles
                       ? ", no writing of files, and no reading but of these places"
                       : "; it does not limit files to places")});
    }

    void lookAtMenuBar() {
        if (const auto menuBar = platform::menuBarProgram(BRIMLET_VERSION)) {
            tell({"menuBar", "Menu bar", menuBar->place, menuBar->isRunning ? kFound : kMissing,
                  menuBar->text});
        }
    }

    /// Finds out what `watch` would show, and returns it in a sentence.
    std::string conclude() {
        if (inView_.snapshot) {
            shown_ = inView_.snapshot->threadID();
            return "brimletctl watch shows: " + textOf(inView_);
        }
        const ORVTaskView latest = view({ORVShownTask::Choice::latest, ""});
        if (latest.snapshot) {
            shown_ = latest.snapshot->threadID();
            return "brimletctl watch shows no task, since none is in view in the desktop "
                   "application; brimletctl watch --latest shows: " +
                   textOf(latest);
        }
        return "brimletctl watch shows no task: " + reasonForNoTask(latest.error);
    }

    static std::string textOf(const ORVTaskView& view) {
        return app::statusTitle(*view.snapshot).text() + "  " + view.snapshot->title();
    }

    std::string reasonForNoTask(const ORVErrorSlot& failure) {
        const std::string orAnotherHome = "or name the agent's home with --codex-home.";
        if (sessions_.newest) {
            return "the newest task " + trouble(failure) + "; make its session files readable, " +
                   orAnotherHome;
        }
        if (sessions_.failure && sessions_.failure->code != ENOENT) {
            return "the session files " + trouble(sessions_.failure) + "; make them readable, " +
                   orAnotherHome;
        }
        return "there is no session file; run the agent once, " + orAnotherHome;
    }

    std::string asText(const std::string& conclusion) const {
        constexpr std::size_t kColumns = 15;
        std::string report;
        for (const Check& check : checks_) {
            std::string label = check.label;
            label.resize(std::max(label.size(), kColumns), ' ');
            report += label +
                      text::forTerminal((check.place ? *check.place + ": " : "") + check.text) +
                      '\n';
        }
        return report + '\n' + text::forTerminal(conclusion) + '\n';
    }

    std::string asJSON() const {
        const std::string checks = text::arrayJSON(checks_, [](const Check& check) {
            return text::objectJSON({{"name", text::quotedJSON(check.name)},
                                     {"place", text::quotedJSONOrNull(check.place)},
                                     {"state", text::quotedJSON(check.state)},
                                     {"text", text::quotedJSON(check.text)}});
        });
        return text::objectJSON({{"checks", checks}, {"task", text::quotedJSONOrNull(shown_)}}) +
               '\n';
    }

    Invocation& invocation_;
    ORVTaskViewer& viewer_;
    ORVFiles& files_;
    const ORVConfinement& confinement_;
    std::vector<Check> checks_;
    Walked sessions_;
    ORVTaskView inView_;
    std::optional<std::string> shown_;  ///< The task that `watch` or `watch --latest` shows.
};

}  // namespace

int doctor(Invocation& invocation, const ORVConfinement& confinement) {
    return Doctor(invocation, confinement).run();
}

}  // namespace ctl
