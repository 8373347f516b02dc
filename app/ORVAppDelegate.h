#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/ORVAppHost.h"
#include "app/ORVMenu.h"
#include "app/ORVTaskViewer.h"
#include "app/figures.h"
#include "l10n/ORVLocalizer.h"

/// What one refresh found out.
struct ORVRefreshResults {
    ORVShownTask task;  ///< The task that was asked for.
    ORVTaskView view;
    std::shared_ptr<const ORVTaskListView> list = {};  ///< Null when none was asked for.
};

/// The application. It owns everything for the whole run, refreshes every two seconds and on
/// demand, and decides what the status item and its menu show.
///
/// It is used on the UI thread only, except for its viewer with the two sources, which belongs to
/// the refresh queue once it is made. Closures that have not run yet keep it alive.
class ORVAppDelegate final : public std::enable_shared_from_this<ORVAppDelegate> {
public:
    /// The host must outlive the delegate.
    explicit ORVAppDelegate(ORVAppHost& host) : host_(host) {}

    // Refresh cycle (refresh_cycle.cpp)

    /// Builds the whole application and begins the first refresh. Called once.
    void applicationDidFinishLaunching();

    /// Shows English whatever language is chosen, for a surface that can only show ASCII. Must be
    /// called before the launch.
    void showOnlyEnglish() { showsOnlyEnglish_ = true; }

    /// Begins a refresh unless one is under way, which then serves this request as well. The sender
    /// is the refresh item when the user asked for it, else null.
    void refresh(const ORVMenuItem* sender);

    /// Shows another task from now on, and what was asked for of it at the launch. Nothing of the
    /// task before is shown in the meantime.
    void showTask(ORVShownTask task);

    /// Asks for another list from the next refresh on, which begins at once.
    void showList(ORVListRequest list);
    const ORVListRequest& listRequest() const { return *request_.list; }

    // Menu (menu.cpp)

    /// Does what a click on the item does: nothing when the item is disabled or has no action.
    void chooseItem(ORVMenuItem& item);

    /// Do the same for the item with this name, or with this key equivalent; they return false when
    /// there is no such item.
    bool chooseItemNamed(std::string_view field);
    bool performKeyEquivalent(std::string_view key);

    /// Stores the language whose item was chosen and shows everything in it at once.
    void changeLanguage(const ORVMenuItem& sender);

    /// Looks every text up again and renders the last results anew.
    void applyLocalization();

    // Rendering (rendering.cpp)

    void renderSnapshot(const ORVSessionSnapshot& snapshot);

    /// Shows why there is no snapshot.
    void renderFocusState(const ORVCodexFocusState& focusState);

    static std::string formattedTokenCount(std::int64_t count) { return app::tokenCount(count); }

    /// Returns one line for a status bar: the menu bar's title, two spaces, and the task's title
    /// or, without a task, the focus line. While feedback is on display it is the title alone.
    std::string statusLine() const;

    /// Returns the visible menu lines about the task, from top to bottom.
    std::vector<std::string> informationLines() const;

    /// Returns what a screen reader says in place of the title, which is made for the eye: the
    /// program's name, then for a task the lines about context and compactions, else the title and
    /// the focus line, or the feedback on display.
    std::string spokenStatus() const;

    // Refresh feedback (refresh_cycle.cpp)

    /// Displays the feedback text with this key until further notice.
    void showManualRefreshFeedbackForKey(const std::string& key);

    /// Displays the feedback text with this key for 1.2 seconds, or until newer feedback takes its
    /// place.
    void finishManualRefreshFeedbackWithKey(const std::string& key);

    /// Draws the feedback on display, if there is any, over what was just rendered.
    void applyManualRefreshFeedbackIfNeeded();

    /// Whether feedback is on display.
    bool manualRefreshFeedbackActive() const { return manualRefreshFeedbackKey_.has_value(); }

