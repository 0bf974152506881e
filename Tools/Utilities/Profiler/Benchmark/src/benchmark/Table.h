#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "benchmark/Figures.h"

namespace zeb::bench {

/// The figures of one round over the two logs of a shape.
struct Round {
    Figures small;
    Figures large;  ///< of a log four times as large
};

/// All rounds of a shape.
struct ShapeResult {
    std::string_view title;
    std::vector<Round> rounds;
};

/// Writes one row for each shape. Ratios are taken within a round, and a cell is the median over the rounds.
void printReaderTable(std::ostream& out, const std::vector<ShapeResult>& results);
/// Writes one row for each form and shape.
void printFormTable(std::ostream& out, const std::vector<ShapeResult>& results);

}  // namespace zeb::bench
