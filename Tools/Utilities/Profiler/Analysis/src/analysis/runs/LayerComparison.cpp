#include "analysis/runs/LayerComparison.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "analysis/Samples.h"
#include "analysis/runs/CommonFactor.h"

namespace zeb::analysis {

namespace {

// A log's averages are cut to whole microseconds, so a move by no more may be all rounding.
constexpr double resolutionUs = 1.0;
// One log a side: how far beyond the others a layer has to be. A layer may be cut at more than one place, and
// that adds to what layers vary by.
constexpr double oneLogResolutionUs = 2.0;
constexpr double oneLogDeviations = 6.0;

double meanOf(const std::vector<double>& values) {
    return values.empty()
               ? 0.0
               : std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

Verdict directionOf(double change) {
    return change > 0.0 ? Verdict::slower : Verdict::faster;
}

class LayerJudge {
public:
    LayerJudge(const LayerRows& rows, Basis basis, const LayerFactors* factors)
        : rows_(rows), basis_(basis), factors_(factors) {
        if (factors_ != nullptr) {
            factor_ = 1.0 + sharedChange(*factors_, basis).change;
        }
    }

    [[nodiscard]] std::vector<LayerChange> changes() const {
        std::vector<LayerChange> all;
        all.reserve(rows_.rows.size());
        for (const LayerRow& row : rows_.rows) {
            all.push_back(changeOf(row));
        }
        judgeTogether(all);
        std::stable_sort(all.begin(), all.end(), [](const LayerChange& left, const LayerChange& right) {
            return std::abs(left.changeUs()) > std::abs(right.changeUs());
        });
        return all;
    }

private:
    [[nodiscard]] LayerChange changeOf(const LayerRow& row) const {
        LayerChange change;
        change.name = row.name;
        change.baseUs = meanOf(row.us[0]);
        change.newUs = meanOf(row.us[1]);
        change.excessUs = change.newUs - change.baseUs * factor_;
        if (!row.isThere[0] || !row.isThere[1]) {
            change.verdict = row.isThere[0] ? Verdict::gone : Verdict::added;
            return change;
        }
        if (change.baseUs > 0.0) {
            change.change = change.newUs / change.baseUs - 1.0;
        }
        switch (basis_) {
            case Basis::oneEach:
                judgeByOneLog(change);
                break;
            case Basis::several:
            case Basis::paired:
                addTest(change, withoutFactors(row, 0), withoutFactors(row, 1));
                break;
            case Basis::tooFew:
                break;
        }
        return change;
    }

    void judgeByOneLog(LayerChange& change) const {
        change.excess = excessOf(change.baseUs, change.newUs, factor_);
        if (change.changeUs() == 0.0) {
            change.verdict = Verdict::same;
        }
        if (factors_ != nullptr && change.excess) {
            const double leastUs =
                oneLogResolutionUs + oneLogDeviations * factors_->deviation * change.baseUs * factor_;
            if (std::abs(change.excessUs) > leastUs) {
                change.verdict = directionOf(*change.excess);
            }
        }
    }

    [[nodiscard]] std::vector<double> withoutFactors(const LayerRow& row, std::size_t side) const {
        std::vector<double> us = row.us[side];
        for (std::size_t log = 0; factors_ != nullptr && log < us.size(); ++log) {
            us[log] /= factors_->factors[side][log];
        }
        return us;
    }

    void addTest(LayerChange& change, const std::vector<double>& base,
                 const std::vector<double>& changed) const {
        change.excess = geometricChange(base, changed);
        change.p = basis_ == Basis::paired ? pairedP(base, changed) : welchP(base, changed);
    }

    // A p is that of the row among all rows.
    static void judgeTogether(std::vector<LayerChange>& changes) {
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
            if (std::abs(change.excessUs) <= resolutionUs) {
                change.p.reset();
            } else if (*change.p <= significance) {
                change.verdict = directionOf(*change.excess);
            }
        }
    }

    const LayerRows& rows_;
    Basis basis_;
    const LayerFactors* factors_;
    double factor_ = 1.0;
};

}  // namespace

std::optional<LayerFactors> factorsOf(const LayerRows& rows) {
    LayerFactors factors{.logs = {rows.logs[0], rows.logs[1]}, .factors = {}};
    std::vector<double> reference;
    std::vector<const LayerRow*> ofBoth;
    for (const LayerRow& row : rows.rows) {
        if (row.isThere[0] && row.isThere[1]) {
            ofBoth.push_back(&row);
            reference.push_back(meanOf(row.us[0]));
        }
    }
    std::vector<double> us(ofBoth.size());
    for (std::size_t side = 0; side < 2; ++side) {
        for (std::size_t log = 0; log < rows.logs[side].size(); ++log) {
            std::transform(ofBoth.begin(), ofBoth.end(), us.begin(),
                           [side, log](const LayerRow* row) { return row->us[side][log]; });
            const auto found = commonFactor(reference, us);
            if (!found) {
                return std::nullopt;
            }
            factors.factors[side].push_back(found->factor);
            factors.deviation = std::max(factors.deviation, found->deviation);
        }
    }
    return factors;
}

SharedChange sharedChange(const LayerFactors& factors, Basis basis) {
    SharedChange shared;
    const auto& [base, changed] = factors.factors;
    if (basis == Basis::oneEach) {
        // More than the layers differ in among themselves, and not what rounding leaves.
        constexpr double leastShared = 0.005;
        shared.change = changed.front() / base.front() - 1.0;
        if (std::abs(std::log1p(shared.change)) > std::max(leastShared, factors.deviation)) {
            shared.verdict = directionOf(shared.change);
        }
        return shared;
    }
    const auto shift = basis == Basis::paired ? shiftOfPairs(base, changed) : shiftBetween(base, changed);
    if (shift) {
        shared.change = shift->change;
        if (basis != Basis::tooFew) {
            shared.interval = shift->interval;
        }
        if (shared.interval && !shared.interval->holds(0.0)) {
            shared.verdict = directionOf(shift->change);
        }
    }
    return shared;
}

std::vector<LayerChange> compareLayers(const LayerRows& rows, Basis basis, const LayerFactors* factors) {
    return LayerJudge(rows, basis, factors).changes();
}

}  // namespace zeb::analysis
