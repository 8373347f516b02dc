// Settings on Linux: one JSON object in "brimlet/defaults.json" of the user's configuration folder.
// A new file is written beside the old one and renamed over it, so that the object is stored whole
// or not at all.
//
// Something else may stand at that path: a link to a device, to another user's file when root runs
// with that user's home, or to a file of another program. Therefore only a regular file of this
// user is replaced that is empty or holds an object, behind a link only one that is empty or has
// the key; keys of others and the rights stay. Everything else is left alone and named. Tests:
// tests/platform/linux_test.cpp.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <utility>
#include <vector>

#include "platform/descriptors.h"
#include "platform/files.h"
#include "platform/program.h"
#include "platform/user_defaults.h"
#include "text/bytes.h"
#include "text/json.h"

namespace platform {
namespace {

constexpr std::size_t kLimitBytes = 64 * 1024;

std::string settingsPath() {
    const char* variable = std::getenv("XDG_CONFIG_HOME");
    const bool isUsable = variable && *variable == '/';  // The XDG rules ignore a relative path.
    return (isUsable ? variable : homeFolder() + "/.config") + "/brimlet/defaults.json";
}

std::string reasonOf(int errnoValue) {
    return posixError(errnoValue).description;
}

/// The settings as they are stored.
struct StoredSettings {
    std::vector<std::pair<std::string, std::string>> fields;  ///< Keys, and values as JSON.
    std::string path;  ///< The path of the file itself, links followed.
    mode_t mode = 0600;
    std::string refusal;  ///< Why the file must not be replaced; "" when it may.

