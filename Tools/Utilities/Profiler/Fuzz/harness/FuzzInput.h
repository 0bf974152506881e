#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "samplelog/LogWriter.h"

namespace zeb::fuzz {

/// Makes numbers, texts and choices out of bytes, in their order. Bytes that are not there are 0.
class FuzzInput {
public:
    explicit FuzzInput(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool empty() const { return bytes_.empty(); }

    /// A little-endian number.
    template <std::unsigned_integral Number>
    Number number() {
        Number value = 0;
        std::size_t shift = 0;
        for (const std::uint8_t byte : take(sizeof(Number))) {
            value = static_cast<Number>(value | Number{byte} << shift);
            shift += 8;
        }
        return value;
    }

    /// A number below `limit`, which is 256 at most, out of one byte.
    std::size_t below(std::size_t limit) { return number<std::uint8_t>() % limit; }
    bool flag() { return below(2) == 1; }

    /// Its length in one byte, and that many bytes.
    samplelog::Bytes shortBytes() { return copy(take(number<std::uint8_t>())); }
    /// Its length in two bytes, and that many bytes.
    samplelog::Bytes bytes() { return copy(take(number<std::uint16_t>())); }
    samplelog::Bytes rest() { return copy(take(bytes_.size())); }
    std::string text() {
        const auto characters = take(number<std::uint8_t>());
        return {characters.begin(), characters.end()};
    }

private:
    std::span<const std::uint8_t> take(std::size_t count) {
        const auto taken = bytes_.first(std::min(count, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }
    static samplelog::Bytes copy(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

    std::span<const std::uint8_t> bytes_;
};

}  // namespace zeb::fuzz
