#include "analysis/Comparison.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;
using Graphs = std::vector<const GraphSummary*>;

constexpr std::size_t maxListed = 3;  // values of a side in a warning
// A log's averages are cut to whole microseconds, so a move by no more may be all rounding.
constexpr double resolutionUs = 1.0;

Basis basisOf(std::size_t base, std::size_t changed) {
    if (base == 1 && changed == 1) {
        return Basis::oneEach;
    }
    return base >= minLogs && changed >= minLogs ? Basis::several : Basis::tooFew;
}

Verdict directionOf(double change) {
    if (change == 0.0) {
        return Verdict::same;
    }
    return change > 0.0 ? Verdict::slower : Verdict::faster;
}

// Something about a run that explains changes when it differs.
struct Fact {
    std::string_view name;
    std::string (*textOf)(const RunSummary& run);
};

std::string told(const std::string& text) {
    return text.empty() ? "not told" : text;
}

// At most a few of the texts, and how many there are more.
std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (std::size_t position = 0; position < std::min(texts.size(), maxListed); ++position) {
        list.append(position == 0 ? "" : ", ").append(texts[position]);
    }
    const std::size_t more = texts.size() - std::min(texts.size(), maxListed);
    return more == 0 ? list : list + " and " + std::to_string(more) + " more";
}

std::vector<std::string> withoutRepeats(std::vector<std::string> texts) {
    std::unordered_set<std::string> seen;
    texts.erase(std::remove_if(texts.begin(), texts.end(),
                               [&seen](const std::string& text) { return !seen.insert(text).second; }),
                texts.end());
    return texts;
}

template <std::uint32_t GraphSummary::*clock>
std::string clocksOf(const RunSummary& run) {
    std::vector<std::string> clocks;
    for (const GraphSummary& graph : run.graphs) {
        const std::uint32_t hz = graph.*clock;
        clocks.push_back(hz == 0 ? "" : std::to_string(hz / 1'000'000) + " MHz");
    }
    return told(listed(withoutRepeats(std::move(clocks))));
}

std::string levelOf(const RunSummary& run) {
    if (!run.level) {
        return told("");
    }
    switch (*run.level) {
        case Level::basic:
            return "basic";
        case Level::detailed:
            return "detailed";
        case Level::internal:
            return "internal";
    }
    return "unknown";
}

constexpr Fact facts[] = {
    {"profiling levels", levelOf},
    {"kinds of execution",
     [](const RunSummary& run) { return std::string(run.isAsync ? "asynchronous" : "synchronous"); }},
    {"DSP clocks", clocksOf<&GraphSummary::dspClockHz>},
    {"Krel clocks", clocksOf<&GraphSummary::krelClockHz>},
    {"backend versions", [](const RunSummary& run) { return told(run.backendVersion); }},
    {"generators", [](const RunSummary& run) { return told(run.generator); }},
};

std::vector<std::string> textsOf(const Fact& fact, Runs runs) {
    std::vector<std::string> texts;
    for (const RunSummary& run : runs) {
        texts.push_back(fact.textOf(run));
    }
    return withoutRepeats(std::move(texts));
}

void warnOfFacts(Comparison& comparison, Runs base, Runs changed) {
    for (const Fact& fact : facts) {
        const std::vector<std::string> ofBase = textsOf(fact, base);
        const std::vector<std::string> ofChanged = textsOf(fact, changed);
        if (ofBase.size() > 1 || ofBase != ofChanged) {
            comparison.warnings.push_back("The " + std::string(fact.name) + " differ: base " +
                                          listed(ofBase) + "; new " + listed(ofChanged) + ".");
        }
    }
}

void warnOfRepeatedLogs(Comparison& comparison) {
    std::unordered_set<std::string_view> seen;
    for (const auto* const logs : {&comparison.baseLogs, &comparison.newLogs}) {
        for (const std::string& log : *logs) {
            if (!seen.insert(log).second) {
                comparison.warnings.push_back(log + " is given more than once; a log is one sample.");
            }
        }
    }
}

