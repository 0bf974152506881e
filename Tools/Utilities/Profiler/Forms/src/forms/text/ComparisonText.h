#pragma once

#include <cstddef>
#include <optional>
#include <ostream>

#include "analysis/runs/Comparison.h"

/// Two versions compared, for a console.
namespace zeb::forms {

struct ComparisonTextOptions {
    bool hasColour = false;    ///< red for slower, green for faster; the words are there in any case
    bool hasUnicode = false;   ///< for the sign of a cut name
    double hideBelow = 0.005;  ///< rows with a change below this share of the base's sum are only counted
    std::size_t rows = 20;     ///< of a table of layers, at most; those that are marked come first
    std::optional<std::size_t> width = {};  ///< columns; nothing where lines may have any length
};

/// The answers first, then what is compared, then the tables. A table that is too wide loses its ranges, p
/// and intervals, in that order, and its names their middle. Control characters in names show as question
/// marks.
void printComparison(std::ostream& out, const analysis::Comparison& comparison,
                     const ComparisonTextOptions& options);

}  // namespace zeb::forms
