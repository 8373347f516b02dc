#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The user's settings, which are kept between runs. Used on the UI thread only.
class ORVUserDefaults {
public:
    virtual ~ORVUserDefaults() = default;

    /// Returns the number stored under the key, and none when nothing is. A stored text counts as
    /// the number that it begins with, else as 0.
    virtual std::optional<std::int64_t> integerForKey(std::string_view key) = 0;

    virtual void setInteger(std::int64_t value, std::string_view key) = 0;
};

/// A setting that could not be stored.
struct ORVStoringFailure {
    std::string path;    ///< The file that would hold it.
    std::string reason;  ///< For a person, in English: "Permission denied".
};

namespace platform {

using ORVStoringFailureHandler = std::function<void(const ORVStoringFailure&)>;

/// Returns the settings of this user. `cannotStore` is called at most once, by the first setInteger
/// that fails.
std::unique_ptr<ORVUserDefaults> standardUserDefaults(ORVStoringFailureHandler cannotStore);

/// Returns where the settings are stored, for a person to read: a path, or the name of a domain.
std::string placeOfUserDefaults();

/// Makes the folder in which storing a number under the key writes, unless it exists, and returns
/// it. Empty where the system stores settings elsewhere, and where storing would be refused.
std::vector<std::string> makeFoldersOfUserDefaults(std::string_view key);

}  // namespace platform
