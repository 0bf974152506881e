#pragma once

#include <ostream>

#include "analysis/Comparison.h"

/// Two versions compared, for a console.
namespace zeb::forms {

struct ComparisonTextOptions {
    bool hasColour = false;    ///< red for slower, green for faster; the words are there in any case
    bool hasUnicode = false;   ///< for the sign of a cut name
    double hideBelow = 0.005;  ///< rows with a change below this share of the base's sum are only counted
};

/// Control characters in names show as question marks.
void printComparison(std::ostream& out, const analysis::Comparison& comparison,
                     const ComparisonTextOptions& options);

}  // namespace zeb::forms
