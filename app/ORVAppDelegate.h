#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/ORVAppHost.h"
#include "app/ORVMenu.h"
#include "app/refresh_step.h"
#include "l10n/ORVLocalizer.h"
#include "sessions/ORVCodexSessionSource.h"

/// The application: owns everything for the whole run, refreshes every two seconds and on demand,
/// and decides what the status item and its menu show.
///
/// UI thread only, but for the two sources, which the refresh queue alone touches once they are
/// made. Closures under way keep it alive.
class ORVAppDelegate final : public std::enable_shared_from_this<ORVAppDelegate> {
public:
    /// The host must outlive the delegate.
    explicit ORVAppDelegate(ORVAppHost& host) : host_(host) {}

    // Refresh cycle (refresh_cycle.cpp)

    /// Builds the whole application and begins the first refresh. Called once.
    void applicationDidFinishLaunching();

    /// Shows English, whatever language is chosen, on a surface that can show no other characters
    /// than ASCII. Called before the launch.
    void showOnlyEnglish() { showsOnlyEnglish_ = true; }

    /// The one entry point of the cycle. At most one refresh runs; a request that comes meanwhile
    /// begins none. The sender is the refresh item when the user asked, else null.
    void refresh(const ORVMenuItem* sender);

    // Menu (menu.cpp)

    /// Does what a click on the item does: nothing where it is disabled or has no action.
    void chooseItem(ORVMenuItem& item);

    /// The same for the item with this name, or with this key equivalent. False when there is none.
    bool chooseItemNamed(std::string_view field);
    bool performKeyEquivalent(std::string_view key);

    /// Stores the language whose item was chosen and shows everything in it at once.
    void changeLanguage(const ORVMenuItem& sender);

    /// Looks every text up again and renders the last results anew.
    void applyLocalization();

    // Rendering (rendering.cpp)

    void renderSnapshot(const ORVSessionSnapshot& snapshot);

    /// What stands there while there is no snapshot.
    void renderFocusState(const ORVCodexFocusState& focusState);

    /// "999", "1k", "12.3k": thousands without a decimal where the next is less than 0.05 away.
    static std::string formattedTokenCount(std::int64_t count);

    /// One line for a status bar: the menu bar's title, two spaces, and the task's title or,
    /// without a task, the focus line. The title alone while feedback is on display.
    std::string statusLine() const;

    /// What a screen reader says of the status item, whose title is made for the eye: the program's
    /// name, then for a task the lines about context and compactions, else the title and the focus
    /// line, or the feedback on display.
    std::string spokenStatus() const;

    // Refresh feedback (feedback.cpp)

    /// Puts feedback on display, without an end.
    void showManualRefreshFeedbackForKey(const std::string& key);

    /// Puts feedback on display and ends it after 1.2 seconds, unless newer feedback took its
    /// place.
    void finishManualRefreshFeedbackWithKey(const std::string& key);

    /// Draws the feedback on display, if any, over what was just rendered.
    void applyManualRefreshFeedbackIfNeeded();

    const ORVStatusItem& statusItem() const { return statusItem_; }

    /// "zh_CN" or "en_US": the language of what is shown. From the launch on.
    std::string locale() const { return localizer_->locale(); }

private:
    // Refresh cycle (refresh_cycle.cpp)
    void finishRefresh(ORVRefreshResults&& results);

    // Menu (menu.cpp)
    std::unique_ptr<ORVMenu> buildMenu();
    static ORVMenuItem* languageMenuItemWithMode(ORVMenu& menu, const std::string& field,
                                                 ORVLanguageMode mode);
    ORVMenuItem* findItem(std::string_view field) const;
    void setTitleAndImage(ORVMenuItem& item, std::string title, const char* imageName);

    // Rendering (rendering.cpp)
    void renderLastResults();
    void renderLoading();

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
    ORVMenuItem* refreshItem_ = nullptr;  ///< Also tells a manual refresh, by its identity.
    ORVMenuItem* quitItem_ = nullptr;
    ORVMenuItem* languageItem_ = nullptr;
    ORVMenuItem* systemLanguageItem_ = nullptr;
    ORVMenuItem* englishLanguageItem_ = nullptr;
    ORVMenuItem* chineseLanguageItem_ = nullptr;

    std::unique_ptr<ORVCodexSessionSource> source_;
    std::unique_ptr<ORVCodexFocusLogSource> focusSource_;
    std::unique_ptr<ORVLocalizer> localizer_;

    // The results of the last refresh, for rendering them again.
    std::optional<ORVSessionSnapshot> lastSnapshot_;
    std::optional<ORVCodexFocusState> lastFocusState_;
    ORVErrorSlot lastError_;

    std::unique_ptr<ORVSerialQueue> refreshQueue_;
    std::unique_ptr<ORVRepeatingTimer> refreshTimer_;

    bool showsOnlyEnglish_ = false;
    bool refreshing_ = false;            ///< From dispatch until the results are applied.
    bool manualRefreshPending_ = false;  ///< The user waits for the results of a refresh.
    bool manualRefreshFeedbackActive_ = false;
    std::optional<std::string> manualRefreshFeedbackKey_;
    std::uint64_t manualRefreshFeedbackGeneration_ = 0;  ///< Tells a reset that is out of date.
};
