#include "analysis/runs/GraphMatching.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;
using NewNames = std::unordered_map<std::string_view, std::string_view>;

std::vector<SideGraph> graphsOf(Runs runs) {
    std::vector<SideGraph> graphs;
    std::unordered_map<std::string_view, std::size_t> positions;
    for (std::size_t log = 0; log < runs.size(); ++log) {
        for (const GraphSummary& graph : runs[log].graphs) {
            const auto [found, isNew] = positions.emplace(graph.name, graphs.size());
            if (isNew) {
                graphs.push_back({graph.name, std::vector<const GraphSummary*>(runs.size())});
            }
            graphs[found->second].logs[log] = &graph;
        }
    }
    return graphs;
}

// Gathers the times of layers over all logs of both sides.
class LayerGatherer {
public:
    explicit LayerGatherer(LayerRows& rows) : rows_(rows) {}

    void add(std::size_t side, std::size_t log, const std::vector<LayerTime>& layers, const NewNames& names) {
        std::unordered_map<std::string_view, std::size_t> equalNames;
        for (const LayerTime& layer : layers) {
            const auto renamed = names.find(layer.name);
            const std::string_view name = renamed == names.end() ? layer.name : renamed->second;
            LayerRow& row = rowOf(name, equalNames[name]++);
            row.us[side][log] = layer.us;
            row.isThere[side] = true;
        }
    }

private:
    LayerRow& rowOf(std::string_view name, std::size_t ordinal) {
        std::string key(name);  // a name has no NUL
        key.append(1, '\0').append(std::to_string(ordinal));
        const auto [found, isNew] = positions_.emplace(std::move(key), rows_.rows.size());
        if (isNew) {
            LayerRow& row = rows_.rows.emplace_back();
            row.name = name;
            row.us[0].resize(rows_.logs[0].size());
            row.us[1].resize(rows_.logs[1].size());
        }
        return rows_.rows[found->second];
    }

    LayerRows& rows_;
    std::unordered_map<std::string, std::size_t> positions_;
};

}  // namespace

std::size_t SideGraph::count() const {
    return logs.size() - static_cast<std::size_t>(std::count(logs.begin(), logs.end(), nullptr));
}

MatchedGraphs matchGraphs(Runs baseRuns, Runs newRuns) {
    MatchedGraphs matched;
    std::vector<SideGraph> base = graphsOf(baseRuns);
    std::vector<SideGraph> changed = graphsOf(newRuns);
    if (base.size() == 1 && changed.size() == 1) {
        matched.both.emplace_back(std::move(base.front()), std::move(changed.front()));
        return matched;
    }
    std::unordered_map<std::string_view, SideGraph*> newByName;
    for (SideGraph& graph : changed) {
        newByName.emplace(graph.name, &graph);
    }
    for (SideGraph& graph : base) {
        if (const auto found = newByName.find(graph.name); found != newByName.end()) {
            matched.both.emplace_back(std::move(graph), *found->second);
            newByName.erase(found);
        } else {
            matched.gone.push_back(graph.name);
        }
    }
    for (const SideGraph& graph : changed) {
        if (newByName.contains(graph.name)) {
            matched.added.push_back(graph.name);
        }
    }
    return matched;
}

// Logs of a lower level have no layers at all, and tell nothing about them.
LayerRows matchLayers(const SideGraph& base, const SideGraph& changed,
                      std::vector<LayerTime> GraphSummary::*layers, std::span<const Rename> renames,
                      bool isPaired) {
    const SideGraph* const sides[] = {&base, &changed};
    const auto haveLayers = [&](std::size_t side, std::size_t log) {
        const GraphSummary* const graph = sides[side]->logs[log];
        return graph != nullptr && !(graph->*layers).empty();
    };
    LayerRows rows;
    for (std::size_t side = 0; side < 2; ++side) {
        for (std::size_t log = 0; log < sides[side]->logs.size(); ++log) {
            if (haveLayers(side, log) && (!isPaired || haveLayers(1 - side, log))) {
                rows.logs[side].push_back(log);
            }
        }
    }
    if (rows.logs[0].empty() || rows.logs[1].empty()) {
        return rows;
    }
    const NewNames newNames(renames.begin(), renames.end());
    LayerGatherer gatherer(rows);
    for (std::size_t side = 0; side < 2; ++side) {
        for (std::size_t position = 0; position < rows.logs[side].size(); ++position) {
            const GraphSummary& graph = *sides[side]->logs[rows.logs[side][position]];
            gatherer.add(side, position, graph.*layers, side == 0 ? newNames : NewNames());
        }
    }
    return rows;
}

}  // namespace zeb::analysis
