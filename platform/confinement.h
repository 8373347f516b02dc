#pragma once

#include <string>
#include <vector>

/// Giving up, for good, what Brimlet never needs, so that not even a fault in it could send or
/// change anything. Does as much as the kernel offers, and says nothing of the rest.
namespace platform {

/// No sockets, no other programs or processes, no looking into those of others, no core dump; and
/// no writing but in these folders, for this thread and those that it starts. What is open stays
/// so. Called once, before any thread is started.
void confineProcess(const std::vector<std::string>& foldersToWriteIn);

/// No writing anywhere, for the calling thread.
void confineThreadToReading();

}  // namespace platform
