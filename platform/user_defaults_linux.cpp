// Settings on Linux: one JSON object in "brimlet/defaults.json" of the user's configuration folder.
// Written beside it and renamed, so that it is stored whole or not at all. Keys of others stay,
// unless the file is no JSON object: then the first choice of a language replaces it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "platform/files.h"
#include "platform/home_folder.h"
#include "platform/user_defaults.h"

namespace platform {
namespace {

constexpr std::size_t kLimitBytes = 64 * 1024;

std::string settingsFolder() {
    const char* variable = std::getenv("XDG_CONFIG_HOME");
    const bool isUsable = variable && *variable == '/';  // A relative one is to be ignored.
    return (isUsable ? variable : homeFolder() + "/.config") + "/brimlet";
}

std::string settingsPath() {
    return settingsFolder() + "/defaults.json";
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// Like mkdir -p.
bool makeFolders(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string folder = path.substr(0, slash);
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
            return false;
        }
        if (slash == std::string::npos) {
            return true;
        }
    }
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

/// Whoever keeps settings elsewhere and links to them keeps the link.
std::string targetOf(const std::string& link) {
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(link.c_str(), nullptr),
                                                             &std::free);
    return target ? target.get() : link;
}

/// 0, or the errno of the failure.
int replaceFile(const std::string& link, const std::string& content) {
    const std::string path = targetOf(link);
    std::string temporary = path + ".XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        return errno;
    }
    const bool isWritten = writeDurably(descriptor, content);
    int failure = isWritten ? 0 : errno;
    close(descriptor);
    if (failure == 0 && rename(temporary.c_str(), path.c_str()) != 0) {
        failure = errno;
    }
    if (failure != 0) {
        unlink(temporary.c_str());
    }
    return failure;
}

std::int64_t integerOf(const boost::json::value& value) {
    if (const std::int64_t* integer = value.if_int64()) {
        return *integer;
    }
    if (const bool* boolean = value.if_bool()) {
        return *boolean ? 1 : 0;
    }
    if (const double* real = value.if_double()) {
        const bool fits = std::fabs(*real) < 1e18;
        return fits ? static_cast<std::int64_t>(*real) : 0;
    }
    if (const boost::json::string* text = value.if_string()) {
        return std::strtoll(text->c_str(), nullptr, 10);
    }
    return 0;
}

class FileDefaults final : public ORVUserDefaults {
public:
    explicit FileDefaults(std::function<void(const std::string&)> cannotStore)
        : path_(settingsPath()), cannotStore_(std::move(cannotStore)) {}

    std::optional<std::int64_t> integerForKey(std::string_view key) override {
        const boost::json::object settings = read();
        const boost::json::value* value = settings.if_contains({key.data(), key.size()});
        return value ? std::optional(integerOf(*value)) : std::nullopt;
    }

    void setInteger(std::int64_t value, std::string_view key) override {
        boost::json::object settings = read();
        settings[{key.data(), key.size()}] = value;
        int failure = makeFolders(folderOf(path_)) ? 0 : errno;
        if (failure == 0) {
            failure = replaceFile(path_, boost::json::serialize(settings) + "\n");
        }
        if (failure != 0 && !std::exchange(hasComplained_, true)) {
            cannotStore_("cannot store the language in " + path_ + ": " +
                         posixError(failure).description);
        }
    }

private:
    boost::json::object read() const {
        const auto files = makeFiles();
        const auto text = contentsOfFile(*files, path_, kLimitBytes);
        if (!text) {
            return {};
        }
        boost::json::error_code failure;
        const boost::json::value settings = boost::json::parse(*text, failure);
        return !failure && settings.is_object() ? settings.get_object() : boost::json::object();
    }

    const std::string path_;
    const std::function<void(const std::string&)> cannotStore_;
    bool hasComplained_ = false;
};

}  // namespace

std::unique_ptr<ORVUserDefaults> standardUserDefaults(
    std::function<void(const std::string&)> cannotStore) {
    return std::make_unique<FileDefaults>(std::move(cannotStore));
}

std::vector<std::string> foldersOfUserDefaults() {
    std::string folder = settingsFolder();
    while (access(folder.c_str(), F_OK) != 0 && folder != "/") {
        folder = folderOf(folder);
    }
    return {folder, folderOf(targetOf(settingsPath()))};
}

}  // namespace platform