// A side's graphs of one name, of the logs that have one.
struct NamedGraphs {
    std::string name;
    Graphs graphs;
};

std::vector<NamedGraphs> graphsOf(Runs runs) {
    std::vector<NamedGraphs> named;
    std::unordered_map<std::string_view, std::size_t> positions;
    for (const RunSummary& run : runs) {
        for (const GraphSummary& graph : run.graphs) {
            const auto [found, isNew] = positions.emplace(graph.name, named.size());
            if (isNew) {
                named.push_back({graph.name, {}});
            }
            named[found->second].graphs.push_back(&graph);
        }
    }
    return named;
}

// Gathers the times of layers over all logs of both sides, matched by name and by the order among equal ones.
class LayerRows {
public:
    LayerRows(std::size_t baseLogs, std::size_t newLogs) : sizes_{baseLogs, newLogs} {}

    void add(std::size_t side, std::size_t log, const std::vector<LayerTime>& layers,
             const std::unordered_map<std::string_view, std::string_view>& names) {
        std::unordered_map<std::string_view, std::size_t> equalNames;
        for (const LayerTime& layer : layers) {
            const auto renamed = names.find(layer.name);
            const std::string_view name = renamed == names.end() ? layer.name : renamed->second;
            Row& row = rowOf(name, equalNames[name]++);
            row.us[side][log] = layer.us;
            row.isThere[side] = true;
        }
    }

    std::vector<LayerChange> changes(Basis basis) const {
        std::vector<LayerChange> all;
        all.reserve(rows_.size());
        for (const Row& row : rows_) {
            all.push_back(changeOf(row, basis));
        }
        if (basis == Basis::several) {
            judge(all);
        }
        std::stable_sort(all.begin(), all.end(), [](const LayerChange& left, const LayerChange& right) {
            return std::abs(left.changeUs()) > std::abs(right.changeUs());
        });
        return all;
    }

private:
    struct Row {
        std::string name;
        std::vector<double> us[2];
        bool isThere[2] = {false, false};
    };

    Row& rowOf(std::string_view name, std::size_t ordinal) {
        std::string key(name);  // a name has no NUL
        key.append(1, '\0').append(std::to_string(ordinal));
        const auto [found, isNew] = positions_.emplace(std::move(key), rows_.size());
        if (isNew) {
            Row& row = rows_.emplace_back();
            row.name = name;
            row.us[0].resize(sizes_[0]);
            row.us[1].resize(sizes_[1]);
        }
        return rows_[found->second];
    }

    static double meanOf(const std::vector<double>& values) {
        return values.empty()
                   ? 0.0
                   : std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
    }

    static LayerChange changeOf(const Row& row, Basis basis) {
        LayerChange change;
        change.name = row.name;
        change.baseUs = meanOf(row.us[0]);
        change.newUs = meanOf(row.us[1]);
        if (change.baseUs > 0.0) {
            change.change = change.newUs / change.baseUs - 1.0;
        }
        if (!row.isThere[0] || !row.isThere[1]) {
            change.verdict = row.isThere[0] ? Verdict::gone : Verdict::added;
            change.change.reset();
        } else if (basis == Basis::oneEach) {
            change.verdict = directionOf(change.changeUs());
        } else if (basis == Basis::several) {
            change.p = welchP(row.us[0], row.us[1]);
        }
        return change;
    }

    static void judge(std::vector<LayerChange>& changes) {
        std::vector<double> p;
        for (const LayerChange& change : changes) {
            if (change.p) {
                p.push_back(*change.p);
            }
        }
        const std::vector<double> corrected = holm(p);
        auto next = corrected.begin();
        for (LayerChange& change : changes) {
            if (!change.p) {
                continue;
            }
            change.p = *next++;
            if (std::abs(change.changeUs()) <= resolutionUs) {
                change.p.reset();
            } else if (*change.p <= significance) {
                change.verdict = directionOf(change.changeUs());
            }
        }
    }

    std::size_t sizes_[2];
    std::vector<Row> rows_;
    std::unordered_map<std::string, std::size_t> positions_;
};

