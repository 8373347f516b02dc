#pragma once

#include <optional>
#include <string>
#include <vector>

/// What a process keeps of its rights to files.
struct ORVFileRights {
    /// Folders in which files may be made, changed and removed.
    std::vector<std::string> foldersToWriteIn = {};

    /// Files, and folders with everything below them, that may be read; those that do not exist are
    /// left out. None when everything may be read.
    std::optional<std::vector<std::string>> placesToRead = {};
};

/// What the kernel refuses to the program.
struct ORVConfinement {
    /// Whether the kernel refuses every system call that the program does not need.
    bool filtersCalls = false;

    /// Whether the kernel limits files to the rights that were kept. If it does not, the filter of
    /// system calls still keeps a process without folders to write in, and a thread that was
    /// confined to reading, from opening files for writing.
    bool limitsFiles = false;
};

/// Gives up, for good, every right that Brimlet never needs, so that not even a fault in it could
/// send or change anything. How much is given up depends on the kernel.
namespace platform {

/// Gives up sockets, other programs and processes, signals to them and reading their memory,
/// loading code, core dumps, and all rights to files but these. This holds for the calling thread
/// and the threads that it starts; descriptors that are open can still be used. Called once, before
/// any thread is started. A process that may read everything may confine its threads further.
ORVConfinement confineProcess(const ORVFileRights& rights);

/// Gives up writing files anywhere, and reading others than these, for the calling thread. This
/// stops a fault that opens or removes the wrong file. An attacker's code it stops as far as that
/// cannot use the memory, and so the rights, of other threads.
void confineThreadToReading(const std::vector<std::string>& places);

}  // namespace platform
