#pragma once

#include <ostream>

#include "analysis/runs/History.h"

/// How times went over versions, for a console.
namespace zeb::forms {

struct HistoryTextOptions {
    bool hasColour = false;   ///< red for slower, green for faster; the words are there in any case
    bool hasUnicode = false;  ///< for the pictures of courses, and the sign of a cut name
};

/// Series of layers without a step are only counted. Control characters in names show as question marks.
void printHistory(std::ostream& out, const analysis::History& history, analysis::RankSumChance& chance,
                  const HistoryTextOptions& options);

}  // namespace zeb::forms
