#pragma once

#include <map>
#include <string>

namespace zeb::analysis {

/// What somebody says about a run, by keys. Both are cut like names (`cutName`).
using Labels = std::map<std::string, std::string>;

}  // namespace zeb::analysis
