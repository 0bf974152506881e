#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "analysis/runs/RunSummary.h"

/// Which graph, and which layer, of one side is which of the other.
namespace zeb::analysis {

/// A graph over the logs of a side.
struct SideGraph {
    std::string name;
    std::vector<const GraphSummary*> logs;  ///< one a log; null in those that lack the graph

    [[nodiscard]] std::size_t count() const;  ///< of logs that have it
};

struct MatchedGraphs {
    std::vector<std::pair<SideGraph, SideGraph>> both;  ///< base and new, in the order of the base
    std::vector<std::string> gone;
    std::vector<std::string> added;
};

/// Graphs are matched by name; where each side has just one, they are matched whatever their names.
/// @param base,changed have to outlive the result
MatchedGraphs matchGraphs(std::span<const RunSummary> base, std::span<const RunSummary> changed);

/// A ZEB layer's name in the base, and the one that it has in the new version.
using Rename = std::pair<std::string, std::string>;

/// The times of a layer, one a log of `LayerRows`; a log that lacks a layer has 0.
struct LayerRow {
    std::string name;  ///< the new one, where it was renamed
    std::vector<double> us[2];
    bool isThere[2] = {false, false};
};

/// Of the base, and of the new side.
struct LayerRows {
    std::vector<std::size_t> logs[2];  ///< positions of those that have data on layers
    std::vector<LayerRow> rows;        ///< none when a side has no such log
};

/// Layers are matched by name, equal names by their order.
/// @param isPaired takes only logs whose other one has layers too
LayerRows matchLayers(const SideGraph& base, const SideGraph& changed,
                      std::vector<LayerTime> GraphSummary::*layers, std::span<const Rename> renames,
                      bool isPaired);

}  // namespace zeb::analysis
