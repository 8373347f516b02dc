// Adds items to a menu. Tests: tests/app/app_delegate_test.cpp.

#include "app/ORVMenu.h"

ORVMenuItem* ORVMenu::add(const std::string& field) {
    auto item = std::make_unique<ORVMenuItem>();
    item->field = field;
    return items.emplace_back(std::move(item)).get();
}

void ORVMenu::addSeparator() {
    items.push_back(std::make_unique<ORVMenuItem>());
}
