#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "analysis/Run.h"
#include "console/ConsoleText.h"

/// The quantiles of executions as columns of a table for a console.
namespace zeb::forms {

inline constexpr std::size_t quantileCount = std::size(analysis::quantiles);

/// @param unit stands behind each title
inline std::array<console::Column, quantileCount> quantileColumns(std::string_view unit = {}) {
    std::array<console::Column, quantileCount> columns;
    for (std::size_t position = 0; position < quantileCount; ++position) {
        columns[position] = console::right(std::string(analysis::quantiles[position].title).append(unit));
    }
    return columns;
}

/// @param textOf makes the text of a time in us
/// @return a row's cells, "-" where there are too few executions for one
template <typename TextOf>
std::array<std::string, quantileCount> quantileCells(const analysis::Spread& spread, const TextOf& textOf) {
    std::array<std::string, quantileCount> cells;
    for (std::size_t position = 0; position < quantileCount; ++position) {
        const std::optional<double> us = spread.shownUs(position);
        cells[position] = us ? textOf(*us) : "-";
    }
    return cells;
}

}  // namespace zeb::forms
