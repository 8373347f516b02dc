#pragma once

#include <string>
#include <vector>

/// What the kernel holds the program to.
struct ORVConfinement {
    /// Whether every system call is refused that the program has no use for.
    bool filtersCalls = false;

    /// Whether files can be changed in the folders given only. Where not, the filter alone refuses
    /// writing, to a process without such folders and to a thread that was confined to reading.
    bool limitsWriting = false;
};

/// Giving up, for good, what Brimlet never needs, so that not even a fault in it could send or
/// change anything. Does as much as the kernel offers.
namespace platform {

/// No sockets, no other programs or processes, no signals to others and no looking into them, no
/// further code, no core dump; and no writing but in these folders, for this thread and those that
/// it starts. What is open stays so. Called once, before any thread is started.
ORVConfinement confineProcess(const std::vector<std::string>& foldersToWriteIn);

/// No writing anywhere, for the calling thread. This holds against a fault that opens or removes
/// the wrong file; who runs code of their own has the memory, and so the rights, of all threads.
void confineThreadToReading();

}  // namespace platform
