#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"

/// The keys of a comparison's JSON: each struct's members in the order of the documentation. A visitor is
/// called with each key and value.
namespace zeb::forms {

/// @return how the object names the total, "marlix" or "queue-wait"
std::string_view keyOf(analysis::Total total);
std::string_view keyOf(analysis::Basis basis);
std::string_view keyOf(analysis::GateOutcome outcome);
std::string_view keyOf(analysis::Answer::Kind kind);

/// A total on one side.
struct SideTotal {
    std::size_t logs;  ///< that have the figure
    analysis::Range us;
};

/// The executions on one side, without the first.
struct SideExecutions {
    const analysis::Spread& spread;
};

/// What a comparison was judged by, and how.
struct Judgement {
    const analysis::Gate& gate;
    analysis::GateResult result;
};

template <typename Visit>
void fieldsOf(const SideTotal& side, Visit visit) {
    visit("logs", side.logs);
    visit("mean_us", side.us.mean);
    visit("median_us", side.us.median);
    visit("min_us", side.us.min);
    visit("max_us", side.us.max);
}

template <typename Visit>
void fieldsOf(const SideExecutions& executions, Visit visit) {
    visit("count", executions.spread.count);
    for (std::size_t position = 0; position < std::size(analysis::quantiles); ++position) {
        visit(analysis::quantiles[position].key, executions.spread.quantilesUs[position]);
    }
}

template <typename Visit>
void fieldsOf(const analysis::TotalChange& row, Visit visit) {
    const auto sideOf = [](std::size_t logs, const analysis::Range& us) {
        return logs == 0 ? std::nullopt : std::optional(SideTotal{logs, us});
    };
    visit("total", keyOf(row.total));
    visit("name", row.name());
    visit("base", sideOf(row.baseLogs, row.base));
    visit("new", sideOf(row.newLogs, row.changed));
    visit("change_us", row.isOnBoth() ? std::optional(row.changeUs()) : std::nullopt);
    visit("change", row.change);
    visit("low", row.interval ? std::optional(row.interval->low) : std::nullopt);
    visit("high", row.interval ? std::optional(row.interval->high) : std::nullopt);
    visit("p", row.p);
    visit("spread", row.spread);
    visit("verdict", nameOf(row.verdict));
}

template <typename Visit>
void fieldsOf(const analysis::PartChange& part, Visit visit) {
    visit("name", part.name);
    visit("base_us", part.baseUs);
    visit("new_us", part.newUs);
    visit("change_us", part.changeUs());
    visit("verdict", nameOf(part.verdict));
    visit("parts", part.parts);
}

template <typename Visit>
void fieldsOf(const analysis::LayerChange& row, Visit visit) {
    visit("name", row.name);
    visit("base_us", row.baseUs);
    visit("new_us", row.newUs);
    visit("change_us", row.changeUs());
    visit("change", row.change);
    visit("excess", row.excess);
    visit("excess_us", row.excessUs);
    visit("p", row.p);
    visit("verdict", nameOf(row.verdict));
}

template <typename Visit>
void fieldsOf(const analysis::SharedChange& shared, Visit visit) {
    visit("change", shared.change);
    visit("low", shared.interval ? std::optional(shared.interval->low) : std::nullopt);
    visit("high", shared.interval ? std::optional(shared.interval->high) : std::nullopt);
    visit("verdict", nameOf(shared.verdict));
}

template <typename Visit>
void fieldsOf(const analysis::Answer& answer, Visit visit) {
    visit("kind", keyOf(answer.kind));
    visit("text", answer.text);
    visit("causes", answer.causes);
}

template <typename Visit>
void fieldsOf(const analysis::GraphComparison& graph, Visit visit) {
    const auto& executions = graph.executions;
    visit("base_name", graph.baseName);
    visit("new_name", graph.newName);
    visit("base_logs", graph.baseLogs);
    visit("new_logs", graph.newLogs);
    visit("answer", graph.answer);
    visit("base_executions", executions ? std::optional(SideExecutions{executions->first}) : std::nullopt);
    visit("new_executions", executions ? std::optional(SideExecutions{executions->second}) : std::nullopt);
    visit("shared", graph.shared);
    visit("totals", graph.totals);
    visit("inference", graph.inference);
    visit("layers", graph.layers);
    visit("types", graph.types);
}

template <typename Visit>
void fieldsOf(const analysis::Comparison& comparison, Visit visit) {
    visit("basis", keyOf(comparison.basis));
    visit("base", comparison.baseLogs);
    visit("new", comparison.newLogs);
    visit("different_levels", comparison.haveDifferentLevels);
    visit("copies", comparison.copies);
    visit("same_run", comparison.haveSameRun);
    visit("warnings", comparison.warnings);
    visit("graphs", comparison.graphs);
    visit("gone_graphs", comparison.goneGraphs);
    visit("new_graphs", comparison.addedGraphs);
}

template <typename Visit>
void fieldsOf(const Judgement& judgement, Visit visit) {
    visit("total", keyOf(judgement.gate.total));
    visit("fail_above", judgement.gate.maxGrowth);
    visit("fail_layer_above", judgement.gate.maxLayerGrowth);
    visit("min_change_us", judgement.gate.minChangeUs.value_or(0.0));
    visit("fail_unsure", judgement.gate.failsUnsure);
    visit("outcome", keyOf(judgement.result.outcome));
    visit("reasons", judgement.result.reasons);
}

}  // namespace zeb::forms
