// Page-aligned memory for reads; the header says why. Tests: tests/sessions/reading_test.cpp.

#include "platform/chunk_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "text/byte_buffer.h"

namespace platform {
namespace {
// A multiple of the usual page of 4 KB; pages of Apple's processors have this size.
constexpr std::size_t kPageBytes = 16 * 1024;
}  // namespace

void ChunkBuffer::takeMemory() {
    void* bytes = nullptr;
    const std::size_t size = kChunkBytes + ORVByteBuffer::kReadableBytesBeyond;
    if (posix_memalign(&bytes, kPageBytes, size) != 0) {
        throw std::bad_alloc();
    }
    bytes_.reset(static_cast<char*>(bytes));
}

std::optional<std::string_view> ChunkBuffer::read(ORVOpenFile& file, std::uint64_t offset,
                                                  std::uint64_t limit, ORVErrorSlot* error) {
    if (!bytes_) {
        takeMemory();
    }
    const auto capacity = static_cast<std::size_t>(std::min<std::uint64_t>(limit, kChunkBytes));
    const auto count = file.readAt(offset, bytes_.get(), capacity, error);
    if (!count) {
        return std::nullopt;
    }
    // Vector code reads beyond the end; the bytes there must be defined.
    std::memset(bytes_.get() + *count, 0, ORVByteBuffer::kReadableBytesBeyond);
    return std::string_view(bytes_.get(), *count);
}

void ChunkBuffer::Free::operator()(char* bytes) const {
    std::free(bytes);
}

}  // namespace platform