// One graph on both sides.
class GraphComparer {
public:
    GraphComparer(const NamedGraphs& base, const NamedGraphs& changed, Basis basis)
        : base_(base), changed_(changed), basis_(basis) {}

    GraphComparison compare(std::span<const Rename> renames) const {
        GraphComparison comparison{.baseName = base_.name,
                                   .newName = changed_.name,
                                   .baseLogs = base_.graphs.size(),
                                   .newLogs = changed_.graphs.size(),
                                   .executions = {},
                                   .totals = {},
                                   .layers = {},
                                   .types = {}};
        if (basis_ == Basis::oneEach) {
            comparison.executions = {base_.graphs.front()->spread, changed_.graphs.front()->spread};
        }
        for (std::size_t position = 0; position < totalCount; ++position) {
            addTotal(comparison, static_cast<Total>(position));
        }
        comparison.layers = layers(&GraphSummary::layers, renames);
        comparison.types = layers(&GraphSummary::types, {});
        return comparison;
    }

private:
    static std::vector<double> sampleOf(const Graphs& graphs, Total total) {
        std::vector<double> sample;
        for (const GraphSummary* const graph : graphs) {
            if (const auto& us = graph->totalUs(total)) {
                sample.push_back(*us);
            }
        }
        return sample;
    }

    // Logs that lack the graph, or the figure, are no samples of it.
    [[nodiscard]] Basis basisWith(std::size_t base, std::size_t changed) const {
        return basis_ == Basis::several ? (base >= minLogs && changed >= minLogs ? basis_ : Basis::tooFew)
                                        : basis_;
    }

    void addTotal(GraphComparison& comparison, Total total) const {
        const std::vector<double> base = sampleOf(base_.graphs, total);
        const std::vector<double> changed = sampleOf(changed_.graphs, total);
        if (base.empty() && changed.empty()) {
            return;
        }
        TotalChange& row = comparison.totals.emplace_back(TotalChange{.total = total,
                                                                      .baseLogs = base.size(),
                                                                      .newLogs = changed.size(),
                                                                      .base = rangeOf(base),
                                                                      .changed = rangeOf(changed),
                                                                      .change = {},
                                                                      .interval = {},
                                                                      .p = {}});
        if (base.empty() || changed.empty()) {
            row.verdict = base.empty() ? Verdict::added : Verdict::gone;
            return;
        }
        const Basis basis = basisWith(base.size(), changed.size());
        if (basis == Basis::oneEach) {
            row.verdict = directionOf(row.changeUs());
            if (row.base.median > 0.0) {
                row.change = row.changed.median / row.base.median - 1.0;
            }
        } else if (basis == Basis::several) {
            judge(row, shiftBetween(base, changed));
        }
    }

    static void judge(TotalChange& row, const std::optional<Shift>& shift) {
        if (!shift) {
            return;
        }
        row.change = shift->change;
        row.interval = shift->interval;
        row.p = shift->p;
        if (row.interval && !row.interval->holds(0.0)) {
            row.verdict = directionOf(shift->change);
        }
    }

    static Graphs withLayers(const Graphs& graphs, std::vector<LayerTime> GraphSummary::*member) {
        Graphs found;
        std::copy_if(graphs.begin(), graphs.end(), std::back_inserter(found),
                     [member](const GraphSummary* graph) { return !(graph->*member).empty(); });
        return found;
    }

    // Logs of a lower level have no layers at all, and tell nothing about them.
    [[nodiscard]] std::vector<LayerChange> layers(std::vector<LayerTime> GraphSummary::*member,
                                                  std::span<const Rename> renames) const {
        const Graphs base = withLayers(base_.graphs, member);
        const Graphs changed = withLayers(changed_.graphs, member);
        if (base.empty() || changed.empty()) {
            return {};
        }
        std::unordered_map<std::string_view, std::string_view> names;
        for (const auto& [from, to] : renames) {
            names.emplace(from, to);
        }
        LayerRows rows(base.size(), changed.size());
        for (std::size_t log = 0; log < base.size(); ++log) {
            rows.add(0, log, base[log]->*member, names);
        }
        for (std::size_t log = 0; log < changed.size(); ++log) {
            rows.add(1, log, changed[log]->*member, {});
        }
        return rows.changes(basisWith(base.size(), changed.size()));
    }

