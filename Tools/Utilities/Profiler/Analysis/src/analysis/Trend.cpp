#include "analysis/Trend.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <span>
#include <vector>

#include "analysis/Samples.h"
#include "analysis/Spread.h"

namespace zeb::analysis {

namespace {

constexpr std::size_t maxPoints = 200;
constexpr double minAutocorrelation = 0.3;  // from a few durations it comes out too small
constexpr double maxAutocorrelation = 0.95;

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return quantile(values, 0.5);
}

// Of a long run neighbours are one point, their median.
std::vector<double> pointsOf(const std::vector<double>& durations) {
    const std::size_t size = (durations.size() + maxPoints - 1) / maxPoints;
    std::vector<double> points;
    for (std::size_t first = 0; first + size <= durations.size(); first += size) {
        const auto from = durations.begin() + static_cast<std::ptrdiff_t>(first);
        points.push_back(medianOf({from, from + static_cast<std::ptrdiff_t>(size)}));
    }
    return points;
}

// Equal values share the middle of their ranks.
std::vector<double> ranksOf(const std::vector<double>& values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&values](std::size_t left, std::size_t right) { return values[left] < values[right]; });
    std::vector<double> ranks(values.size());
    for (std::size_t first = 0, last = 0; first < order.size(); first = last) {
        while (last < order.size() && values[order[last]] == values[order[first]]) {
            ++last;
        }
        for (std::size_t place = first; place < last; ++place) {
            ranks[order[place]] = static_cast<double>(first + last - 1) / 2.0;
        }
    }
    return ranks;
}

// What the line through the values leaves of them, and its slope.
double takeOutSlope(std::vector<double>& values) {
    const auto count = static_cast<double>(values.size());
    const double middle = (count - 1.0) / 2.0;
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    double products = 0.0;
    for (std::size_t place = 0; place < values.size(); ++place) {
        products += (static_cast<double>(place) - middle) * (values[place] - mean);
    }
    const double slope = products / (count * (count * count - 1.0) / 12.0);
    for (std::size_t place = 0; place < values.size(); ++place) {
        values[place] -= mean + slope * (static_cast<double>(place) - middle);
    }
    return slope;
}

double autocorrelationOf(const std::vector<double>& rests, double squares) {
    const double products = std::inner_product(rests.begin() + 1, rests.end(), rests.begin(), 0.0);
    const double found = products / squares;
    const double unbiased = found + (1.0 + 4.0 * found) / static_cast<double>(rests.size());
    return std::clamp(unbiased, minAutocorrelation, maxAutocorrelation);
}

double pOfRise(std::vector<double> ranks) {
    const auto count = static_cast<double>(ranks.size());
    const double slope = takeOutSlope(ranks);
    const double squares = std::inner_product(ranks.begin(), ranks.end(), ranks.begin(), 0.0);
    if (slope <= 0.0) {
        return 1.0;
    }
    if (squares <= 0.0) {
        return 0.0;
    }
    const double correlation = autocorrelationOf(ranks, squares);
    const double repeats = (1.0 + correlation) / (1.0 - correlation);
    const double freedom = std::max(1.0, count / repeats - 2.0);
    const double variance = squares / (count - 2.0) / (count * (count * count - 1.0) / 12.0) * repeats;
    const double t = slope / std::sqrt(variance);
    return incompleteBeta(freedom / 2.0, 0.5, freedom / (freedom + t * t)) / 2.0;
}

}  // namespace

std::optional<Trend> trendOf(const Executions& executions) {
    std::vector<double> durations;
    for (std::size_t position = 1; position < executions.count(); ++position) {
        if (executions.durationUs[position].value_or(0) != 0) {
            durations.push_back(static_cast<double>(*executions.durationUs[position]));
        }
    }
    if (durations.size() + 1 < minForTrend) {
        return std::nullopt;
    }
    const std::vector<double> points = pointsOf(durations);
    // The middles of the first and the last third are two thirds of the run apart.
    const auto third = static_cast<std::ptrdiff_t>(points.size() / 3);
    const double growthUs = 1.5 * (medianOf({points.end() - third, points.end()}) -
                                   medianOf({points.begin(), points.begin() + third}));
    return Trend{growthUs, pOfRise(ranksOf(points))};
}

}  // namespace zeb::analysis
