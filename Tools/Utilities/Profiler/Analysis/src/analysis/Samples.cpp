#include "analysis/Samples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>

#include "analysis/Spread.h"

namespace zeb::analysis {

namespace {

constexpr std::size_t maxExactSize = 50;
constexpr double normalQuantile = 1.959963984540054;  // of half the significance at either end

std::optional<std::vector<double>> logarithmsOf(std::span<const double> values) {
    std::vector<double> logarithms;
    logarithms.reserve(values.size());
    for (const double value : values) {
        if (!(value > 0.0) || !std::isfinite(value)) {
            return std::nullopt;
        }
        logarithms.push_back(std::log(value));
    }
    return logarithms;
}

// All differences between a value of the one sample and one of the other, ascending.
std::vector<double> sortedDifferences(const std::vector<double>& base, const std::vector<double>& changed) {
    std::vector<double> differences;
    differences.reserve(base.size() * changed.size());
    for (const double to : changed) {
        for (const double from : base) {
            differences.push_back(to - from);
        }
    }
    std::sort(differences.begin(), differences.end());
    return differences;
}

// Sum of t^3 - t over the groups of t equal values in both samples together.
double tieSum(std::vector<double> values, const std::vector<double>& others) {
    values.insert(values.end(), others.begin(), others.end());
    std::sort(values.begin(), values.end());
    double sum = 0.0;
    for (auto first = values.begin(); first != values.end();) {
        const auto last = std::upper_bound(first, values.end(), *first);
        const auto size = static_cast<double>(last - first);
        sum += size * size * size - size;
        first = last;
    }
    return sum;
}

// The Mann-Whitney test for two sizes: U counts the pairs in which the changed value is the larger one.
class RankTest {
public:
    RankTest(std::size_t baseSize, std::size_t changedSize, double ties)
        : pairs_(static_cast<double>(baseSize) * static_cast<double>(changedSize)) {
        if (ties == 0.0 && std::max(baseSize, changedSize) <= maxExactSize) {
            addDistribution(baseSize, changedSize);
            return;
        }
        const auto values = static_cast<double>(baseSize + changedSize);
        deviation_ = std::sqrt(pairs_ / 12.0 * (values + 1.0 - ties / (values * (values - 1.0))));
    }

    [[nodiscard]] double twoSidedP(double u) const {
        if (!cumulated_.empty()) {
            return std::min(1.0, 2.0 * cumulated_[static_cast<std::size_t>(std::min(u, pairs_ - u))]);
        }
        const double distance = std::abs(u - pairs_ / 2.0) - continuity;
        return distance <= 0.0 ? 1.0 : std::erfc(distance / deviation_ / std::sqrt(2.0));
    }

    /// @return the place, from 1, of the lower end of the interval among the sorted differences; the upper
    ///         end has the same place from the other side. 0: no difference is low enough.
    [[nodiscard]] std::size_t lowerEnd() const {
        if (!cumulated_.empty()) {
            const auto first = std::upper_bound(cumulated_.begin(), cumulated_.end(),
                                                significance / 2.0 * (1.0 + roundingOfTheSum));
            return static_cast<std::size_t>(first - cumulated_.begin());
        }
        const double place = std::floor(pairs_ / 2.0 + continuity - normalQuantile * deviation_);
        return place < 1.0 ? 0 : static_cast<std::size_t>(place);
    }

private:
    static constexpr double continuity = 0.5;
    static constexpr double roundingOfTheSum = 1e-12;

    // The largest of i + j values is one of the i with a probability of i / (i + j), and is then above all j.
    void addDistribution(std::size_t baseSize, std::size_t changedSize) {
        std::vector<std::vector<double>> chances(changedSize + 1);
        for (std::size_t j = 0; j <= changedSize; ++j) {
            chances[j].assign(baseSize * j + 1, 0.0);
            chances[j][0] = 1.0;
        }
        for (std::size_t i = 1; i <= baseSize; ++i) {
            for (std::size_t j = 1; j <= changedSize; ++j) {
                const double share = static_cast<double>(i) / static_cast<double>(i + j);
                for (std::size_t u = i * j + 1; u-- > 0;) {
                    const double ofFirst = u >= j ? chances[j][u - j] : 0.0;
                    const double ofSecond = u < chances[j - 1].size() ? chances[j - 1][u] : 0.0;
                    chances[j][u] = share * ofFirst + (1.0 - share) * ofSecond;
                }
            }
        }
        cumulated_ = std::move(chances.back());
        std::partial_sum(cumulated_.begin(), cumulated_.end(), cumulated_.begin());
    }

