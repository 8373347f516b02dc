#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

/// A growing run of bytes, for lines of any length.
///
/// It grows with `realloc`, which moves a large block without copying it, where a std::string would
/// hold the old and the new block at once. Vector code may read kReadableBytesBeyond bytes past the
/// end; their values mean nothing. Throws std::bad_alloc when memory runs out, and is unchanged
/// then.
class ORVByteBuffer {
public:
    static constexpr std::size_t kReadableBytesBeyond = 64;

    ORVByteBuffer() = default;
    ORVByteBuffer(ORVByteBuffer&& other) noexcept { swap(other); }
    ORVByteBuffer& operator=(ORVByteBuffer&& other) noexcept {
        swap(other);
        return *this;
    }
    ~ORVByteBuffer();

    std::string_view bytes() const { return {data_, size_}; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    void append(std::string_view bytes);

    /// Forgets the bytes and keeps the memory for the next ones.
    void clear() { size_ = 0; }

    /// Frees the memory beyond what the bytes need.
    void shrink();

private:
    void swap(ORVByteBuffer& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }
    void setCapacity(std::size_t capacity);

    char* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;  ///< Without the bytes beyond the end.
};
