#pragma once

#include <optional>
#include <ostream>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"
#include "forms/json/JsonWriter.h"

/// Two versions compared, as one JSON object on one line. docs/compare.md tells its keys.
namespace zeb::forms {

inline constexpr const char* comparisonSchema = "zeb-profile-comparison/1";

/// Writes the object and a newline. Text that is no UTF-8 is replaced, what is not known is null.
/// @param gate what the comparison was judged by, if it was
void writeComparisonJson(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate, JsonStyle style = {});

}  // namespace zeb::forms
