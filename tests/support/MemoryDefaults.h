#pragma once

#include "platform/user_defaults.h"

/// Settings in memory. They hold the language only.
class MemoryDefaults final : public ORVUserDefaults {
public:
    std::optional<std::int64_t> stored;
    std::optional<std::int64_t> integerForKey(std::string_view key) override {
        return key == "BrimletLanguageMode" ? stored : std::nullopt;
    }
    void setInteger(std::int64_t value, std::string_view) override { stored = value; }
};
