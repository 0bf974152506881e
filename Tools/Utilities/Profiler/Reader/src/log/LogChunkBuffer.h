#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace zeb::profiling {

/// The bytes of one chunk, without its length prefix. Its content is undefined until it is filled.
class LogChunkBuffer {
public:
    /// @throws std::bad_alloc, or std::length_error for a size that no buffer can have
    explicit LogChunkBuffer(std::size_t size);

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

private:
    std::size_t size_;
    std::unique_ptr<std::uint8_t[]> bytes_;
};

}  // namespace zeb::profiling
