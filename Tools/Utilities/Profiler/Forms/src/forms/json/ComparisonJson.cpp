#include "forms/json/ComparisonJson.h"

#include <cstddef>
#include <nlohmann/json.hpp>

namespace zeb::forms {

namespace {

using analysis::Basis;
using analysis::GateOutcome;
using analysis::Total;
using nlohmann::ordered_json;

const char* keyOf(Basis basis) {
    switch (basis) {
        case Basis::oneEach:
            return "one-each";
        case Basis::several:
            return "several";
        case Basis::tooFew:
            return "too-few";
    }
    return "";
}

const char* keyOf(GateOutcome outcome) {
    switch (outcome) {
        case GateOutcome::pass:
            return "pass";
        case GateOutcome::slower:
            return "slower";
        case GateOutcome::incomparable:
            return "incomparable";
    }
    return "";
}

ordered_json orNull(const std::optional<double>& value) {
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

ordered_json jsonOf(const analysis::Range& range, std::size_t logs) {
    if (logs == 0) {
        return nullptr;
    }
    return {{"logs", logs}, {"median_us", range.median}, {"min_us", range.min}, {"max_us", range.max}};
}

ordered_json jsonOf(const analysis::ExecutionSpread& spread) {
    return {{"count", spread.count}, {"median_us", spread.medianUs}, {"p90_us", spread.p90Us}};
}

ordered_json jsonOf(const analysis::TotalChange& row) {
    const bool isOnBoth = row.baseLogs != 0 && row.newLogs != 0;
    ordered_json json = {{"total", keyOfTotal(row.total)},
                         {"base", jsonOf(row.base, row.baseLogs)},
                         {"new", jsonOf(row.changed, row.newLogs)},
                         {"change_us", isOnBoth ? ordered_json(row.changeUs()) : ordered_json(nullptr)},
                         {"change", orNull(row.change)}};
    json["low"] = row.interval ? ordered_json(row.interval->low) : ordered_json(nullptr);
    json["high"] = row.interval ? ordered_json(row.interval->high) : ordered_json(nullptr);
    json["p"] = orNull(row.p);
    json["verdict"] = nameOf(row.verdict);
    return json;
}

ordered_json jsonOf(const analysis::LayerChange& row) {
    return {{"name", row.name},
            {"base_us", row.baseUs},
            {"new_us", row.newUs},
            {"change_us", row.changeUs()},
            {"change", orNull(row.change)},
            {"p", orNull(row.p)},
            {"verdict", nameOf(row.verdict)}};
}

ordered_json jsonOf(const analysis::GraphComparison& graph);

template <typename Rows>
ordered_json listOf(const Rows& rows) {
    ordered_json list = ordered_json::array();
    for (const auto& row : rows) {
        list.push_back(jsonOf(row));
    }
    return list;
}

ordered_json jsonOf(const analysis::GraphComparison& graph) {
    ordered_json json = {{"base_name", graph.baseName},
                         {"new_name", graph.newName},
                         {"base_logs", graph.baseLogs},
                         {"new_logs", graph.newLogs}};
    json["base_executions"] = graph.executions ? jsonOf(graph.executions->first) : ordered_json(nullptr);
    json["new_executions"] = graph.executions ? jsonOf(graph.executions->second) : ordered_json(nullptr);
    json["totals"] = listOf(graph.totals);
    json["layers"] = listOf(graph.layers);
    json["types"] = listOf(graph.types);
    return json;
}

ordered_json jsonOf(const analysis::Comparison& comparison, const analysis::Gate& gate) {
    const analysis::GateResult result = judge(comparison, gate);
    return {{"total", keyOfTotal(gate.total)},
            {"fail_above", gate.maxGrowth},
            {"min_change_us", gate.minChangeUs},
            {"outcome", keyOf(result.outcome)},
            {"reasons", result.reasons}};
}

}  // namespace

const char* keyOfTotal(Total total) {
    switch (total) {
        case Total::marlix:
            return "marlix";
        case Total::backend:
            return "backend";
        case Total::accelerator:
            return "accelerator";
        case Total::ipc:
            return "ipc";
        case Total::copies:
            return "copies";
        case Total::queueWait:
            return "queue-wait";
        case Total::init:
            return "init";
        case Total::finalize:
            return "finalize";
        case Total::layers:
            return "layers";
    }
    return "";
}

void writeComparisonJson(std::ostream& out, const analysis::Comparison& comparison,
                         const std::optional<analysis::Gate>& gate) {
    ordered_json json = {{"schema", comparisonSchema},
                         {"basis", keyOf(comparison.basis)},
                         {"base", comparison.baseLogs},
                         {"new", comparison.newLogs},
                         {"different_levels", comparison.haveDifferentLevels},
                         {"warnings", comparison.warnings},
                         {"graphs", listOf(comparison.graphs)},
                         {"gone_graphs", comparison.goneGraphs},
                         {"new_graphs", comparison.addedGraphs}};
    json["gate"] = gate ? jsonOf(comparison, *gate) : ordered_json(nullptr);
    out << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace zeb::forms
