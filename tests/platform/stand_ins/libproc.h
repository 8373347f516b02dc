#pragma once

// The functions that tell of a Mac's processes, for tests on Linux.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

enum { PROC_PIDPATHINFO_MAXSIZE = 4096, PROC_PIDT_SHORTBSDINFO = 13 };

struct proc_bsdshortinfo {
    uid_t pbsi_uid;
};

/// A process's number is its place in the list.
struct ORVStandInProcess {
    std::string path;
    uid_t user;
    std::string quarantine;
};
inline std::vector<ORVStandInProcess> ORVStandInProcesses;

inline int proc_listallpids(void* buffer, int size) {
    const int count = static_cast<int>(ORVStandInProcesses.size());
    const int room = buffer ? size / static_cast<int>(sizeof(pid_t)) : 0;
    std::iota(static_cast<pid_t*>(buffer), static_cast<pid_t*>(buffer) + std::min(count, room), 0);
    return count;
}

inline int proc_pidpath(int process, char* buffer, std::uint32_t size) {
    return static_cast<int>(
        ORVStandInProcesses[static_cast<std::size_t>(process)].path.copy(buffer, size));
}

inline int proc_pidinfo(int process, int, std::uint64_t, void* buffer, int size) {
    static_cast<proc_bsdshortinfo*>(buffer)->pbsi_uid =
        ORVStandInProcesses[static_cast<std::size_t>(process)].user;
    return size;
}
