#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zeb::command {

/// What somebody says about a run, by keys.
using Labels = std::map<std::string, std::string>;

/// Adds a label that is given as KEY=VALUE. The value may be empty.
/// @return what is wrong with it; nothing once it is added
std::optional<std::string> addLabel(Labels& labels, std::string_view given);

}  // namespace zeb::command
