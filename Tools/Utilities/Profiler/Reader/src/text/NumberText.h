#pragma once

#include <string>

namespace zeb::profiling {

/// @return the number in fixed notation, rounded to that many digits behind the point, nine at most, in no
/// locale
std::string fixedPoint(double value, int digits);

}  // namespace zeb::profiling
