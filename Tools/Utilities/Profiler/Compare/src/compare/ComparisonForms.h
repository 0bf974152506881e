#pragma once

#include <span>

#include "analysis/runs/Comparison.h"
#include "command/Forms.h"
#include "compare/CompareOptions.h"

namespace zeb::compare {

/// What a form of a comparison is made of.
struct ComparisonFormInput {
    const analysis::Comparison& comparison;
    const CompareOptions& options;
};

/// The table of them, in the order in which they are written. A new one is a row here and a printer in Forms.
std::span<const command::Form<ComparisonFormInput>> comparisonForms();

}  // namespace zeb::compare
