#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zeb::profiling {

/// @return the known name that somebody who wrote `name` most likely meant: the one with the fewest
///         characters to change, or one that `name` is short for; none when they are all too different
std::optional<std::string> nearestName(const std::string& name, const std::vector<std::string>& knownNames);

}  // namespace zeb::profiling
