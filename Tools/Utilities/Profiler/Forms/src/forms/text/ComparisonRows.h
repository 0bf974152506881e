#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/runs/Comparison.h"

/// What the forms of a comparison that are text have in common: the cells of a row, and which rows show.
namespace zeb::forms {

/// @return the mean of a side, with its range where it is wanted and there are several logs; "-" without a
/// log
std::string rangeText(const analysis::TotalChange& row, const analysis::Range& range, std::size_t logs,
                      bool isWanted);

std::string changeUsOf(const analysis::TotalChange& row);
std::string changeUsOf(const analysis::LayerChange& row);

/// @return a time of the row in microseconds, with the digits that its times deserve
std::string timeOf(const analysis::LayerChange& row, double us);

/// @return the change in per cent; "~" where it is not sure
std::string changeOf(const analysis::TotalChange& row);
/// @param hasShared the change is split in what all layers share and what lies beyond, of which one is sure
std::string changeOf(const analysis::LayerChange& row, analysis::Basis basis, bool hasShared);

/// @return what lies beyond what the layers share; "~" where it is not sure
std::string beyondOf(const analysis::LayerChange& row);

/// @return empty for none
std::string pText(const std::optional<double>& p);

/// @return the verdict, but nothing for an unsure one
std::string wordOf(analysis::Verdict verdict);

/// @return a sentence on what all layers share
std::string sharedWords(const analysis::SharedChange& shared);

/// The rows of a table of layers that show, and what becomes of the others.
struct ShownRows {
    std::vector<const analysis::LayerChange*> shown;
    std::size_t hidden = 0;
    analysis::LayerChange others;  ///< the hidden ones together, named "[3 others]"
    analysis::LayerChange sum;     ///< all
};

/// @param hideBelow share of the base's sum
/// @param most rows; those that are marked are taken first
ShownRows shownRows(const std::vector<analysis::LayerChange>& rows, double hideBelow, std::size_t most);

}  // namespace zeb::forms
