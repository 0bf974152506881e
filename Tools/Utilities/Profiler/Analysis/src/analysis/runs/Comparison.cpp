#include "analysis/runs/Comparison.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "analysis/runs/Answer.h"
#include "analysis/runs/ComparisonWarnings.h"
#include "analysis/runs/LayerComparison.h"
#include "analysis/runs/PartComparison.h"
#include "analysis/runs/RunCopies.h"

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;

bool areEnough(std::size_t base, std::size_t changed, bool isPaired) {
    return std::min(base, changed) >= (isPaired ? minPairs : minLogs);
}

Basis basisOf(std::size_t base, std::size_t changed, bool isPaired) {
    if (base == 1 && changed == 1 && !isPaired) {
        return Basis::oneEach;
    }
    if (!areEnough(base, changed, isPaired)) {
        return Basis::tooFew;
    }
    return isPaired ? Basis::paired : Basis::several;
}

Verdict directionOf(double change) {
    if (change == 0.0) {
        return Verdict::same;
    }
    return change > 0.0 ? Verdict::slower : Verdict::faster;
}

// One graph on both sides.
class GraphComparer {
public:
    GraphComparer(const SideGraph& base, const SideGraph& changed, Basis basis, bool isPaired)
        : base_(base), changed_(changed), basis_(basis), isPaired_(isPaired) {}

    [[nodiscard]] GraphComparison compare(std::span<const Rename> renames) const {
        GraphComparison comparison;
        comparison.baseName = base_.name;
        comparison.newName = changed_.name;
        comparison.baseLogs = base_.count();
        comparison.newLogs = changed_.count();
        if (basis_ == Basis::oneEach) {
            comparison.executions = {base_.logs.front()->spread, changed_.logs.front()->spread};
        }
        for (std::size_t position = 0; position < totalCount; ++position) {
            addTotal(comparison, static_cast<Total>(position));
        }
        comparison.inference = inference();
        addLayers(comparison, renames);
        return comparison;
    }

private:
    // Logs that lack the graph, or the figure, are no samples of it; of a pair neither is.
    void addSamples(Total total, std::vector<double>& base, std::vector<double>& changed) const {
        const auto usOf = [total](const SideGraph& side, std::size_t log) {
            return side.logs[log] == nullptr ? std::nullopt : side.logs[log]->totalUs(total);
        };
        const auto add = [&](const SideGraph& side, const SideGraph& other, std::vector<double>& sample) {
            for (std::size_t log = 0; log < side.logs.size(); ++log) {
                const auto us = usOf(side, log);
                if (us && (!isPaired_ || usOf(other, log))) {
                    sample.push_back(*us);
                }
            }
        };
        add(base_, changed_, base);
        add(changed_, base_, changed);
    }

    [[nodiscard]] Basis basisWith(std::size_t base, std::size_t changed) const {
        const bool isKept = basis_ == Basis::oneEach || areEnough(base, changed, isPaired_);
        return isKept ? basis_ : Basis::tooFew;
    }

    void addTotal(GraphComparison& comparison, Total total) const {
        std::vector<double> base;
        std::vector<double> changed;
        addSamples(total, base, changed);
        if (base.empty() && changed.empty()) {
            return;
        }
        TotalChange& row = comparison.totals.emplace_back();
        row.total = total;
        row.holdsQueueWait = holdsQueueWait(base_) || holdsQueueWait(changed_);
        row.baseLogs = base.size();
        row.newLogs = changed.size();
        row.base = rangeOf(base);
        row.changed = rangeOf(changed);
        if (!row.isOnBoth()) {
            row.verdict = base.empty() ? Verdict::added : Verdict::gone;
            return;
        }
        const Basis basis = basisWith(base.size(), changed.size());
        if (basis == Basis::oneEach) {
            row.verdict = directionOf(row.changed.mean - row.base.mean);
            if (row.base.mean > 0.0) {
                row.change = row.changed.mean / row.base.mean - 1.0;
            }
        } else if (basis != Basis::tooFew) {
            judge(row, isPaired_ ? shiftOfPairs(base, changed) : shiftBetween(base, changed));
            row.spread = row.interval ? largeSpread(base, changed, isPaired_) : std::nullopt;
        }
    }

    static bool holdsQueueWait(const SideGraph& side) {
        return std::any_of(side.logs.begin(), side.logs.end(), [](const GraphSummary* graph) {
            return graph != nullptr && graph->holdsQueueWait;
        });
    }

