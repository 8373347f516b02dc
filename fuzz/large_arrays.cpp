// Makes large arrays cheap under AddressSanitizer, for fuzzing only: the same few blocks of memory
// are used again and again. The JSON parser allocates fifty megabytes in every refresh and touches
// little of them; marking them as allocated and freed would take longer than everything else
// together.

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kPieceBytes = 64 * 1024 * 1024;
bool isUsed[16];

char* pieces() {
    static void* const kPieces = mmap(nullptr, sizeof isUsed * kPieceBytes, PROT_READ | PROT_WRITE,
                                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return static_cast<char*>(kPieces);
}

}  // namespace

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    constexpr std::size_t kLargeBytes = 512 * 1024;
    for (std::size_t i = 0; i < sizeof isUsed && size > kLargeBytes && size < kPieceBytes; ++i) {
        if (!isUsed[i]) {
            isUsed[i] = true;
            return pieces() + i * kPieceBytes;
        }
    }
    return std::malloc(size);
}

void* operator new[](std::size_t size) {
    void* bytes = operator new[](size, std::nothrow);
    return bytes ? bytes : throw std::bad_alloc();
}

void operator delete[](void* bytes) noexcept {
    const auto offset = static_cast<std::size_t>(static_cast<char*>(bytes) - pieces());
    if (bytes && offset < sizeof isUsed * kPieceBytes) {
        isUsed[offset / kPieceBytes] = false;
    } else {
        std::free(bytes);
    }
}

void operator delete[](void* bytes, std::size_t) noexcept {
    operator delete[](bytes);
}
