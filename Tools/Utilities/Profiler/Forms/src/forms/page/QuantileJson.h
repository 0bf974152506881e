#pragma once

#include "forms/json/JsonWriter.h"

namespace zeb::forms {

/// Writes the list of the quantiles as the pages' scripts take it: key, title and how many executions it
/// takes.
void writeQuantiles(JsonWriter& json);

}  // namespace zeb::forms