    [[nodiscard]] std::optional<PartChange> inference() const {
        std::vector<double> base;
        std::vector<double> changed;
        addSamples(Total::average, base, changed);
        return compareInferences(base_, changed_, basisWith(base.size(), changed.size()), isPaired_);
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

    void addLayers(GraphComparison& comparison, std::span<const Rename> renames) const {
        const LayerRows layers = matchLayers(base_, changed_, &GraphSummary::layers, renames, isPaired_);
        const LayerRows types = matchLayers(base_, changed_, &GraphSummary::types, {}, isPaired_);
        const auto factors = layers.rows.empty() ? std::nullopt : factorsOf(layers);
        if (factors) {
            comparison.shared = sharedChange(*factors, basisOfRows(layers));
        }
        const auto compareRows = [&](const LayerRows& rows) {
            const bool isSameLogs = factors && std::equal(rows.logs, rows.logs + 2, factors->logs);
            return compareLayers(rows, basisOfRows(rows), isSameLogs ? &*factors : nullptr);
        };
        comparison.layers = compareRows(layers);
        comparison.types = compareRows(types);
    }

    [[nodiscard]] Basis basisOfRows(const LayerRows& rows) const {
        return basisWith(rows.logs[0].size(), rows.logs[1].size());
    }

    const SideGraph& base_;
    const SideGraph& changed_;
    Basis basis_;
    bool isPaired_;
};

bool haveLayer(Runs runs, const std::string& name) {
    const auto hasName = [&name](const LayerTime& layer) { return layer.name == name; };
    return std::any_of(runs.begin(), runs.end(), [&](const RunSummary& run) {
        return std::any_of(run.graphs.begin(), run.graphs.end(), [&](const GraphSummary& graph) {
            return std::any_of(graph.layers.begin(), graph.layers.end(), hasName);
        });
    });
}

void warn(Comparison& comparison, Runs base, Runs changed, std::span<const Rename> renames) {
    for (const std::string& difference : differencesOf(base, changed)) {
        comparison.warnings.push_back("The " + difference + '.');
    }
    for (const auto& [from, to] : renames) {
        for (const auto& [runs, name, side] :
             {std::tuple(base, &from, "base"), std::tuple(changed, &to, "new side")}) {
            if (!haveLayer(runs, *name)) {
                comparison.warnings.push_back("A layer is renamed that the " + std::string(side) +
                                              " does not have: " + *name + ".");
            }
        }
    }
    for (const GraphComparison& graph : comparison.graphs) {
        if (graph.baseName != graph.newName) {
            comparison.warnings.push_back(
                "The graphs have different names, and are compared as the only ones: base " + graph.baseName +
                "; new " + graph.newName + ".");
        }
    }
}

// What is not known is neither new nor gone.
void leaveOutUnknownStart(Comparison& comparison, Runs base, Runs changed) {
    std::vector<std::string> lacking;
    for (const Runs side : {base, changed}) {
        for (const RunSummary& run : side) {
            if (run.lacksStart) {
                lacking.push_back(run.logFile);
            }
        }
    }
    if (lacking.empty()) {
        return;
    }
    const std::string others =
        lacking.size() == 1 ? " is" : " and " + std::to_string(lacking.size() - 1) + " more are";
    comparison.warnings.push_back(lacking.front() + others +
                                  " JSON of an earlier version, which has neither Init nor Finalize.");
    for (GraphComparison& graph : comparison.graphs) {
        std::erase_if(graph.totals, [](const TotalChange& row) {
            return (row.total == Total::init || row.total == Total::finalize) && !row.isOnBoth();
        });
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

double TotalChange::changeUs() const {
    const double difference = changed.mean - base.mean;
    const bool isSure = verdict == Verdict::slower || verdict == Verdict::faster;
    return isSure && change && *change * difference < 0.0 ? *change * base.mean : difference;
}

const TotalChange* GraphComparison::find(Total total) const {
    const auto found = std::find_if(totals.begin(), totals.end(),
                                    [total](const TotalChange& row) { return row.total == total; });
    return found == totals.end() ? nullptr : &*found;
}

Comparison compare(Runs base, Runs changed, const CompareSettings& settings) {
    CountedRuns runs = countOnce(base, changed, settings.isPaired);
    Comparison comparison;
    comparison.basis = basisOf(runs.base.size(), runs.changed.size(), settings.isPaired);
    comparison.isPaired = settings.isPaired;
    comparison.baseLogs = filesOf(runs.base);
    comparison.newLogs = filesOf(runs.changed);
    comparison.copies = std::move(runs.copies);
    comparison.haveSameRun = runs.haveSameRun;
    const auto differs = [&](const RunSummary& run) { return run.level != runs.base.front().level; };
    comparison.haveDifferentLevels = std::any_of(runs.base.begin(), runs.base.end(), differs) ||
                                     std::any_of(runs.changed.begin(), runs.changed.end(), differs);
    MatchedGraphs graphs = matchGraphs(runs.base, runs.changed);
    const std::vector<std::string> clockDifferences = clockDifferencesOf(runs.base, runs.changed);
    for (const auto& [ofBase, ofChanged] : graphs.both) {
        GraphComparison& graph = comparison.graphs.emplace_back(
            GraphComparer(ofBase, ofChanged, comparison.basis, settings.isPaired).compare(settings.renames));
        graph.answer = answerOn(graph, comparison.basis, clockDifferences);
    }
    comparison.goneGraphs = std::move(graphs.gone);
    comparison.addedGraphs = std::move(graphs.added);
    warn(comparison, runs.base, runs.changed, settings.renames);
    leaveOutUnknownStart(comparison, runs.base, runs.changed);
    comparison.warnings.insert(comparison.warnings.end(), runs.warnings.begin(), runs.warnings.end());
    return comparison;
}

}  // namespace zeb::analysis