    double pairs_;
    std::vector<double> cumulated_;  ///< of the exact distribution; empty: the normal one serves
    double deviation_ = 0.0;
};

// The signed rank test of numbers that are not 0: W is the sum of the ranks of the positive ones.
class SignedRankTest {
public:
    explicit SignedRankTest(std::vector<double> values) {
        std::sort(values.begin(), values.end(),
                  [](double left, double right) { return std::abs(left) < std::abs(right); });
        double variance = 0.0;
        for (auto first = values.begin(); first != values.end();) {
            const auto last = std::find_if(first, values.end(), [first](double value) {
                return std::abs(value) > std::abs(*first) * (1.0 + roundingOfARatio);
            });
            // The ranks before and up to the last one, whose mean is a half of their sum.
            const auto doubleRank =
                static_cast<std::size_t>((first - values.begin()) + 1 + (last - values.begin()));
            for (; first != last; ++first) {
                doubleRanks_.push_back(doubleRank);
                doubleSum_ += *first > 0.0 ? doubleRank : 0;
                variance += static_cast<double>(doubleRank * doubleRank) / 16.0;
            }
        }
        deviation_ = std::sqrt(variance);
    }

    [[nodiscard]] double twoSidedP() const {
        const std::size_t whole = std::accumulate(doubleRanks_.begin(), doubleRanks_.end(), std::size_t{0});
        if (doubleRanks_.size() <= maxExactSize) {
            const std::vector<double> cumulated = cumulatedOf(doubleRanks_);
            return std::min(1.0, 2.0 * cumulated[std::min(doubleSum_, whole - doubleSum_)]);
        }
        const double distance =
            std::abs(static_cast<double>(doubleSum_) - static_cast<double>(whole) / 2.0) / 2.0 - continuity;
        return distance <= 0.0 ? 1.0 : std::erfc(distance / deviation_ / std::sqrt(2.0));
    }

    /// @return the place, from 1, of the lower end of the interval among that many pairs' Walsh averages; 0:
    ///         there is none
    static std::size_t lowerEnd(std::size_t pairs) {
        const double half = static_cast<double>(pairs) * (static_cast<double>(pairs) + 1.0) / 4.0;
        if (pairs <= maxExactSize) {
            std::vector<std::size_t> ranks(pairs);
            std::iota(ranks.begin(), ranks.end(), std::size_t{1});
            const std::vector<double> cumulated = cumulatedOf(ranks);
            const auto first = std::upper_bound(cumulated.begin(), cumulated.end(),
                                                significance / 2.0 * (1.0 + roundingOfTheSum));
            return static_cast<std::size_t>(first - cumulated.begin());
        }
        const double deviation = std::sqrt(half * (2.0 * static_cast<double>(pairs) + 1.0) / 6.0);
        return static_cast<std::size_t>(
            std::max(0.0, std::floor(half + continuity - normalQuantile * deviation)));
    }

private:
    static constexpr double continuity = 0.5;
    static constexpr double roundingOfTheSum = 1e-12;
    static constexpr double roundingOfARatio = 1e-12;  // of logarithms that are the same

    // The chance of a sum of ranks up to each, when a coin decides for each whether it counts.
    static std::vector<double> cumulatedOf(const std::vector<std::size_t>& ranks) {
        std::vector<double> chances{1.0};
        for (const std::size_t rank : ranks) {
            std::vector<double> next(chances.size() + rank, 0.0);
            for (std::size_t sum = 0; sum < chances.size(); ++sum) {
                next[sum] += chances[sum] / 2.0;
                next[sum + rank] += chances[sum] / 2.0;
            }
            chances = std::move(next);
        }
        std::partial_sum(chances.begin(), chances.end(), chances.begin());
        return chances;
    }

