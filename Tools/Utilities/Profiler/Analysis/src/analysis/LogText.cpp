#include "analysis/LogText.h"

#include <array>
#include <charconv>
#include <cstdint>

#include "text/Utf8.h"

namespace zeb::analysis {

namespace {

using profiling::cutInMiddle;

// FNV-1a. It stands in files, so it is the same everywhere and always.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3U;
    }
    return hash;
}

std::string hexadecimal(std::uint64_t number) {
    constexpr std::size_t digits = 16;
    std::array<char, digits> text{};
    const auto* const end = std::to_chars(text.data(), text.data() + digits, number, 16).ptr;
    const auto size = static_cast<std::size_t>(end - text.data());
    return std::string(digits - size, '0').append(text.data(), size);
}

}  // namespace

std::string cutText(std::string_view text) {
    return cutInMiddle(text, maxTextBytes);
}

std::string cutName(std::string_view name) {
    if (name.size() <= maxTextBytes) {
        std::string whole = profiling::wellFormed(name);
        if (whole.size() <= maxTextBytes) {
            return whole;
        }
    }
    const std::string hash = '#' + hexadecimal(hashOf(name));
    return cutInMiddle(profiling::wellFormed(cutText(name)), maxTextBytes - hash.size()) + hash;
}

}  // namespace zeb::analysis
