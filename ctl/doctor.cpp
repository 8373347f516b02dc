// Looks at every place that the program reads, and distinguishes items that are missing from items
// that may not be read. Tests: tests/ctl/brimletctl_test.cpp.

#include "ctl/doctor.h"

#include <algorithm>
#include <cerrno>

#include "app/age.h"
#include "app/status_title.h"
#include "ctl/answers.h"
#include "l10n/ORVLocalizer.h"
#include "platform/user_defaults.h"
#include "text/paths.h"
#include "text/unicode.h"

namespace ctl {
namespace {

/// What a walk found below a folder.
struct Found {
    std::size_t count = 0;
    std::optional<ORVWalkedFile> newest;
    ORVErrorSlot failure;   ///< The error of the folder itself, or of the first one below it.
    bool isFolder = false;  ///< Whether the folder itself could be read.
};

class Examination {
public:
    Examination(Sources& sources, const CodexHome& home, const ORVConfinement& confinement)
        : sources_(sources), home_(home), confinement_(confinement) {}

    int run() {
        lookAtCodexHome();
        lookAtSessions();
        lookAtTitles();
        lookAtUnreadSessions();
        lookAtLogs();
        lookAtFocus();
        lookAtLanguage();
        lookAtConfinement();
        conclude();
        return finish(report_, canShow_ ? kAnswered : kNothingToShow);
    }

private:
    void tell(const std::string& what, const std::string& found) {
        constexpr std::size_t kColumns = 15;
        std::string label = what;
        label.resize(std::max(label.size(), kColumns), ' ');
        report_ += label + text::forTerminal(found) + '\n';
    }

    Found walk(const std::string& folder, const ORVFiles::NameTest& wanted) {
        Found found;
        found.isFolder = sources_.files->walk(
            folder, wanted,
            [&](ORVWalkedFile&& file) {
                ++found.count;
                if (!found.newest || file.modifiedAt > found.newest->modifiedAt) {
                    found.newest = std::move(file);
                }
            },
            [&](ORVError&& failure) { storeErrorIfEmpty(&found.failure, std::move(failure)); });
        return found;
    }

    /// Returns "missing", or why something cannot be read; "" when it can.
    static std::string trouble(const ORVErrorSlot& failure) {
        if (!failure) {
            return "";
        }
        return failure->code == ENOENT ? "missing" : "cannot be read: " + failure->description;
    }

    std::string described(const Found& found, const std::string& noun) {
        if (!found.isFolder) {
            return trouble(found.failure);
        }
        std::string text = std::to_string(found.count) + " " + noun + (found.count == 1 ? "" : "s");
        if (found.newest) {
            text += ", the newest " + app::ageText(found.newest->modifiedAt, sources_.clock.now()) +
                    " old";
        }
        return text + (found.failure ? "; a folder below it " + trouble(found.failure) : "");
    }

    void lookAtCodexHome() {
        const Found found = walk(home_.path, [](std::string_view) { return false; });
        const std::string state = found.isFolder ? "" : ": " + trouble(found.failure);
        tell("Codex home", home_.path + " (" + home_.origin + ")" + state);
    }

    void lookAtSessions() {
        sessions_ = walk(sources_.session.sessionsFolder(),
                         [](std::string_view name) { return text::hasExtension(name, "jsonl"); });
        tell("Sessions",
             sources_.session.sessionsFolder() + ": " + described(sessions_, "session file"));
    }

    void lookAtTitles() {
        const std::string path = sources_.session.titleIndexPath();
        const auto titles = sources_.session.threadTitles();
        ORVErrorSlot failure;
        if (titles.empty()) {
            (void)sources_.files->openForReading(path, &failure);
        }
        const std::string count = std::to_string(titles.size());
        tell("Titles", path + ": " +
                           (failure ? trouble(failure)
                                    : count + (titles.size() == 1 ? " title" : " titles")));
    }

