// Large arrays for programs under AddressSanitizer that search: taken from the system and kept for
// the next time. The JSON parser gets fifty megabytes anew in every refresh and touches little of
// them; marking them as allocated and as freed would take longer than everything else together.

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>

namespace {

constexpr std::size_t kLargeBytes = 512 * 1024;

struct Block {
    void* bytes;
    std::size_t size;
    bool isUsed;
};

std::mutex mutex;
Block blocks[256];  // Filled from the front; never given back.

void* takeBlock(std::size_t size) {
    const std::lock_guard lock(mutex);
    for (Block& block : blocks) {
        if (!block.bytes) {
            void* bytes =
                mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            block = {bytes == MAP_FAILED ? nullptr : bytes, size, false};
        }
        if (!block.isUsed && block.size == size) {
            block.isUsed = block.bytes != nullptr;
            return block.bytes;
        }
    }
    return nullptr;
}

bool giveBlockBack(void* bytes) {
    const std::lock_guard lock(mutex);
    for (Block& block : blocks) {
        if (!block.bytes) {
            break;
        }
        if (block.bytes == bytes) {
            block.isUsed = false;
            return true;
        }
    }
    return false;
}

}  // namespace

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    void* block = size < kLargeBytes ? nullptr : takeBlock(size);
    return block ? block : std::malloc(size);
}

void* operator new[](std::size_t size) {
    void* bytes = operator new[](size, std::nothrow);
    return bytes ? bytes : throw std::bad_alloc();
}

void operator delete[](void* bytes) noexcept {
    if (bytes && !giveBlockBack(bytes)) {
        std::free(bytes);
    }
}

void operator delete[](void* bytes, std::size_t) noexcept {
    operator delete[](bytes);
}
