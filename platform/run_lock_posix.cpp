// Lets one process of a program run at a time. Tests: tests/platform/run_lock_test.cpp.

#include "platform/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "platform/descriptors.h"

namespace platform {
namespace {

/// Failures are left to the call that opens the file.
void makeFolders(const std::string& folder) {
    std::size_t end = 0;
    while (end != folder.npos) {
        end = folder.find('/', end + 1);
        mkdir(folder.substr(0, end).c_str(), S_IRWXU);
    }
}

}  // namespace

RunLock lockForRun(const std::string& folder, ORVErrorSlot* error) {
    makeFolders(folder);
    const std::string path = folder + "/running.lock";
    FileDescriptor file(
        open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (file.number() < 0 ||
        uninterrupted([&] { return flock(file.number(), LOCK_EX | LOCK_NB); }) != 0) {
        const int reason = errno;
        storeError(error, posixError(reason));
        return reason == EWOULDBLOCK ? RunLock::heldByAnother : RunLock::unknown;
    }
    file.release();  // It stays open, since closing it would give up the lock.
    return RunLock::held;
}

}  // namespace platform
