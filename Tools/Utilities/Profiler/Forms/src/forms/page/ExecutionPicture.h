#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "analysis/Run.h"
#include "forms/json/JsonWriter.h"

/// The executions of a graph, however many, as few figures as a chart can show.
namespace zeb::forms {

/// The executions of a run that are shown one by one; of a run that has more, each graph has its share of
/// them.
inline constexpr std::size_t maxSingleExecutions = 4000;

/// Executions without both times, and those that took none, are in no figure: they are in no statistics
/// either.
struct ExecutionPicture {
    /// Neighbours in the log.
    struct Bin {
        std::uint64_t count = 0;  ///< 0: the others mean nothing
        double minUs = 0.0;
        double medianUs = 0.0;
        double maxUs = 0.0;
    };

    std::uint64_t count = 0;    ///< of all executions
    std::uint64_t binSize = 1;  ///< the last bin may have less
    std::vector<Bin> bins;
    double fromUs = 0.0;                 ///< where the histogram begins
    double columnUs = 0.0;               ///< how wide each of its columns is
    std::vector<std::uint64_t> columns;  ///< from the shortest execution to the bulk of the long ones
    std::uint64_t above = 0;             ///< executions behind the last column
};

/// @return how many executions of a graph have a bin each; graphs of more are binned, to so many at most
std::size_t maxSinglesOfGraph(const analysis::Run& run);

/// @param maxBins 1 or more
ExecutionPicture pictureOf(const analysis::Graph& graph, std::size_t maxBins);

/// Writes the picture as a JSON object. Bins of one execution have a median alone.
void writePicture(JsonWriter& json, const ExecutionPicture& picture);

/// Writes the list of the quantiles that stand below it: key, title and how many executions each takes.
void writeQuantiles(JsonWriter& json);

}  // namespace zeb::forms
