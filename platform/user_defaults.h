#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The user's settings, kept between runs. UI thread only.
class ORVUserDefaults {
public:
    virtual ~ORVUserDefaults() = default;

    /// None when nothing is stored under the key; what is stored but is no number reads as the
    /// digits that it begins with, else as 0.
    virtual std::optional<std::int64_t> integerForKey(std::string_view key) = 0;

    virtual void setInteger(std::int64_t value, std::string_view key) = 0;
};

namespace platform {

/// The settings of this user. `cannotStore` hears the reason, once, when one cannot be kept.
std::unique_ptr<ORVUserDefaults> standardUserDefaults(
    std::function<void(const std::string& reason)> cannotStore);

/// The folders that storing a setting may write in; where the settings' own does not exist yet, the
/// one that it will be made in. Empty where the system keeps settings elsewhere.
std::vector<std::string> foldersOfUserDefaults();

}  // namespace platform
