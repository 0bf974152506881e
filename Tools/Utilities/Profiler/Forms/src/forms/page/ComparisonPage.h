#pragma once

#include <optional>
#include <ostream>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"

/// Two versions compared, as a page for a browser. docs/compare.md tells what it shows.
namespace zeb::forms {

/// Writes one HTML file that asks for nothing from elsewhere. Whatever names the logs hold are text to it.
/// @param gate what the comparison was judged by, if it was
/// @param hideBelow rows with a change below this share of the base's sum are only counted at first
void writeComparisonPage(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate, double hideBelow);

}  // namespace zeb::forms
