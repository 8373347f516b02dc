#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/ORVAppDelegate.h"
#include "shells/terminal/ORVMenuPage.h"

/// All tasks on a whole terminal, with the history of the selected one below them; its menu takes
/// the whole screen. Used on the UI thread only.
class ORVTopPage final : public ORVTerminalPage {
public:
    /// The delegate must outlive the page, and must have been asked for a list.
    explicit ORVTopPage(ORVAppDelegate& delegate);

    std::vector<terminal::Row> rows(const terminal::Screen& screen) override;
    void pressed(int key) override;

private:
    const std::vector<ORVTaskView>& tasks() const;
    void keepSelection();
    void select(std::size_t place);
    void moveSelection(std::ptrdiff_t step);
    void toggleHelpers();
    std::vector<terminal::Row> listOfKeys(const terminal::Screen& screen) const;
    std::vector<terminal::Row> emptyRows(const terminal::Screen& screen) const;
    std::vector<terminal::Row> tableRows(std::size_t most, const terminal::Screen& screen);
    std::vector<terminal::Row> historyRows(int room, const terminal::Screen& screen) const;

    ORVAppDelegate& delegate_;
    ORVMenuPage menu_;
    bool menuIsOpen_ = false;
    bool showsKeys_ = false;
    std::string selectedID_;     ///< The selection stays on its task when the order changes.
    std::size_t selected_ = 0;   ///< Its place in the list.
    std::size_t first_ = 0;      ///< The place of the task in the table's first row.
    std::size_t tableSize_ = 1;  ///< How many tasks had room when it was drawn last.
};
