#include "analysis/Gate.h"

#include <algorithm>
#include <optional>

#include "text/NumberText.h"

namespace zeb::analysis {

namespace {

// A growth of just as much as is allowed may come out a little larger.
constexpr double rounding = 1e-9;

std::string percent(double share) {
    return profiling::fixedPoint(share * 100.0, 1) + '%';
}

class Judge {
public:
    Judge(const Comparison& comparison, const Gate& gate) : comparison_(comparison), gate_(gate) {}

    GateResult result() {
        if (const auto cause = wholeTrouble()) {
            add(GateOutcome::incomparable, "The versions can't be compared: " + *cause + ".");
            return result_;
        }
        for (const GraphComparison& graph : comparison_.graphs) {
            judge(graph);
        }
        return result_;
    }

private:
    void add(GateOutcome outcome, std::string reason) {
        result_.outcome = std::max(result_.outcome, outcome);
        result_.reasons.push_back(std::move(reason));
    }

    [[nodiscard]] std::optional<std::string> wholeTrouble() const {
        if (comparison_.basis == Basis::tooFew) {
            return "several logs a side have to be " + std::to_string(minLogs) + " at least, and there are " +
                   std::to_string(comparison_.baseLogs.size()) + " and " +
                   std::to_string(comparison_.newLogs.size());
        }
        if (comparison_.haveDifferentLevels) {
            return "the logs have different profiling levels";
        }
        if (comparison_.graphs.empty()) {
            return "the sides have no graph in common that was executed";
        }
        return std::nullopt;
    }

    // A log that lacks the figure would be left out without a word.
    [[nodiscard]] std::optional<std::string> graphTrouble(const TotalChange* row) const {
        const std::string name(nameOf(gate_.total));
        const std::size_t base = row == nullptr ? 0 : row->baseLogs;
        const std::size_t changed = row == nullptr ? 0 : row->newLogs;
        if (base < comparison_.baseLogs.size() || changed < comparison_.newLogs.size()) {
            return "a time for " + name + " is in " + std::to_string(base) + " of " +
                   std::to_string(comparison_.baseLogs.size()) + " base logs and in " +
                   std::to_string(changed) + " of " + std::to_string(comparison_.newLogs.size()) +
                   " new ones";
        }
        return row->change ? std::nullopt : std::optional("the time for " + name + " is 0 in a log");
    }

    void judge(const GraphComparison& graph) {
        const TotalChange* const row = graph.find(gate_.total);
        const std::string subject = "Graph " + graph.baseName + ": ";
        if (const auto cause = graphTrouble(row)) {
            add(GateOutcome::incomparable, subject + "it can't be compared: " + *cause + ".");
            return;
        }
        const bool isSure = comparison_.basis == Basis::oneEach || row->verdict == Verdict::slower;
        if (isSure && *row->change > gate_.maxGrowth + rounding && row->changeUs() >= gate_.minChangeUs) {
            add(GateOutcome::slower, subject + "the time for " + std::string(nameOf(gate_.total)) +
                                         " grew by " + percent(*row->change) + intervalText(*row) + ", and " +
                                         percent(gate_.maxGrowth) + " is allowed.");
        }
    }

    static std::string intervalText(const TotalChange& row) {
        return row.interval ? " (" + percent(row.interval->low) + " to " + percent(row.interval->high) + ")"
                            : "";
    }

    const Comparison& comparison_;
    const Gate& gate_;
    GateResult result_;
};

}  // namespace

GateResult judge(const Comparison& comparison, const Gate& gate) {
    return Judge(comparison, gate).result();
}

}  // namespace zeb::analysis
