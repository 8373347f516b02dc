#pragma once

#include <string>
#include <vector>

/// What the kernel refuses to the program.
struct ORVConfinement {
    /// Whether the kernel refuses every system call that the program does not need.
    bool filtersCalls = false;

    /// Whether the kernel refuses to change files outside of the given folders. If it does not, the
    /// filter of system calls still keeps a process without such folders, and a thread that was
    /// confined to reading, from opening files for writing.
    bool limitsWriting = false;
};

/// Gives up, for good, every right that Brimlet never needs, so that not even a fault in it could
/// send or change anything. How much is given up depends on the kernel.
namespace platform {

/// Gives up sockets, other programs and processes, signals to them and reading their memory,
/// loading code, core dumps, and writing outside of these folders. This holds for the calling
/// thread and the threads that it starts; descriptors that are open can still be used. Called once,
/// before any thread is started.
ORVConfinement confineProcess(const std::vector<std::string>& foldersToWriteIn);

/// Gives up writing files anywhere, for the calling thread. This stops a fault that opens or
/// removes the wrong file, but not an attacker's code, which can use the memory and so the rights
/// of all threads.
void confineThreadToReading();

}  // namespace platform