    void lookAtUnreadSessions() {
        const Found compressed = walk(sources_.session.sessionsFolder(), [](std::string_view name) {
            return text::hasExtension(name, "zst") || text::hasExtension(name, "gz") ||
                   text::hasExtension(name, "zip");
        });
        const Found archived =
            walk(home_.path + "/archived_sessions", [](std::string_view) { return true; });
        tell("Not read", std::to_string(compressed.count) + " compressed session files, " +
                             std::to_string(archived.count) + " archived ones");
    }

    void lookAtLogs() {
        const std::string folder = sources_.focus.logsRoot();
        const Found found =
            walk(folder, [](std::string_view name) { return text::hasExtension(name, "log"); });
        tell("Desktop logs", folder + ": " + described(found, "log"));
    }

    void lookAtFocus() {
        const ORVCodexFocusState focusState = sources_.focus.currentFocusStateWithError(nullptr);
        tell("In view", focusText(focusState));
        tell("Application",
             sources_.focus.infoPlistPath() + ": " +
                 (focusState.codexVersion() ? "version " + *focusState.codexVersion()
                                            : std::string("no version was found there")));
        if (focusState.status() == ORVCodexFocusStatusTaskInView) {
            inView_ = sources_.session.snapshotForThreadID(*focusState.threadID(), nullptr);
        }
    }

    void lookAtLanguage() {
        const auto defaults = platform::standardUserDefaults([](const ORVStoringFailure&) {});
        const ORVLocalizer localizer(*defaults);
        const bool isChosen = localizer.languageMode() != ORVLanguageModeSystem;
        tell("Language", localizer.languageName() +
                             (isChosen ? ", as chosen; " : ", the system's; ") + "stored in " +
                             platform::placeOfUserDefaults());
    }

    void lookAtConfinement() {
        tell("Confinement",
             std::string(confinement_.filtersCalls ? "the kernel allows no network and no programs"
                                                   : "the kernel does not filter system calls") +
                 (confinement_.limitsWriting ? ", and no writing of files"
                                             : "; it does not limit writing to folders"));
    }

    void conclude() {
        ORVErrorSlot failure;
        const auto latest = sources_.session.latestSnapshotWithError(&failure);
        canShow_ = inView_ || latest;
        const auto shown = [](const ORVSessionSnapshot& snapshot) {
            return app::statusItemTitle(snapshot) + "  " + text::forTerminal(snapshot.title());
        };
        report_ += '\n';
        if (inView_) {
            report_ += "brimletctl watch shows: " + shown(*inView_) + '\n';
        } else if (latest) {
            report_ +=
                "brimletctl watch shows no task, since none is in view in the desktop "
                "application; brimletctl watch --latest shows: " +
                shown(*latest) + '\n';
        } else {
            report_ += "brimletctl watch shows no task: " + reasonForNoTask(failure) + '\n';
        }
    }

    std::string reasonForNoTask(const ORVErrorSlot& failure) {
        const std::string orAnotherHome = "or name the agent's home with --codex-home.";
        if (sessions_.newest) {
            return "the newest session file " + text::forTerminal(sessions_.newest->path) + ' ' +
                   trouble(failure) + "; make it readable, " + orAnotherHome;
        }
        if (sessions_.failure && sessions_.failure->code != ENOENT) {
            return "the session files " + trouble(sessions_.failure) + "; make them readable, " +
                   orAnotherHome;
        }
        return "there is no session file; run the agent once, " + orAnotherHome;
    }

    Sources& sources_;
    const CodexHome& home_;
    const ORVConfinement& confinement_;
    std::string report_;
    Found sessions_;
    std::optional<ORVSessionSnapshot> inView_;
    bool canShow_ = false;
};

}  // namespace

int examine(Sources& sources, const CodexHome& home, const ORVConfinement& confinement) {
    return Examination(sources, home, confinement).run();
}

}  // namespace ctl
