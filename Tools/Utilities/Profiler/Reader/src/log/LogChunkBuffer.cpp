#include "log/LogChunkBuffer.h"

#include <limits>
#include <stdexcept>

namespace zeb::profiling {

namespace {

std::size_t checkedSize(std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max())) {
        throw std::length_error("LogChunkBuffer");
    }
    return size;
}

}  // namespace

// The buffer is not cleared: a chunk is read over all of it, or it is dropped unread.
LogChunkBuffer::LogChunkBuffer(std::size_t size)
    : size_(checkedSize(size)), bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(size_)) {}

}  // namespace zeb::profiling
