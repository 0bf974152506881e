#include "analysis/Spread.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zeb::analysis {

double quantile(std::span<const double> sorted, double share) {
    const double place = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(std::floor(place));
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return sorted[below] + (sorted[above] - sorted[below]) * (place - std::floor(place));
}

Spread spreadOf(const Executions& executions) {
    std::vector<double> durations;
    durations.reserve(executions.count());
    for (const auto& us : executions.durationUs) {
        if (us.value_or(0) != 0) {
            durations.push_back(static_cast<double>(*us));
        }
    }
    if (durations.empty()) {
        return {};
    }
    Spread spread;
    spread.count = durations.size();
    if (const std::uint64_t firstUs = executions.durationUs.front().value_or(0); firstUs != 0) {
        spread.firstUs = static_cast<double>(firstUs);
    }
    std::sort(durations.begin(), durations.end());
    for (std::size_t position = 0; position < std::size(quantiles); ++position) {
        spread.quantilesUs[position] = quantile(durations, quantiles[position].share);
    }
    return spread;
}

Outliers outliersOf(const Executions& executions, const Spread& spread) {
    Outliers outliers;
    outliers.limitUs = spread.medianUs() * outlierFactor;
    const auto isLonger = [](const Outlier& left, const Outlier& right) { return left.us > right.us; };
    std::vector<Outlier>& longest = outliers.longest;  // a heap, the shortest of them in front
    for (std::size_t position = 1; position < executions.count(); ++position) {
        const auto us = static_cast<double>(executions.durationUs[position].value_or(0));
        if (us <= outliers.limitUs) {
            continue;
        }
        ++outliers.count;
        outliers.excessUs += us - spread.medianUs();
        if (longest.size() == maxHeldOutliers) {
            if (us <= longest.front().us) {
                continue;
            }
            std::pop_heap(longest.begin(), longest.end(), isLonger);
            longest.pop_back();
        }
        longest.push_back({position, us});
        std::push_heap(longest.begin(), longest.end(), isLonger);
    }
    std::sort(longest.begin(), longest.end(),
              [](const Outlier& left, const Outlier& right) { return left.position < right.position; });
    return outliers;
}

}  // namespace zeb::analysis
