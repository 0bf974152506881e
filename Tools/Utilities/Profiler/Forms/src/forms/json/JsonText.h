#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Values as JSON has them, appended to a text. No locale plays a part.
namespace zeb::forms {

/// The largest number up to which every whole number is exact to a reader that has doubles alone.
inline constexpr std::uint64_t largestExactNumber = std::uint64_t{1} << 53U;

/// Appends a JSON string with its quotation marks. The text may be any bytes: control characters are escaped,
/// and each byte that is no part of well-formed UTF-8 becomes U+FFFD.
void appendJsonText(std::string& json, std::string_view text);

/// Appends a number, as a JSON string where a reader that has doubles alone would change it.
void appendJsonNumber(std::string& json, std::uint64_t value);
void appendJsonNumber(std::string& json, std::int64_t value);
/// Appends a number in its shortest exact form; one that is not finite as a JSON string.
void appendJsonNumber(std::string& json, double value);
void appendJsonNumber(std::string& json, float value);

}  // namespace zeb::forms
