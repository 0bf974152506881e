#include "text/NumberText.h"

#include <array>
#include <charconv>

namespace zeb::profiling {

std::string fixedPoint(double value, int digits) {
    std::array<char, 320> text{};  // a minus sign, 309 digits at most, the point and what is behind it
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, digits).ptr;
    return {text.data(), end};
}

}  // namespace zeb::profiling
