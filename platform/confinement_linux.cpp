// Limits files to places with Landlock, and system calls to those that are needed. Tests:
// tests/platform/confinement_test.cpp.

#include "platform/confinement_linux.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "platform/descriptors.h"
#include "platform/program.h"

namespace platform {
namespace {

// These are declarations of <linux/landlock.h>, which older headers lack.

/// The actions that are refused unless a rule allows them. An older kernel accepts the structure
/// when the fields that it does not know are 0.
struct Ruleset {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};
struct RuleForPlace {
    std::uint64_t allowed;
    std::int32_t item;
};
constexpr int kForPlace = 1;
constexpr std::uint32_t kAskForVersion = 1;
constexpr std::uint64_t kWriteFile = 1U << 1U;
constexpr std::uint64_t kReadFile = 1U << 2U;
constexpr std::uint64_t kReadFolder = 1U << 3U;
constexpr std::uint64_t kRemoveFile = 1U << 5U;
constexpr std::uint64_t kMakeFolder = 1U << 7U;
constexpr std::uint64_t kMakeFile = 1U << 8U;

constexpr std::uint64_t kToRead = kReadFile | kReadFolder;
constexpr std::uint64_t kToStore = kWriteFile | kRemoveFile | kMakeFolder | kMakeFile;

/// C libraries read these to count the processors and to know the characters of a locale.
constexpr const char* kSystemPlaces[] = {"/sys/devices/system/cpu", "/usr/lib/locale"};

/// Returns everything that this version of Landlock can refuse.
Ruleset everything(long version) {
    // The second version added moving between folders, the third cutting files short, the fifth
    // requests to devices.
    const unsigned rights = version >= 5 ? 16 : version >= 3 ? 15 : version == 2 ? 14 : 13;
    Ruleset ruleset{};
    ruleset.files = (1U << rights) - 1;
    ruleset.network = version >= 4 ? 3 : 0;  // To offer a connection, and to make one.
    ruleset.scopes = version >= 6 ? 3 : 0;   // Abstract sockets, and signals to other processes.
    return ruleset;
}

/// In a place that cannot be opened nothing may be done.
void addRule(const FileDescriptor& ruleset, const std::string& place, std::uint64_t allowed) {
    const FileDescriptor item(open(place.c_str(), O_PATH | O_CLOEXEC));
    if (item.number() < 0) {
        return;
    }
    RuleForPlace rule{allowed, item.number()};
    if (syscall(kLandlockAddRule, ruleset.number(), kForPlace, &rule, 0) != 0) {
        rule.allowed &= kReadFile | kWriteFile;  // It may be a file, which takes no other rights.
        syscall(kLandlockAddRule, ruleset.number(), kForPlace, &rule, 0);
    }
}

/// Limits the calling thread to these rights. Returns false when the kernel has no Landlock or has
/// it turned off.
bool limitFiles(const ORVFileRights& rights) {
    const long version = syscall(kLandlockCreateRuleset, nullptr, 0, kAskForVersion);
    if (version < 1) {
        return false;
    }
    Ruleset attributes = everything(version);
    if (!rights.placesToRead) {
        attributes.files &= ~kToRead;
    }
    const FileDescriptor ruleset(
        static_cast<int>(syscall(kLandlockCreateRuleset, &attributes, sizeof attributes, 0)));
    // Without a descriptor to spare no place can be opened for a rule, and all would be refused.
    if (FileDescriptor(open("/", O_PATH | O_CLOEXEC)).number() < 0) {
        return false;
    }
    for (const std::string& folder : rights.foldersToWriteIn) {
        addRule(ruleset, folder, kToStore);
    }
    if (rights.placesToRead) {
        tzset();  // Reads the time zone while that is possible. It is kept as long as TZ is.
        for (const std::string& place : *rights.placesToRead) {
            addRule(ruleset, place, kToRead);
        }
        for (const char* place : kSystemPlaces) {
            addRule(ruleset, place, kToRead);
        }
        addRule(ruleset, localesOfProgram(), kToRead);
    }
    return syscall(kLandlockRestrictSelf, ruleset.number(), 0) == 0;
}

}  // namespace

ORVConfinement confineProcess(const ORVFileRights& rights) {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);  // The kernel demands this before the other two.
    ORVConfinement confinement;
    confinement.limitsFiles = limitFiles(rights);
    confinement.filtersCalls = filterCalls(rights);
    return confinement;
}

void confineThreadToReading(const std::vector<std::string>& places) {
    const ORVFileRights rights{{}, places};
    limitFiles(rights);
    filterCalls(rights);
}

}  // namespace platform
