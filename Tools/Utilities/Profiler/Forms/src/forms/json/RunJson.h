#pragma once

#include <cstddef>
#include <istream>
#include <ostream>

#include "analysis/Run.h"
#include "forms/json/JsonWriter.h"

/// A run as one JSON object on one line, and back. docs/json.md tells its keys.
namespace zeb::forms {

/// Writes the object and a newline. Text that is no UTF-8 is replaced, numbers that are not finite are null.
/// It takes no memory in proportion to the run.
void writeRunJson(std::ostream& out, const analysis::Run& run, JsonStyle style = {});

/// Writes the same for the script of a page, which is to read no more than it shows, and first what its
/// pictures show: lists of layers are columns, an object with a list for each key, and of ORU layers those
/// columns are left out that only tables have.
/// @param maxExecutions of a graph that has more of them the columns are empty
void writeRunForPage(std::ostream& out, const analysis::Run& run, std::size_t maxExecutions);

/// Writes these, as a list with an object for each graph.
void writeTablesForPage(std::ostream& out, const analysis::Run& run);

/// Reads such an object, of this version. Keys that are not known are passed over, and what is missing is
/// empty.
/// @throws std::runtime_error for anything else, with the cause in words
analysis::Run readRunJson(std::istream& in);

}  // namespace zeb::forms
