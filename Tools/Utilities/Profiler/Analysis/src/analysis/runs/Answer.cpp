#include "analysis/runs/Answer.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "analysis/FigureText.h"
#include "text/NumberText.h"

namespace zeb::analysis {

namespace {

using profiling::fixedPoint;

constexpr std::size_t maxCulprits = 3;

std::string percent(double share) {
    return fixedPoint(share * 100.0, 1) + '%';
}

bool isSure(Verdict verdict) {
    return verdict == Verdict::slower || verdict == Verdict::faster;
}

std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) {
        list.append(list.empty() ? "" : "; ").append(text);
    }
    return list;
}

class Answerer {
public:
    Answerer(const GraphComparison& graph, Basis basis, std::span<const std::string> clockDifferences)
        : graph_(graph),
          basis_(basis),
          clockDifferences_(clockDifferences),
          row_(graph.find(Total::marlix)) {}

    [[nodiscard]] Answer answer() const {
        Answer answer = verdict();
        addCulprits(answer);
        addShared(answer);
        if (answer.causes.empty() && isSure(row_ == nullptr ? Verdict::unsure : row_->verdict)) {
            addRest(answer);
        }
        return answer;
    }

private:
    using Kind = Answer::Kind;

    [[nodiscard]] Answer verdict() const {
        if (row_ == nullptr || !row_->isOnBoth()) {
            return {Kind::unsure, "Can't tell: not both sides have execution times of this graph.", {}};
        }
        const std::string times =
            std::string("an inference") + (row_->holdsQueueWait ? " with its queue wait" : "") + " takes " +
            microseconds(row_->changed.mean) + " us in place of " + microseconds(row_->base.mean) + " us";
        switch (basis_) {
            case Basis::oneEach:
                return ofOneEach(times);
            case Basis::tooFew:
                return {
                    Kind::unsure, "Can't tell: " + times + ", and with so few logs that may be chance.", {}};
            case Basis::several:
            case Basis::paired:
                break;
        }
        if (!row_->change || !row_->interval) {
            return {Kind::unsure,
                    "Can't tell: " + times + ", and too few logs have a time for it that is not 0.",
                    {}};
        }
        const Interval& interval = *row_->interval;
        const std::string where = "the true change lies within " + textOf(interval) + " with 95%";
        if (isSure(row_->verdict)) {
            const bool isSlower = row_->verdict == Verdict::slower;
            return {isSlower ? Kind::slower : Kind::faster,
                    std::string(isSlower ? "Slower by " : "Faster by ") + percent(std::abs(*row_->change)) +
                        ": " + times + "; " + where + ".",
                    {}};
        }
        if (interval.high <= maxNotSlower) {
            return {Kind::notSlower,
                    "Not slower than " + percent(interval.high) + ": " + times + ", and " + where + ".",
                    {}};
        }
        return {Kind::unsure, "Can't tell: " + times + ", and " + where + '.', {}};
    }

    [[nodiscard]] Answer ofOneEach(const std::string& times) const {
        const std::string howSure =
            "; one log a side can't tell that from the difference between two runs of one version.";
        if (row_->verdict == Verdict::same || !row_->change) {
            return {row_->verdict == Verdict::same ? Kind::same : Kind::unsure,
                    (row_->verdict == Verdict::same ? "As fast in these two logs: " : "Can't tell: ") +
                        times + howSure,
                    {}};
        }
        const bool isSlower = row_->verdict == Verdict::slower;
        return {isSlower ? Kind::slower : Kind::faster,
                std::string(isSlower ? "Slower by " : "Faster by ") + percent(std::abs(*row_->change)) +
                    " in these two logs: " + times + howSure,
                {}};
    }

    // What all executions took on average, of which layers are a part.
    [[nodiscard]] std::optional<double> wholeChangeUs() const {
        const TotalChange* const average = graph_.find(Total::average);
        const bool isKnown =
            average != nullptr && average->isOnBoth() && row_ != nullptr && isSure(row_->verdict);
        return isKnown ? std::optional(average->changeUs()) : std::nullopt;
    }

