#include "analysis/runs/Gate.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "analysis/runs/Answer.h"
#include "text/NumberText.h"

namespace zeb::analysis {

namespace {

// A growth of just as much as is allowed may come out a little larger.
constexpr double rounding = 1e-9;
constexpr std::size_t maxLogsAsked = 50;

// Two shares in per cent, with as many digits as it takes to tell them apart, if they differ.
std::pair<std::string, std::string> percents(double one, double other) {
    constexpr int maxDigits = 7;
    for (int digits = 1;; ++digits) {
        std::string first = profiling::fixedPoint(one * 100.0, digits) + '%';
        std::string second = profiling::fixedPoint(other * 100.0, digits) + '%';
        if (first != second || digits == maxDigits || std::abs(one - other) <= rounding) {
            return {std::move(first), std::move(second)};
        }
    }
}

// Logs of each side, or pairs, that decide whether a change lies above a limit and above 0, or below the
// limit, in 80 of 100 comparisons: the limit has to lie as many standard errors from the estimate as the ends
// of the interval do, and those further that a result may be off in 20 of 100. Ranks need a little more than
// means.
std::optional<std::size_t> logsToDecide(const TotalChange& row, double limit, bool isPaired) {
    constexpr double ofInterval = 1.959963984540054;
    constexpr double ofPower = 0.8416212335729143;
    constexpr double ofRanks = 1.0471975511965976;  // pi / 3
    if (!row.change || !row.spread) {
        return std::nullopt;
    }
    const double estimate = std::log1p(*row.change);
    const double distance = std::abs(std::log1p(limit) - estimate);
    const double errors = estimate > std::log1p(limit)
                              ? std::max(ofPower / distance, (ofInterval + ofPower) / estimate)
                              : (ofInterval + ofPower) / distance;
    const double ofBothSides = isPaired ? 1.0 : 2.0;
    const double logs = std::ceil(ofRanks * ofBothSides * *row.spread * *row.spread * errors * errors);
    const std::size_t least = isPaired ? minPairs : minLogs;
    if (!(logs <= static_cast<double>(maxLogsAsked))) {
        return maxLogsAsked + 1;
    }
    return std::max({least, static_cast<std::size_t>(logs), std::max(row.baseLogs, row.newLogs) + 1});
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
            if (gate_.maxGrowth) {
                judgeTotal(graph);
            }
            if (gate_.maxLayerGrowth) {
                judgeLayers(graph);
            }
        }
        return result_;
    }

private:
    void add(GateOutcome outcome, std::string reason) {
        result_.outcome = std::max(result_.outcome, outcome);
        result_.reasons.push_back(std::move(reason));
    }

    [[nodiscard]] std::optional<std::string> wholeTrouble() const {
        const auto logs = [](const std::vector<std::string>& side) { return std::to_string(side.size()); };
        if (comparison_.haveSameRun) {
            return "a run is on both sides";
        }
        if (comparison_.basis == Basis::tooFew && comparison_.isPaired) {
            return "it takes " + std::to_string(minPairs) + " pairs of logs at least, and there are " +
                   logs(comparison_.baseLogs);
        }
        if (comparison_.basis == Basis::tooFew) {
            return "several logs a side have to be " + std::to_string(minLogs) + " at least, and there are " +
                   logs(comparison_.baseLogs) + " and " + logs(comparison_.newLogs);
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
        const std::string name(row == nullptr ? nameOf(gate_.total) : row->name());
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

    void judgeTotal(const GraphComparison& graph) {
        const TotalChange* const row = graph.find(gate_.total);
        const std::string subject = "Graph " + graph.baseName + ": ";
        if (const auto cause = graphTrouble(row)) {
            add(GateOutcome::incomparable, subject + "it can't be compared: " + *cause + ".");
            return;
        }
        const double floorUs = gate_.minChangeUs.value_or(0.0);
        const double limit = std::max(*gate_.maxGrowth, floorUs / row->base.mean);
        const bool isAbove = *row->change > *gate_.maxGrowth + rounding &&
                             *row->change * row->base.mean >= floorUs * (1.0 - rounding);
        if (isAbove && (comparison_.basis == Basis::oneEach || row->verdict == Verdict::slower)) {
            const auto [grown, allowed] = percents(*row->change, limit);
            add(GateOutcome::slower, subject + "the time for " + std::string(row->name()) + " grew by " +
                                         grown + intervalText(*row) + ", and " + allowed + " is allowed" +
                                         floorText(limit) + '.');
        } else if (!row->interval || row->interval->high >= limit) {
            add(GateOutcome::unsure, subject + cantTell(*row, limit));
        }
    }

    [[nodiscard]] std::string floorText(double limit) const {
        return limit > *gate_.maxGrowth ? " (" + microseconds(*gate_.minChangeUs) + " us)" : "";
    }

    static std::string intervalText(const TotalChange& row) {
        return row.interval ? " (95% interval " + textOf(*row.interval) + ")" : "";
    }

    [[nodiscard]] std::string cantTell(const TotalChange& row, double limit) const {
        const auto [change, allowed] = percents(*row.change, limit);
        const std::string sign = *row.change > 0.0 ? "+" : "";
        std::string sentence = "can't tell whether the time for " + std::string(row.name()) +
                               " grew by more than the " + allowed + floorText(limit) +
                               " allowed: it changed by " + sign + change;
        if (comparison_.basis == Basis::oneEach) {
            return sentence + ", and one log a side does not tell how sure that is. Take " +
                   std::to_string(minLogs) + " of each or more.";
        }
        if (row.interval) {
            const auto [high, limitAgain] = percents(row.interval->high, limit);
            sentence += ", and the 95% interval " + signedPercent(row.interval->low) + " to +" + high +
                        " leaves " + (row.interval->high > 0.0 ? "+" : "") + high + " possible";
        }
        const auto logs = limit > 0.0 ? logsToDecide(row, limit, comparison_.isPaired) : std::nullopt;
        if (!logs) {
            return sentence + '.';
        }
        const std::string unit = comparison_.isPaired ? " pairs of logs" : " logs a side";
        if (*logs > maxLogsAsked) {
            return sentence + ". It would take more than " + std::to_string(maxLogsAsked) + unit +
                   " to decide it" +
                   (comparison_.isPaired
                        ? "."
                        : "; logs taken in turns and compared with --paired may need fewer.");
        }
        return sentence + ". About " + std::to_string(*logs) + unit + " would decide it.";
    }

    void judgeLayers(const GraphComparison& graph) {
        const std::string subject = "Graph " + graph.baseName + ": ";
        if (graph.layers.empty()) {
            add(GateOutcome::incomparable,
                subject + "its layers can't be compared: not both sides have data on layers.");
            return;
        }
        if (comparison_.basis == Basis::oneEach && !graph.shared) {
            add(GateOutcome::unsure, subject +
                                         "can't tell whether a layer grew by more than is allowed: "
                                         "its layers have no common factor to be held against.");
            return;
        }
        for (const LayerChange& layer : graph.layers) {
            if (layer.verdict != Verdict::slower || *layer.excess <= *gate_.maxLayerGrowth + rounding ||
                layer.excessUs < gate_.minChangeUs.value_or(0.0)) {
                continue;
            }
            const auto [grown, allowed] = percents(*layer.excess, *gate_.maxLayerGrowth);
            add(GateOutcome::slower,
                subject + "layer " + layer.name + " grew by " + grown + " (" +
                    signedMicroseconds(layer.excessUs) + " us)" +
                    (graph.shared ? " beyond the " + signedPercent(graph.shared->change) + " of all layers"
                                  : "") +
                    ", and " + allowed + " is allowed.");
        }
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