    std::vector<std::size_t> doubleRanks_;  // ranks may have a half
    std::size_t doubleSum_ = 0;
    double deviation_ = 0.0;
};

// The logarithms of the ratios of pairs.
std::optional<std::vector<double>> ratiosOf(std::span<const double> base, std::span<const double> changed) {
    auto ratios = logarithmsOf(changed);
    const auto from = logarithmsOf(base);
    if (!ratios || !from) {
        return std::nullopt;
    }
    for (std::size_t pair = 0; pair < ratios->size(); ++pair) {
        (*ratios)[pair] -= (*from)[pair];
    }
    return ratios;
}

// The means of all pairs of values, each with itself too, ascending.
std::vector<double> sortedWalshAverages(const std::vector<double>& values) {
    std::vector<double> averages;
    averages.reserve(values.size() * (values.size() + 1) / 2);
    for (std::size_t one = 0; one < values.size(); ++one) {
        for (std::size_t other = 0; other <= one; ++other) {
            averages.push_back((values[one] + values[other]) / 2.0);
        }
    }
    std::sort(averages.begin(), averages.end());
    return averages;
}

struct Moments {
    double mean = 0.0;
    double meanVariance = 0.0;  ///< of the mean
    double freedom = 0.0;
};

// Equal values have no variance, whatever their mean is rounded to.
Moments momentsOf(const std::vector<double>& values) {
    const auto count = static_cast<double>(values.size());
    Moments moments{.mean = std::accumulate(values.begin(), values.end(), 0.0) / count, .freedom = count - 1};
    if (std::all_of(values.begin(), values.end(), [&](double value) { return value == values.front(); })) {
        moments.mean = values.front();
        return moments;
    }
    double squares = 0.0;
    for (const double value : values) {
        squares += (value - moments.mean) * (value - moments.mean);
    }
    moments.meanVariance = squares / moments.freedom / count;
    return moments;
}

// The continued fraction of the incomplete beta function by Lentz's method; it converges fast for x below
// (a + 1) / (a + b + 2).
double betaFraction(double a, double b, double x) {
    constexpr double tiny = 1e-300;
    constexpr int maxSteps = 100'000;
    const auto kept = [](double value) { return std::abs(value) < tiny ? tiny : value; };
    double c = 1.0;
    double d = 1.0 / kept(1.0 - (a + b) * x / (a + 1.0));
    double fraction = d;
    for (int step = 1; step <= maxSteps; ++step) {
        const double m = step;
        const auto advance = [&](double coefficient) {
            d = 1.0 / kept(1.0 + coefficient * d);
            c = kept(1.0 + coefficient / c);
            fraction *= c * d;
        };
        advance(m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m)));
        advance(-(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0)));
        if (std::abs(c * d - 1.0) < std::numeric_limits<double>::epsilon()) {
            break;
        }
    }
    return fraction;
}

// For x below (a + 1) / (a + b + 2). `rest` is 1 - x, which the caller may know better.
double lowerBeta(double a, double b, double x, double rest) {
    const double front =
        std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) + a * std::log(x) + b * std::log(rest);
    return std::exp(front) / a * betaFraction(a, b, x);
}

double betaBetween(double a, double b, double x, double rest) {
    if (x <= 0.0 || rest <= 0.0) {
        return x <= 0.0 ? 0.0 : 1.0;
    }
    return x < (a + 1.0) / (a + b + 2.0) ? lowerBeta(a, b, x, rest) : 1.0 - lowerBeta(b, a, rest, x);
}

}  // namespace

Range rangeOf(std::span<const double> values) {
    if (values.empty()) {
        return {};
    }
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    const double sum = std::accumulate(sorted.begin(), sorted.end(), 0.0);
    return {.mean = sum / static_cast<double>(sorted.size()),
            .median = quantile(sorted, 0.5),
            .min = sorted.front(),
            .max = sorted.back()};
}

std::optional<Shift> shiftBetween(std::span<const double> base, std::span<const double> changed) {
    const auto from = logarithmsOf(base);
    const auto to = logarithmsOf(changed);
    if (!from || !to || from->empty() || to->empty()) {
        return std::nullopt;
    }
    const std::vector<double> differences = sortedDifferences(*from, *to);
    const auto [firstEqual, firstAbove] = std::equal_range(differences.begin(), differences.end(), 0.0);
    const double u = static_cast<double>(differences.end() - firstAbove) +
                     static_cast<double>(firstAbove - firstEqual) / 2.0;
    const RankTest test(from->size(), to->size(), tieSum(*from, *to));
    Shift shift{
        .change = std::expm1(quantile(differences, 0.5)), .interval = std::nullopt, .p = test.twoSidedP(u)};
    if (const std::size_t end = test.lowerEnd(); end != 0) {
        shift.interval = {std::expm1(differences[end - 1]),
                          std::expm1(differences[differences.size() - end])};
    }
    return shift;
}

