#pragma once

#include <optional>
#include <ostream>

#include "analysis/Comparison.h"
#include "analysis/Gate.h"

/// Two versions compared, as one JSON object on one line. docs/compare.md tells its keys.
namespace zeb::forms {

inline constexpr const char* comparisonSchema = "zeb-profile-comparison/1";

/// @return how the object names the total, "marlix" or "queue-wait"
const char* keyOfTotal(analysis::Total total);

/// Writes the object and a newline. Text that is no UTF-8 is replaced, what is not known is null.
/// @param gate what the comparison was judged by, if it was
void writeComparisonJson(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate);

}  // namespace zeb::forms
