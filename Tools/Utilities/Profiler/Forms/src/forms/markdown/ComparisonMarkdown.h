#pragma once

#include <optional>
#include <ostream>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"

namespace zeb::forms {

/// Writes what belongs under a change or into a job's summary: the gate and the answers, totals, the layers
/// that are marked; the rest is folded. It has `maxMarkdownBytes` at most, and counts what it leaves out.
/// @param hideBelow as in ComparisonText.h
void writeComparisonMarkdown(std::ostream& out, const analysis::Comparison& comparison,
                             const std::optional<analysis::Gate>& gate, double hideBelow);

}  // namespace zeb::forms