std::optional<Shift> shiftOfPairs(std::span<const double> base, std::span<const double> changed) {
    const auto ratios = ratiosOf(base, changed);
    if (!ratios || ratios->empty()) {
        return std::nullopt;
    }
    std::vector<double> moved = *ratios;
    std::erase(moved, 0.0);
    const std::vector<double> averages = sortedWalshAverages(*ratios);
    Shift shift{.change = std::expm1(quantile(averages, 0.5)),
                .interval = std::nullopt,
                .p = SignedRankTest(std::move(moved)).twoSidedP()};
    if (const std::size_t end = SignedRankTest::lowerEnd(ratios->size()); end != 0) {
        shift.interval = {std::expm1(averages[end - 1]), std::expm1(averages[averages.size() - end])};
    }
    return shift;
}

std::optional<double> geometricChange(std::span<const double> base, std::span<const double> changed) {
    const auto from = logarithmsOf(base);
    const auto to = logarithmsOf(changed);
    if (!from || !to || from->empty() || to->empty()) {
        return std::nullopt;
    }
    return std::expm1(momentsOf(*to).mean - momentsOf(*from).mean);
}

std::optional<double> welchP(std::span<const double> base, std::span<const double> changed) {
    const auto from = logarithmsOf(base);
    const auto to = logarithmsOf(changed);
    if (!from || !to || from->size() < 2 || to->size() < 2) {
        return std::nullopt;
    }
    const Moments ofBase = momentsOf(*from);
    const Moments ofChanged = momentsOf(*to);
    const double difference = ofChanged.mean - ofBase.mean;
    const double variance = ofBase.meanVariance + ofChanged.meanVariance;
    if (variance == 0.0) {
        return difference == 0.0 ? 1.0 : 0.0;
    }
    const double shareOfBase = ofBase.meanVariance / variance;
    const double shareOfChanged = ofChanged.meanVariance / variance;
    const double freedom = 1.0 / (shareOfBase * shareOfBase / ofBase.freedom +
                                  shareOfChanged * shareOfChanged / ofChanged.freedom);
    const double squareOfT = difference * difference / variance;
    return betaBetween(freedom / 2.0, 0.5, freedom / (freedom + squareOfT),
                       squareOfT / (freedom + squareOfT));
}

std::optional<double> pairedP(std::span<const double> base, std::span<const double> changed) {
    const auto ratios = ratiosOf(base, changed);
    if (!ratios || ratios->size() < 2) {
        return std::nullopt;
    }
    const Moments moments = momentsOf(*ratios);
    if (moments.meanVariance == 0.0) {
        return moments.mean == 0.0 ? 1.0 : 0.0;
    }
    const double squareOfT = moments.mean * moments.mean / moments.meanVariance;
    const double whole = moments.freedom + squareOfT;
    return betaBetween(moments.freedom / 2.0, 0.5, moments.freedom / whole, squareOfT / whole);
}

std::vector<double> holm(std::span<const double> p) {
    std::vector<std::size_t> order(p.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [p](std::size_t left, std::size_t right) { return p[left] < p[right]; });
    std::vector<double> corrected(p.size());
    double largest = 0.0;
    for (std::size_t rank = 0; rank < order.size(); ++rank) {
        const double now = p[order[rank]] * static_cast<double>(order.size() - rank);
        largest = std::min(1.0, std::max(largest, now));
        corrected[order[rank]] = largest;
    }
    return corrected;
}

std::optional<double> largeSpread(std::span<const double> base, std::span<const double> changed,
                                  bool isPaired) {
    std::vector<std::optional<std::vector<double>>> samples;
    if (isPaired) {
        samples.push_back(ratiosOf(base, changed));
    } else {
        samples = {logarithmsOf(base), logarithmsOf(changed)};
    }
    double squares = 0.0;
    double freedom = 0.0;
    for (const auto& sample : samples) {
        if (!sample || sample->size() < 2) {
            return std::nullopt;
        }
        const Moments moments = momentsOf(*sample);
        squares += moments.meanVariance * moments.freedom * static_cast<double>(sample->size());
        freedom += moments.freedom;
    }
    // The lower fifth of the chi-square distribution by Wilson and Hilferty.
    constexpr double fifthOfNormal = -0.8416212335729143;
    const double part = 2.0 / (9.0 * freedom);
    const double root = 1.0 - part + fifthOfNormal * std::sqrt(part);
    return std::sqrt(squares / (freedom * root * root * root));
}

double incompleteBeta(double a, double b, double x) {
    return betaBetween(a, b, x, 1.0 - x);
}

}  // namespace zeb::analysis
