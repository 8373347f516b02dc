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

    /// None when nothing is stored under the key; a stored value that is no number reads as the
    /// digits that it begins with, else as 0.
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

/// The settings of this user. `cannotStore` is called once at most, by the first setInteger that
/// fails.
std::unique_ptr<ORVUserDefaults> standardUserDefaults(ORVStoringFailureHandler cannotStore);

/// Where the settings are stored, for a person: a path, or the name of a domain.
std::string placeOfUserDefaults();

/// The folders that storing a setting may write in; where the settings' own does not exist yet, the
/// one that it will be made in. Empty where the system keeps settings elsewhere, or where storing
/// one is bound to fail.
std::vector<std::string> foldersOfUserDefaults();

}  // namespace platform
