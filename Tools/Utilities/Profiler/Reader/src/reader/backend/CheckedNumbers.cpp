#include "reader/backend/CheckedNumbers.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

// A number is read as `strtoull` does it in the classic locale, whatever the host's is. The texts of the
// exceptions are part of what a host sees, so they are made here and not by the standard library, whose texts
// differ from one to the next.
namespace zeb::profiling {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";

struct Number {
    bool isNegative = false;
    std::optional<std::uint64_t> magnitude;  ///< none when it takes more than 64 bits
};

// What is behind the number is passed over.
Number numberAtStart(std::string_view text, const char* noNumber) {
    Number number;
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    if (text.starts_with('-') || text.starts_with('+')) {
        number.isNegative = text.front() == '-';
        text.remove_prefix(1);
    }
    std::uint64_t magnitude = 0;
    const auto error = std::from_chars(text.data(), text.data() + text.size(), magnitude).ec;
    if (error == std::errc::invalid_argument) {
        throw std::invalid_argument(noNumber);
    }
    if (error == std::errc()) {
        number.magnitude = magnitude;
    }
    return number;
}

}  // namespace

// A negative number counts down from 2^64.
std::uint64_t checkedUnsigned64(const std::string& text) {
    const Number number = numberAtStart(text, "invalid stoull argument");
    if (!number.magnitude) {
        throw std::out_of_range("stoull argument out of range");
    }
    return number.isNegative ? 0 - *number.magnitude : *number.magnitude;
}

std::int32_t checkedSigned32(const std::string& text) {
    const Number number = numberAtStart(text, "invalid stoi argument");
    const std::uint64_t limit =
        std::uint64_t{std::numeric_limits<std::int32_t>::max()} + (number.isNegative ? 1 : 0);
    if (!number.magnitude || *number.magnitude > limit) {
        throw std::out_of_range("stoi argument out of range");
    }
    const auto magnitude = static_cast<std::int64_t>(*number.magnitude);
    return static_cast<std::int32_t>(number.isNegative ? -magnitude : magnitude);
}

}  // namespace zeb::profiling
