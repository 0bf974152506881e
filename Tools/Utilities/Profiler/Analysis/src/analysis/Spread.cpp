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
    Spread spread{.count = durations.size(), .firstUs = durations.front()};
    std::sort(durations.begin(), durations.end());
    spread.minUs = durations.front();
    spread.medianUs = quantile(durations, 0.5);
    spread.p90Us = quantile(durations, 0.9);
    spread.p99Us = quantile(durations, 0.99);
    spread.maxUs = durations.back();
    return spread;
}

}  // namespace zeb::analysis
