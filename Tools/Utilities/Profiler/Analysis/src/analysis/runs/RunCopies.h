#pragma once

#include <span>
#include <string>
#include <vector>

#include "analysis/runs/RunSummary.h"

namespace zeb::analysis {

/// The runs of both sides of which none is a copy of another of its side.
struct CountedRuns {
    std::vector<RunSummary> base;
    std::vector<RunSummary> changed;
    std::vector<std::string> copies;  ///< the logs left out, that have another of their side once more
    std::vector<std::string>
        warnings;              ///< a sentence on each of these, and on each run that is on both sides
    bool haveSameRun = false;  ///< a run is on both sides
};

/// Runs are the same by their ids. One out of JSON of before there were ids is known by its figures.
/// @param isPaired a pair counts only where both of its runs do
CountedRuns countOnce(std::span<const RunSummary> base, std::span<const RunSummary> changed, bool isPaired);

}  // namespace zeb::analysis
