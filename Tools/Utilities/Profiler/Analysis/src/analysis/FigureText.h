#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Figures as the forms show them, with the digits that fit their size: one rule for sentences, tables and
/// charts. `Forms/page/shared/figures.js` has the same.
namespace zeb::analysis {

/// @return a time without its unit: whole from 100 us on, else with one digit behind the point, or with two
/// below 10 us where it isn't whole
std::string usDigits(double us);

/// @return a time in the unit that suits its size: us below 10 ms, ms below 10 s, else s
std::string timeText(double us);

/// @return a share that is given in per cent; what is not all is never "100.0%", and what is not nothing
/// never "0.0%"
std::string percentText(double percent);

/// @return the part of a whole in per cent, 0 where there is no whole
double percentOf(double part, double whole);

/// @return "1 log", "3 logs"
std::string counted(std::uint64_t count, std::string_view one, std::string_view several);

/// The same for what has an s at its end where there are several.
std::string counted(std::uint64_t count, std::string_view one);

/// @return "[3 others]", the name of a row that stands for so many
std::string othersName(std::uint64_t count);

}  // namespace zeb::analysis
