#pragma once

#include <memory>

#include "app/ORVAppDelegate.h"
#include "shells/terminal/ORVTerminalSurface.h"
#include "shells/terminal/menu_rows.h"

/// The status item and its open menu on a whole terminal. Used on the UI thread only.
class ORVMenuPage final : public ORVTerminalPage {
public:
    /// The delegate must outlive the page.
    explicit ORVMenuPage(ORVAppDelegate& delegate) : delegate_(delegate) {}

    /// Makes Escape and "b" call `leave` where they would do nothing else.
    void setLeave(std::function<void()> leave);

    std::vector<terminal::Row> rows(const terminal::Screen& screen) override;
    void pressed(int key) override;

private:
    void goBack();
    void moveSelection(int step);
    void chooseSelected();
    void setSubmenuOpen(bool isOpen);
    void chooseLanguage(int number);
    const ORVMenuItem* languageItem() const;

    ORVAppDelegate& delegate_;
    std::function<void()> leave_;
    terminal::MenuView view_;
    std::shared_ptr<const ORVHistory> shownHistory_;  ///< Copied into the view.
};