    /// Returns the value under the key, the last of several; null when there is none.
    const std::string* find(std::string_view key) const {
        const auto found = std::find_if(fields.rbegin(), fields.rend(),
                                        [&](const auto& field) { return field.first == key; });
        return found == fields.rend() ? nullptr : &found->second;
    }
};

/// Returns "" when the open file may be replaced, else why not.
std::string refusalOf(const std::string& path, const struct stat& status,
                      const StoredSettings& settings, std::string_view key) {
    struct stat item;
    if (status.st_uid != geteuid() || lstat(path.c_str(), &item) != 0 ||
        item.st_uid != status.st_uid) {
        return "the file belongs to another user";
    }
    const bool isOurs = settings.fields.empty() || settings.find(key);
    return S_ISLNK(item.st_mode) && !isOurs ? "it is a link to a file of another program" : "";
}

StoredSettings storedSettings(const std::string& path, std::string_view key) {
    StoredSettings settings;
    settings.path = path;
    const auto refused = [&](std::string reason) {
        settings.refusal = std::move(reason);
        return settings;
    };
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status;
    if (file.number() < 0) {
        const int failure = errno;
        const bool isNothing = failure == ENOENT && lstat(path.c_str(), &status) != 0;
        return isNothing ? settings
                         : refused(failure == ENOENT ? "a link that leads nowhere stands there"
                                                     : reasonOf(failure));
    }
    if (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return refused("it is not a regular file");
    }
    if (status.st_size > static_cast<off_t>(kLimitBytes)) {
        return refused("the file is larger than 64 KB");
    }
    std::string content(kLimitBytes, '\0');
    const ssize_t size =
        uninterrupted([&] { return read(file.number(), content.data(), content.size()); });
    if (size < 0) {
        return refused(reasonOf(errno));
    }
    content.resize(static_cast<std::size_t>(size));
    auto fields = text::fieldsOfJSON(content.empty() ? "{}" : content);
    if (!fields) {
        return refused("the file is not a JSON object");
    }
    settings.fields = std::move(*fields);
    settings.mode = status.st_mode & 0777;
    settings.refusal = refusalOf(path, status, settings, key);
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                             &std::free);
    if (!target) {
        return refused(reasonOf(errno));
    }
    settings.path = target.get();
    return settings;
}

/// Returns the number that a value in JSON stands for; 0 for what stands for none.
std::int64_t integerOf(const std::string& value) {
    constexpr double kLimit = 1e18;
    if (value == "true") {
        return 1;
    }
    const bool isText = value.starts_with('"');
    char* end = nullptr;
    const std::int64_t whole = std::strtoll(value.c_str() + (isText ? 1 : 0), &end, 10);
    if (isText || *end == '\0') {
        return whole;
    }
    const double real = std::strtod(value.c_str(), nullptr);
    return std::fabs(real) < kLimit ? static_cast<std::int64_t>(real) : 0;
}

/// Returns the object with this number under the key. Its other fields stay as they are.
std::string withInteger(const StoredSettings& settings, std::string_view key, std::int64_t value) {
    std::vector<std::pair<std::string_view, std::string>> fields(settings.fields.begin(),
                                                                 settings.fields.end());
    std::erase_if(fields, [&](const auto& field) { return field.first == key; });
    fields.emplace_back(key, std::to_string(value));
    return text::objectJSON(fields) + '\n';
}

/// Makes the folder and those above it, but not the user's home. Returns 0, or the errno of the
/// failure.
int makeFolders(const std::string& path) {
    if (access(path.c_str(), F_OK) == 0) {
        return 0;
    }
    if (path == homeFolder() || path == "/") {
        return ENOENT;
    }
    const int failure = makeFolders(text::folderOf(path));
    if (failure != 0) {
        return failure;
    }
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

bool writeDurably(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return fsync(descriptor) == 0;
}

/// Removes files that programs left beside the settings because they were killed. Younger ones may
/// belong to a program that stores at this moment.
void removeAbandoned(const std::string& begin) {
    constexpr std::int64_t kYoungSeconds = 60;
    const std::string folder = text::folderOf(begin);
    const std::string_view nameBegin = text::lastPathComponent(begin);
    const auto opened = makeFiles()->openFolder(folder, ORVFiles::Links::followed, nullptr);
    if (!opened) {
        return;
    }
    opened->readItems([&](std::string_view name) { return name.starts_with(nameBegin); },
                      [&](const char* name, const ORVItemStatus& status) {
                          if (status.modifiedAt.seconds < std::time(nullptr) - kYoungSeconds) {
                              unlink((folder + '/' + name).c_str());
                          }
                      },
                      [](const char*) {}, [](const std::string&, ORVError&&) {});
}

/// Writes the content beside the file and renames it over the file. Returns 0, or the errno of the
/// failure.
int replaceFile(const StoredSettings& settings, const std::string& content) {
    const std::string begin = settings.path + ".brimlet-";
    removeAbandoned(begin);
    std::string temporary = begin + "XXXXXX";
    const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (file.number() < 0) {
        return errno;
    }
    if (fchmod(file.number(), settings.mode) == 0 && writeDurably(file.number(), content) &&
        rename(temporary.c_str(), settings.path.c_str()) == 0) {
        return 0;
    }
    const int failure = errno;
    unlink(temporary.c_str());
    return failure;
}

class FileDefaults final : public ORVUserDefaults {
public:
    explicit FileDefaults(ORVStoringFailureHandler cannotStore)
        : path_(settingsPath()), cannotStore_(std::move(cannotStore)) {}

    std::optional<std::int64_t> integerForKey(std::string_view key) override {
        const StoredSettings settings = storedSettings(path_, key);
        const std::string* const value = settings.find(key);
        return value ? std::optional(integerOf(*value)) : std::nullopt;
    }

    void setInteger(std::int64_t value, std::string_view key) override {
        const StoredSettings settings = storedSettings(path_, key);
        std::string reason = settings.refusal;
        if (reason.empty()) {
            int failure = makeFolders(text::folderOf(path_));
            failure =
                failure != 0 ? failure : replaceFile(settings, withInteger(settings, key, value));
            reason = failure != 0 ? reasonOf(failure) : "";
        }
        if (!reason.empty() && !std::exchange(hasComplained_, true)) {
            cannotStore_({path_, reason});
        }
    }

private:
    const std::string path_;
    const ORVStoringFailureHandler cannotStore_;
    bool hasComplained_ = false;
};

}  // namespace

std::unique_ptr<ORVUserDefaults> standardUserDefaults(ORVStoringFailureHandler cannotStore) {
    return std::make_unique<FileDefaults>(std::move(cannotStore));
}

std::string placeOfUserDefaults() {
    return settingsPath();
}

std::vector<std::string> makeFoldersOfUserDefaults(std::string_view key) {
    const StoredSettings settings = storedSettings(settingsPath(), key);
    if (!settings.refusal.empty()) {
        return {};
    }
    std::string folder = text::folderOf(settings.path);
    makeFolders(folder);  // Storing will say why this failed.
    return {std::move(folder)};
}

}  // namespace platform
