#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zeb::profiling {

/// Reads the numbers and texts of a binary object. Numbers are little-endian; what lies behind the end of the
/// object reads as 0, and nothing is read past it.
class PayloadReader {
public:
    /// @param bytes have to outlive the reader and the texts that it gives
    explicit PayloadReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

    /// @return whether `length` bytes at `offset` lie in the object
    [[nodiscard]] bool has(std::uint64_t offset, std::uint64_t length) const {
        return offset <= bytes_.size() && length <= bytes_.size() - offset;
    }

    [[nodiscard]] std::uint32_t u32(std::uint64_t offset) const {
        return static_cast<std::uint32_t>(number(offset, sizeof(std::uint32_t)));
    }
    [[nodiscard]] std::uint64_t u64(std::uint64_t offset) const {
        return number(offset, sizeof(std::uint64_t));
    }

    /// @return how many whole records lie behind `offset`, `announced` at most
    [[nodiscard]] std::size_t records(std::uint64_t offset, std::size_t recordSize,
                                      std::uint64_t announced) const {
        return has(offset, 0) ? static_cast<std::size_t>(
                                    std::min<std::uint64_t>(announced, (bytes_.size() - offset) / recordSize))
                              : 0;
    }

    /// @return the text at `offset` up to its NUL or the end of the object, `limit` characters at most
    [[nodiscard]] std::string_view text(std::uint64_t offset, std::uint64_t limit) const {
        const std::string_view all(reinterpret_cast<const char*>(bytes_.data()), bytes_.size());
        const std::string_view rest =
            has(offset, 0) ? all.substr(static_cast<std::size_t>(offset)) : std::string_view{};
        const std::string_view within =
            rest.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(limit, rest.size())));
        return within.substr(0, within.find('\0'));
    }

private:
    [[nodiscard]] std::uint64_t number(std::uint64_t offset, std::size_t width) const {
        std::uint64_t value = 0;
        if (has(offset, width)) {
            for (std::size_t index = 0; index < width; ++index) {
                value |= std::to_integer<std::uint64_t>(bytes_[static_cast<std::size_t>(offset) + index])
                         << (8U * index);
            }
        }
        return value;
    }

    std::span<const std::byte> bytes_;
};

}  // namespace zeb::profiling