    void addCulprits(Answer& answer) const {
        std::vector<const LayerChange*> culprits;
        for (const LayerChange& layer : graph_.layers) {
            if (isSure(layer.verdict)) {
                culprits.push_back(&layer);
            }
        }
        std::stable_sort(culprits.begin(), culprits.end(),
                         [](const LayerChange* left, const LayerChange* right) {
                             return std::abs(left->excessUs) > std::abs(right->excessUs);
                         });
        const auto whole = wholeChangeUs();
        for (std::size_t position = 0; position < std::min(culprits.size(), maxCulprits); ++position) {
            const LayerChange& layer = *culprits[position];
            std::string cause = layer.name + ' ' + signedMicroseconds(layer.excessUs) + " us";
            const double share = whole && *whole != 0.0 ? layer.excessUs / *whole : 0.0;
            if (share > 0.0 && share <= 1.0) {
                cause += ", " + fixedPoint(share * 100.0, 0) + "% of it";
            } else if (basis_ != Basis::oneEach &&
                       (answer.kind == Kind::unsure || answer.kind == Kind::notSlower)) {
                cause += ", which is sure";
            }
            answer.causes.push_back(std::move(cause));
        }
        if (culprits.size() > maxCulprits) {
            double restUs = 0.0;
            for (std::size_t position = maxCulprits; position < culprits.size(); ++position) {
                restUs += culprits[position]->excessUs;
            }
            const std::size_t count = culprits.size() - maxCulprits;
            answer.causes.push_back(counted(count, "more layer") + ' ' + signedMicroseconds(restUs) + " us");
        }
    }

    void addShared(Answer& answer) const {
        if (!graph_.shared || !isSure(graph_.shared->verdict)) {
            return;
        }
        std::string cause = (answer.causes.empty() ? "all layers alike by " : "all other layers alike by ") +
                            signedPercent(graph_.shared->change) +
                            ": what they share changed (clocks, temperature, memory, compiler)";
        if (!clockDifferences_.empty()) {
            cause += "; the logged " +
                     listed(std::vector<std::string>(clockDifferences_.begin(), clockDifferences_.end()));
        }
        answer.causes.push_back(std::move(cause));
    }

    void addRest(Answer& answer) const {
        const TotalChange* const outside = graph_.find(Total::outside);
        const auto whole = wholeChangeUs();
        if (outside == nullptr || !outside->isOnBoth() || !whole) {
            return;
        }
        if (isSure(outside->verdict) && std::abs(outside->changeUs()) > std::abs(*whole) / 2.0) {
            answer.causes.push_back("nothing in the layers: " + signedMicroseconds(outside->changeUs()) +
                                    " us outside the accelerator");
        } else if (!graph_.layers.empty()) {
            answer.causes.emplace_back("no layer stands out, nor what all of them share");
        }
    }

    const GraphComparison& graph_;
    Basis basis_;
    std::span<const std::string> clockDifferences_;
    const TotalChange* row_;
};

}  // namespace

std::string signedPercent(double share) {
    const std::string text = percent(share);
    return (share > 0.0 ? "+" : "") + text;
}

std::string textOf(const Interval& interval) {
    return signedPercent(interval.low) + " to " + signedPercent(interval.high);
}

std::string microseconds(double us) {
    constexpr double wholeFrom = 1000.0;
    const bool isWhole = std::abs(us - std::round(us)) < 0.05;
    return fixedPoint(us + 0.0, std::abs(us) >= wholeFrom || isWhole ? 0 : 1);
}

std::string signedMicroseconds(double us) {
    return (us > 0.0 ? "+" : "") + microseconds(us);
}

Answer answerOn(const GraphComparison& graph, Basis basis, std::span<const std::string> clockDifferences) {
    return Answerer(graph, basis, clockDifferences).answer();
}

}  // namespace zeb::analysis
