// Memory for lines by realloc; the header says why. Tests: tests/text/marked_lines_test.cpp.

#include "text/byte_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

ORVByteBuffer::~ORVByteBuffer() {
    std::free(data_);
}

void ORVByteBuffer::append(std::string_view bytes) {
    if (bytes.empty()) {
        return;
    }
    if (capacity_ - size_ < bytes.size()) {
        setCapacity(std::max(size_ + bytes.size(), capacity_ + capacity_ / 2));
    }
    std::memcpy(data_ + size_, bytes.data(), bytes.size());
    size_ += bytes.size();
    // Vector code reads the bytes beyond the end; they must be defined.
    std::memset(data_ + size_, 0, kReadableBytesBeyond);
}

void ORVByteBuffer::shrink() {
    if (size_ == 0) {
        std::free(std::exchange(data_, nullptr));
        capacity_ = 0;
    } else if (capacity_ > size_) {
        setCapacity(size_);
    }
}

void ORVByteBuffer::setCapacity(std::size_t capacity) {
    void* grown = std::realloc(data_, capacity + kReadableBytesBeyond);
    if (!grown) {
        throw std::bad_alloc();
    }
    data_ = static_cast<char*>(grown);
    capacity_ = capacity;
}
