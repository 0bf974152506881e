#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace zeb::samplelog {

/// Puts numbers and texts one behind the other, little-endian and without padding.
class ByteWriter {
public:
    /// @param capacity bytes that are going to be written, as far as known
    explicit ByteWriter(std::size_t capacity = 0) { bytes_.reserve(capacity); }

    ByteWriter& u32(std::uint32_t value) { return number(value, 4); }
    ByteWriter& u64(std::uint64_t value) { return number(value, 8); }
    /// Writes the text and a NUL.
    ByteWriter& text(std::string_view value) {
        bytes_.insert(bytes_.end(), value.begin(), value.end());
        bytes_.push_back(0);
        return *this;
    }
    /// Writes a place that nobody reads.
    ByteWriter& unused(std::size_t size) {
        bytes_.resize(bytes_.size() + size);
        return *this;
    }

    [[nodiscard]] std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    ByteWriter& number(std::uint64_t value, unsigned size) {
        for (unsigned index = 0; index < size; ++index) {
            bytes_.push_back(static_cast<std::uint8_t>(value >> (index * 8)));
        }
        return *this;
    }

    std::vector<std::uint8_t> bytes_;
};

}  // namespace zeb::samplelog