    const NamedGraphs& base_;
    const NamedGraphs& changed_;
    Basis basis_;
};

bool haveLayer(const std::vector<NamedGraphs>& sides, const std::string& name) {
    for (const NamedGraphs& named : sides) {
        for (const GraphSummary* const graph : named.graphs) {
            if (std::any_of(graph->layers.begin(), graph->layers.end(),
                            [&name](const LayerTime& layer) { return layer.name == name; })) {
                return true;
            }
        }
    }
    return false;
}

void addGraphs(Comparison& comparison, Runs baseRuns, Runs newRuns, std::span<const Rename> renames) {
    std::vector<NamedGraphs> base = graphsOf(baseRuns);
    std::vector<NamedGraphs> changed = graphsOf(newRuns);
    for (const auto& [from, to] : renames) {
        for (const auto& [side, name, sideName] :
             {std::tuple(&base, &from, "base"), std::tuple(&changed, &to, "new side")}) {
            if (!haveLayer(*side, *name)) {
                comparison.warnings.push_back("A layer is renamed that the " + std::string(sideName) +
                                              " does not have: " + *name + ".");
            }
        }
    }
    if (base.size() == 1 && changed.size() == 1) {
        if (base.front().name != changed.front().name) {
            comparison.warnings.push_back(
                "The graphs have different names, and are compared as the only ones: base " +
                base.front().name + "; new " + changed.front().name + ".");
        }
        comparison.graphs.push_back(
            GraphComparer(base.front(), changed.front(), comparison.basis).compare(renames));
        return;
    }
    std::unordered_map<std::string_view, const NamedGraphs*> newByName;
    for (const NamedGraphs& graphs : changed) {
        newByName.emplace(graphs.name, &graphs);
    }
    for (const NamedGraphs& graphs : base) {
        if (const auto found = newByName.find(graphs.name); found != newByName.end()) {
            comparison.graphs.push_back(
                GraphComparer(graphs, *found->second, comparison.basis).compare(renames));
            newByName.erase(found);
        } else {
            comparison.goneGraphs.push_back(graphs.name);
        }
    }
    for (const NamedGraphs& graphs : changed) {
        if (newByName.contains(graphs.name)) {
            comparison.addedGraphs.push_back(graphs.name);
        }
    }
}

std::vector<std::string> filesOf(Runs runs) {
    std::vector<std::string> files;
    for (const RunSummary& run : runs) {
        files.push_back(run.logFile);
    }
    return files;
}

}  // namespace

std::string_view nameOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::unsure:
            return "unsure";
        case Verdict::slower:
            return "slower";
        case Verdict::faster:
            return "faster";
        case Verdict::same:
            return "same";
        case Verdict::added:
            return "new";
        case Verdict::gone:
            return "gone";
    }
    return "";
}

const TotalChange* GraphComparison::find(Total total) const {
    const auto found = std::find_if(totals.begin(), totals.end(),
                                    [total](const TotalChange& row) { return row.total == total; });
    return found == totals.end() ? nullptr : &*found;
}

Comparison compare(Runs base, Runs changed, std::span<const Rename> renames) {
    Comparison comparison{.basis = basisOf(base.size(), changed.size()),
                          .baseLogs = filesOf(base),
                          .newLogs = filesOf(changed),
                          .warnings = {},
                          .graphs = {},
                          .goneGraphs = {},
                          .addedGraphs = {}};
    const auto differs = [&](const RunSummary& run) { return run.level != base.front().level; };
    comparison.haveDifferentLevels = std::any_of(base.begin(), base.end(), differs) ||
                                     std::any_of(changed.begin(), changed.end(), differs);
    warnOfFacts(comparison, base, changed);
    warnOfRepeatedLogs(comparison);
    addGraphs(comparison, base, changed, renames);
    return comparison;
}

}  // namespace zeb::analysis
