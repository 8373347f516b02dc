// Builds the menu, fills in its texts, and carries out what a chosen item stands for.
// Tests: tests/app/app_delegate_test.cpp.

#include "app/ORVAppDelegate.h"

std::unique_ptr<ORVMenu> ORVAppDelegate::buildMenu() {
    auto menu = std::make_unique<ORVMenu>();
    titleItem_ = menu->add("titleItem");
    titleItem_->emphasis = ORVEmphasis::headline;
    focusItem_ = menu->add("focusItem");
    focusItem_->hidden = true;
    menu->addSeparator();
    contextItem_ = menu->add("contextItem");
    contextItem_->emphasis = ORVEmphasis::gauge;
    compactionItem_ = menu->add("compactionItem");
    updatedItem_ = menu->add("updatedItem");
    menu->addSeparator();
    sourceItem_ = menu->add("sourceItem");
    privacyItem_ = menu->add("privacyItem");
    sourceItem_->emphasis = privacyItem_->emphasis = ORVEmphasis::constant;
    menu->addSeparator();
    languageItem_ = menu->add("languageItem");
    languageItem_->submenu = std::make_unique<ORVMenu>();
    ORVMenu& languages = *languageItem_->submenu;
    systemLanguageItem_ =
        languageMenuItemWithMode(languages, "systemLanguageItem", ORVLanguageModeSystem);
    for (const ORVLanguage& language : l10n::languages()) {
        languageMenuItemWithMode(languages, std::string(language.menuItem), language.mode);
    }
    refreshItem_ = menu->add("refreshItem");
    refreshItem_->action = ORVMenuAction::refresh;
    refreshItem_->keyEquivalent = "r";
    quitItem_ = menu->add("quitItem");
    quitItem_->action = ORVMenuAction::terminate;
    quitItem_->keyEquivalent = "q";
    return menu;
}

ORVMenuItem* ORVAppDelegate::languageMenuItemWithMode(ORVMenu& menu, const std::string& field,
                                                      ORVLanguageMode mode) {
    ORVMenuItem* item = menu.add(field);
    item->action = ORVMenuAction::changeLanguage;
    item->tag = mode;
    return item;
}

void ORVAppDelegate::chooseItem(ORVMenuItem& item) {
    if (!item.enabled) {
        return;
    }
    switch (item.action) {
        case ORVMenuAction::none:
            break;
        case ORVMenuAction::refresh:
            refresh(&item);
            break;
        case ORVMenuAction::terminate:
            host_.terminate();
            break;
        case ORVMenuAction::changeLanguage:
            changeLanguage(item);
            break;
    }
}

ORVMenuItem* ORVAppDelegate::findItem(std::string_view field) const {
    for (const ORVMenu* menu : {statusItem_.menu.get(), languageItem_->submenu.get()}) {
        for (const auto& item : menu->items) {
            if (!item->isSeparator() && item->field == field) {
                return item.get();
            }
        }
    }
    return nullptr;
}

bool ORVAppDelegate::chooseItemNamed(std::string_view field) {
    ORVMenuItem* item = findItem(field);
    if (item) {
        chooseItem(*item);
    }
    return item != nullptr;
}

bool ORVAppDelegate::performKeyEquivalent(std::string_view key) {
    for (ORVMenuItem* item : {refreshItem_, quitItem_}) {
        if (item->keyEquivalent == key) {
            chooseItem(*item);
            return true;
        }
    }
    return false;
}

void ORVAppDelegate::changeLanguage(const ORVMenuItem& sender) {
    localizer_->setLanguageMode(sender.tag.value_or(-1));
    applyLocalization();
}

void ORVAppDelegate::setTitleAndImage(ORVMenuItem& item, std::string title, const char* imageName) {
    item.title = std::move(title);
    item.image = ORVMenuImage{imageName, item.title};
}

void ORVAppDelegate::applyLocalization() {
    sourceItem_->title = text("source_codex");
    privacyItem_->title = text("privacy");
    setTitleAndImage(*languageItem_, text("language"), "globe");
    systemLanguageItem_->title = text("language_system");
    for (const ORVLanguage& language : l10n::languages()) {
        findItem(language.menuItem)->title = text(language.nameKey);
    }
    setTitleAndImage(*refreshItem_, text("refresh"), "arrow.clockwise");
    quitItem_->title = text("quit");
    // The check mark shows the choice, which may be "the system's language".
    for (const auto& item : languageItem_->submenu->items) {
        item->state = item->tag == localizer_->languageMode();
    }
    renderLastResults();
    applyManualRefreshFeedbackIfNeeded();
}