    const ORVStatusItem& statusItem() const { return statusItem_; }

    // What the last refresh found out about the task that is shown. There is no view before the
    // first refresh ends.
    const std::optional<ORVTaskView>& lastView() const { return lastView_; }
    const std::optional<ORVSessionSnapshot>& lastSnapshot() const;
    std::shared_ptr<const ORVCodexFocusState> lastFocusState() const;  ///< No surface asks for it.
    const ORVErrorSlot& lastError() const;
    std::shared_ptr<const ORVHistory> lastHistory() const;

    /// Returns the list of tasks that was asked for; null before it is known.
    const std::shared_ptr<const ORVTaskListView>& lastList() const { return lastList_; }

    /// Returns what to do where no task is shown: a sentence that names a call of brimletctl; ""
    /// while one is shown.
    std::string advice() const;

    /// Returns, in words, why no task is shown; "" while one is, and before the first refresh ends.
    std::string focusLine() const { return focusItem_->hidden ? "" : focusItem_->title; }

    /// Return the words of the language that is shown, and its way to write the time. Must be
    /// called after the launch.
    const ORVWords& words() const { return localizer_->words(); }
    const ORVTimeFormat& timeFormat() const { return localizer_->timeFormat(); }

private:
    // Refresh cycle (refresh_cycle.cpp)
    void finishRefresh(ORVRefreshResults&& results);
    void beginRefresh();

    // Menu (menu.cpp)
    std::unique_ptr<ORVMenu> buildMenu();
    static ORVMenuItem* languageMenuItemWithMode(ORVMenu& menu, const std::string& field,
                                                 ORVLanguageMode mode);
    ORVMenuItem* findItem(std::string_view field) const;
    void setTitleAndImage(ORVMenuItem& item, std::string title, const char* imageName);

    // Rendering (rendering.cpp)
    void renderLastResults();
    void renderLoading();
    void renderAbsence(ORVCodexFocusStatus status);
    void renderPlaceholders();

    std::string text(std::string_view key) const { return localizer_->stringForKey(key); }

    ORVAppHost& host_;

    ORVStatusItem statusItem_;

    // The menu's items, owned by statusItem_.
    ORVMenuItem* titleItem_ = nullptr;
    ORVMenuItem* focusItem_ = nullptr;
    ORVMenuItem* contextItem_ = nullptr;
    ORVMenuItem* compactionItem_ = nullptr;
    ORVMenuItem* updatedItem_ = nullptr;
    ORVMenuItem* sourceItem_ = nullptr;
    ORVMenuItem* privacyItem_ = nullptr;
    ORVMenuItem* refreshItem_ = nullptr;  ///< The sender of every manual refresh.
    ORVMenuItem* quitItem_ = nullptr;
    ORVMenuItem* languageItem_ = nullptr;
    ORVMenuItem* systemLanguageItem_ = nullptr;

    std::unique_ptr<ORVTaskViewer> viewer_;
    /// For the list, if there is one: its many tasks are kept without their histories.
    std::unique_ptr<ORVTaskViewer> listViewer_;
    std::unique_ptr<ORVLocalizer> localizer_;

    // What is asked for, and the results of the last refresh, for rendering them again.
    ORVRefreshRequest request_;
    std::optional<ORVTaskView> lastView_;
    std::shared_ptr<const ORVTaskListView> lastList_;

    std::unique_ptr<ORVSerialQueue> refreshQueue_;

    bool showsOnlyEnglish_ = false;
    bool refreshing_ = false;            ///< From dispatch until the results are applied.
    bool manualRefreshPending_ = false;  ///< The user waits for the results of a refresh.
    bool refreshAgain_ = false;  ///< What is asked for changed while a refresh was under way.
    std::optional<std::string> manualRefreshFeedbackKey_;  ///< None while none is on display.
    std::uint64_t manualRefreshFeedbackGeneration_ = 0;    ///< Counts what was put on display.
};
