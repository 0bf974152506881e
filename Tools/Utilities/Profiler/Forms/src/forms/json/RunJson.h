#pragma once

#include <cstddef>
#include <istream>
#include <limits>
#include <ostream>

#include "analysis/Run.h"
#include "forms/json/JsonWriter.h"

/// A run as one JSON object on one line, and back. docs/json.md tells its keys.
namespace zeb::forms {

/// Writes the object and a newline. Text that is no UTF-8 is replaced, numbers that are not finite are null.
/// It takes no memory in proportion to the run.
/// @param maxExecutions of a graph that has more of them the columns are empty
void writeRunJson(std::ostream& out, const analysis::Run& run, JsonStyle style = {},
                  std::size_t maxExecutions = std::numeric_limits<std::size_t>::max());

/// Reads such an object, of this version. Keys that are not known are passed over, and what is missing is
/// empty.
/// @throws std::runtime_error for anything else, with the cause in words
analysis::Run readRunJson(std::istream& in);

}  // namespace zeb::forms
