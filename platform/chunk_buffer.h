#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/files.h"

namespace platform {

/// Memory for reading files piece by piece.
///
/// The first read allocates the memory, and it is kept from file to file until releaseMemory is
/// called: allocating it costs more than reading a small file.
///
/// The memory begins at a page: a system call that copies to an address a few bytes after the start
/// of a page, where an allocator puts every large block, runs at a quarter of the speed. The size
/// was fastest on a processor with a second-level cache of 1 MB, from which a chunk is searched; a
/// quarter of it takes a tenth longer.
class ChunkBuffer {
public:
    static constexpr std::size_t kChunkBytes = 512 * 1024;

    /// Reads the next bytes of the file from `offset`: at most `limit`, at most one chunk, and none
    /// at the file's end. Returns nothing, with the system's error, when the file cannot be read.
    /// The bytes are valid until the next read, and ORVByteBuffer::kReadableBytesBeyond readable
    /// bytes follow them.
    std::optional<std::string_view> read(ORVOpenFile& file, std::uint64_t offset,
                                         std::uint64_t limit, ORVErrorSlot* error);

    void releaseMemory() { bytes_.reset(); }

private:
    void takeMemory();

    struct Free {
        void operator()(char* bytes) const;
    };
    std::unique_ptr<char, Free> bytes_;
};

}  // namespace platform
