#include "analysis/runs/LevelSteps.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace zeb::analysis {

namespace {

using Search = RankSumChance::Search;

// Versions that stand out from the rest: those before a split, or those of a window with others on both
// sides.
struct Standout {
    std::size_t first = 0;
    std::size_t end = 0;
    double rankSum = 0.0;  ///< standardised, without its sign
};

double rankSumDeviation(std::size_t before, std::size_t versions) {
    const auto k = static_cast<double>(before);
    const auto n = static_cast<double>(versions);
    return std::sqrt(k * (n - k) * (n + 1.0) / 12.0);
}

// The ranks of values, from 1; equal ones share theirs.
std::vector<double> ranksOf(std::span<const double> values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [values](std::size_t left, std::size_t right) { return values[left] < values[right]; });
    std::vector<double> ranks(values.size());
    for (std::size_t first = 0; first < order.size();) {
        std::size_t last = first;
        while (last < order.size() && values[order[last]] == values[order[first]]) {
            ++last;
        }
        const double shared = static_cast<double>(first + last + 1) / 2.0;
        for (; first < last; ++first) {
            ranks[order[first]] = shared;
        }
    }
    return ranks;
}

// Equal values narrow the spread of all rank sums alike.
double tieFactor(std::span<const double> ranks) {
    const auto n = static_cast<double>(ranks.size());
    double squares = 0.0;
    for (const double rank : ranks) {
        squares += (rank - (n + 1.0) / 2.0) * (rank - (n + 1.0) / 2.0);
    }
    return std::sqrt(squares / (n * (n * n - 1.0) / 12.0));
}

// The lengths of windows grow by a fourth: one that is an eighth too long or too short still shows nearly
// all.
std::size_t nextWindow(std::size_t length) {
    return length + std::max<std::size_t>(length / 4, 1);
}

// The largest rank sum, from the sums of the ranks' distances to their mean: sums[k] is over the first k
// versions. The deviations are those of rankSumDeviation for each number of versions.
Standout largestOf(std::span<const double> sums, std::span<const double> weights, Search search) {
    const std::size_t n = sums.size() - 1;
    Standout largest;
    const auto look = [&](std::size_t first, std::size_t end) {
        const double rankSum = std::abs(sums[end] - sums[first]) * weights[end - first];
        if (rankSum > largest.rankSum) {
            largest = {first, end, rankSum};
        }
    };
    if (search == Search::splits) {
        for (std::size_t split = minLevelLength; split + minLevelLength <= n; ++split) {
            look(0, split);
        }
        return largest;
    }
    for (std::size_t length = minLevelLength; length + 2 * minLevelLength <= n; length = nextWindow(length)) {
        for (std::size_t first = minLevelLength; first + length + minLevelLength <= n; ++first) {
            look(first, first + length);
        }
    }
    return largest;
}

// As many places are looked at, about, and a few more for the order.
std::size_t looksAt(std::size_t versions, Search search) {
    std::size_t lengths = 1;
    if (search == Search::windows) {
        for (std::size_t length = minLevelLength; length < versions; length = nextWindow(length)) {
            ++lengths;
        }
    }
    return versions * lengths;
}

std::vector<double> weightsFor(std::size_t versions) {
    std::vector<double> weights(versions, 0.0);
    for (std::size_t k = minLevelLength; k + minLevelLength <= versions; ++k) {
        weights[k] = 1.0 / rankSumDeviation(k, versions);
    }
    return weights;
}

std::size_t shortestFor(Search search) {
    return (search == Search::splits ? 2 : 3) * minLevelLength;
}

std::optional<Standout> largestOf(std::span<const double> values, Search search) {
    const std::size_t n = values.size();
    if (n < shortestFor(search)) {
        return std::nullopt;
    }
    const std::vector<double> ranks = ranksOf(values);
    const double factor = tieFactor(ranks);
    if (factor == 0.0) {
        return std::nullopt;
    }
    std::vector<double> sums(n + 1, 0.0);
    for (std::size_t k = 0; k < n; ++k) {
        sums[k + 1] = sums[k] + ranks[k] - static_cast<double>(n + 1) / 2.0;
    }
    Standout largest = largestOf(sums, weightsFor(n), search);
    largest.rankSum /= factor;
    return largest;
}

// A stretch of a series that may still have steps in it.
struct Stretch {
    std::size_t series = 0;
    std::size_t first = 0;
    std::size_t end = 0;
    Standout standout;  ///< positions in the series
    double p = 1.0;
};

// The better p of both searches counts twice where both are possible.
std::optional<Stretch> tried(std::size_t series, std::span<const double> values, std::size_t first,
                             std::size_t end, RankSumChance& chance) {
    const std::size_t size = end - first;
    const double searches = size < shortestFor(Search::windows) ? 1.0 : 2.0;
    std::optional<Stretch> stretch;
    for (const Search search : {Search::splits, Search::windows}) {
        const auto standout = largestOf(values.subspan(first, size), search);
        if (!standout) {
            continue;
        }
        const double p = std::min(1.0, searches * chance.of(standout->rankSum, size, search));
        if (!stretch || p < stretch->p) {
            stretch = {
                series, first, end, {first + standout->first, first + standout->end, standout->rankSum}, p};
        }
    }
    return stretch;
}

// The largest p that is accepted: of m, the k-th is when it is at most k / m of the share
// (Benjamini-Hochberg).
double acceptedUpTo(const std::vector<Stretch>& stretches) {
    std::vector<double> p;
    p.reserve(stretches.size());
    for (const Stretch& stretch : stretches) {
        p.push_back(stretch.p);
    }
    std::sort(p.begin(), p.end());
    for (std::size_t k = p.size(); k > 0; --k) {
        if (p[k - 1] <= falseStepShare * static_cast<double>(k) / static_cast<double>(p.size())) {
            return p[k - 1];
        }
    }
    return -1.0;
}

// Splits of each series, in time order. What is accepted is split, and both parts are tried with all others
// again.
std::vector<std::vector<std::size_t>> splitsOf(std::span<const std::vector<double>> logarithms,
                                               RankSumChance& chance) {
    std::vector<std::vector<std::size_t>> splits(logarithms.size());
    std::vector<Stretch> open;
    const auto push = [&](std::size_t series, std::size_t first, std::size_t end) {
        if (const auto stretch = tried(series, logarithms[series], first, end, chance)) {
            open.push_back(*stretch);
        }
    };
    for (std::size_t series = 0; series < logarithms.size(); ++series) {
        push(series, 0, logarithms[series].size());
    }
    for (bool hasMore = true; hasMore;) {
        const double limit = acceptedUpTo(open);
        const auto firstAccepted = std::partition(
            open.begin(), open.end(), [limit](const Stretch& stretch) { return stretch.p > limit; });
        const std::vector<Stretch> accepted(firstAccepted, open.end());
        open.erase(firstAccepted, open.end());
        for (const auto& [series, first, end, standout, p] : accepted) {
            std::size_t from = first;
            for (const std::size_t split : {standout.first, standout.end}) {
                if (split > from) {
                    splits[series].push_back(split);
                    push(series, from, split);
                    from = split;
                }
            }
            push(series, from, end);
        }
        hasMore = !accepted.empty();
    }
    for (auto& ofSeries : splits) {
        std::sort(ofSeries.begin(), ofSeries.end());
    }
    return splits;
}

// A split was chosen before its neighbours were known: the best one between them takes its place.
void settle(std::vector<std::size_t>& splits, std::span<const double> values) {
    for (std::size_t step = 0; step < splits.size(); ++step) {
        const std::size_t first = step == 0 ? 0 : splits[step - 1];
        const std::size_t end = step + 1 == splits.size() ? values.size() : splits[step + 1];
        if (const auto best = largestOf(values.subspan(first, end - first), Search::splits)) {
            splits[step] = first + best->end;
        }
    }
}

double medianOf(const std::vector<double>& values) {
    return rangeOf(values).median;
}

// What is left of values over the median of their level.
std::vector<double> leftOverLevels(std::span<const double> values, const std::vector<std::size_t>& splits) {
    std::vector<double> left;
    left.reserve(values.size());
    for (std::size_t level = 0; level <= splits.size(); ++level) {
        const std::size_t first = level == 0 ? 0 : splits[level - 1];
        const std::size_t end = level == splits.size() ? values.size() : splits[level];
        const double median = medianOf({values.begin() + static_cast<std::ptrdiff_t>(first),
                                        values.begin() + static_cast<std::ptrdiff_t>(end)});
        for (std::size_t position = first; position < end; ++position) {
            left.push_back(values[position] - median);
        }
    }
    return left;
}

struct Line {
    double slope = 0.0;  ///< of logarithms, a version
    std::vector<double> left;
};

// The line through the medians of the first and of the last third: a single spike does not move it.
Line lineThrough(std::span<const double> values) {
    const std::size_t third = values.size() / 3;
    const double early = medianOf({values.begin(), values.begin() + static_cast<std::ptrdiff_t>(third)});
    const double late = medianOf({values.end() - static_cast<std::ptrdiff_t>(third), values.end()});
    Line line;
    line.slope = (late - early) / static_cast<double>(values.size() - third);
    for (std::size_t position = 0; position < values.size(); ++position) {
        line.left.push_back(values[position] - line.slope * static_cast<double>(position));
    }
    const double height = medianOf(line.left);
    for (double& left : line.left) {
        left -= height;
    }
    return line;
}

double absoluteSum(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [](double sum, double value) { return sum + std::abs(value); });
}

// How badly a model fits, lower is better: twice the logarithm of the absolute errors, and a price for each
// parameter, as of the Bayesian information criterion under errors with long tails.
double misfit(const std::vector<double>& left, std::size_t parameters) {
    const auto n = static_cast<double>(left.size());
    return 2.0 * n * std::log(absoluteSum(left) / n) + static_cast<double>(parameters) * std::log(n);
}

// A line has to be better by so much: a staircase looks much like one.
constexpr double lineAdvantage = 6.0;

double neighbourCorrelationOf(const std::vector<double>& left) {
    double products = 0.0;
    double squares = 0.0;
    for (std::size_t position = 0; position < left.size(); ++position) {
        squares += left[position] * left[position];
        products += position == 0 ? 0.0 : left[position] * left[position - 1];
    }
    return squares == 0.0 ? 0.0 : products / squares;
}

// By the median of absolute values, in terms of a normal distribution's deviation.
double robustDeviation(std::vector<double> left) {
    constexpr double normalDeviations = 1.4826;
    std::transform(left.begin(), left.end(), left.begin(), [](double value) { return std::abs(value); });
    return normalDeviations * medianOf(left);
}

std::vector<LevelStep> stepsAt(const std::vector<std::size_t>& splits, std::span<const double> times,
                               std::span<const double> values, RankSumChance& chance) {
    std::vector<LevelStep> steps;
    for (std::size_t step = 0; step < splits.size(); ++step) {
        const std::size_t first = step == 0 ? 0 : splits[step - 1];
        const std::size_t end = step + 1 == splits.size() ? times.size() : splits[step + 1];
        const auto best = largestOf(values.subspan(first, end - first), Search::splits);
        const auto shift = shiftBetween(times.subspan(first, splits[step] - first),
                                        times.subspan(splits[step], end - splits[step]));
        if (best && shift) {
            steps.push_back({splits[step], shift->change, shift->interval,
                             chance.of(best->rankSum, end - first, Search::splits)});
        }
    }
    return steps;
}

SeriesCourse courseOf(std::span<const double> times, std::span<const double> values,
                      std::vector<std::size_t> splits, RankSumChance& chance) {
    SeriesCourse course;
    if (values.empty()) {
        return course;
    }
    settle(splits, values);
    std::vector<double> left = leftOverLevels(values, splits);
    if (!splits.empty()) {
        Line line = lineThrough(values);
        const double ofSteps = misfit(left, 2 * splits.size() + 1);
        if (misfit(line.left, 2) + lineAdvantage < ofSteps) {
            course.driftShare = std::expm1(line.slope);
            left = std::move(line.left);
            splits.clear();
        }
    }
    course.steps = stepsAt(splits, times, values, chance);
    course.newestLevel = splits.empty() ? 0 : splits.back();
    course.neighbourCorrelation = neighbourCorrelationOf(left);
    course.spreadShare = robustDeviation(std::move(left));
    return course;
}

// A size from a list whose neighbours differ by a tenth: chance changes slowly with the number of versions,
// and the larger number asks for more.
std::size_t roundedUp(std::size_t versions) {
    std::size_t size = 2 * minLevelLength;
    while (size < versions) {
        size = std::max(size + 1, size + size / 10);
    }
    return size;
}

}  // namespace

const std::vector<double>& RankSumChance::valuesFor(std::size_t versions, Search search) {
    constexpr std::size_t work = 20'000'000;
    constexpr std::size_t fewest = 1'000;
    constexpr std::size_t most = 20'000;
    const std::size_t size = roundedUp(std::max(versions, shortestFor(search)));
    std::vector<double>& values = values_[{size, search}];
    if (!values.empty()) {
        return values;
    }
    std::mt19937_64 random(size);
    std::vector<double> distances(size);  // of the ranks to their mean
    std::iota(distances.begin(), distances.end(), 1.0 - static_cast<double>(size + 1) / 2.0);
    std::vector<double> sums(size + 1, 0.0);
    const std::vector<double> weights = weightsFor(size);
    values.resize(std::clamp(work / looksAt(size, search), fewest, most));
    for (double& value : values) {
        for (std::size_t k = 0; k < size; ++k) {
            std::swap(distances[k], distances[k + static_cast<std::size_t>(random() % (size - k))]);
            sums[k + 1] = sums[k] + distances[k];
        }
        value = largestOf(sums, weights, search).rankSum;
    }
    std::sort(values.begin(), values.end());
    return values;
}

double RankSumChance::of(double rankSum, std::size_t versions, Search search) {
    const std::vector<double>& values = valuesFor(versions, search);
    const auto count = static_cast<double>(values.size());
    // Beyond the highest hundredth chance falls at least as fast as a normal tail does.
    const double tail = values[values.size() - values.size() / 100];
    if (rankSum > tail) {
        const auto above = values.end() - std::lower_bound(values.begin(), values.end(), tail);
        return static_cast<double>(above) / count * std::exp((tail * tail - rankSum * rankSum) / 2.0) *
               rankSum / tail;
    }
    const auto above = values.end() - std::lower_bound(values.begin(), values.end(), rankSum);
    return static_cast<double>(above) / count;
}

double RankSumChance::thresholdOf(double p, std::size_t versions, Search search) {
    double low = 0.0;
    double high = 40.0;
    for (int halving = 0; halving < 60; ++halving) {
        const double middle = (low + high) / 2.0;
        (of(middle, versions, search) > p ? low : high) = middle;
    }
    return high;
}

std::vector<SeriesCourse> coursesOf(std::span<const std::vector<double>> series, RankSumChance& chance) {
    std::vector<std::vector<double>> logarithms(series.size());
    for (std::size_t position = 0; position < series.size(); ++position) {
        const auto& times = series[position];
        if (std::all_of(times.begin(), times.end(),
                        [](double us) { return us > 0.0 && std::isfinite(us); })) {
            std::transform(times.begin(), times.end(), std::back_inserter(logarithms[position]),
                           [](double us) { return std::log(us); });
        }
    }
    std::vector<std::vector<std::size_t>> splits = splitsOf(logarithms, chance);
    std::vector<SeriesCourse> courses;
    courses.reserve(series.size());
    for (std::size_t position = 0; position < series.size(); ++position) {
        courses.push_back(
            courseOf(series[position], logarithms[position], std::move(splits[position]), chance));
    }
    return courses;
}

std::optional<double> hiddenStep(std::size_t versions, std::size_t newest, double spreadShare,
                                 std::size_t seriesTried, RankSumChance& chance) {
    if (newest < minLevelLength || versions < newest + minLevelLength) {
        return std::nullopt;
    }
    constexpr double seenInFourOfFive = 0.84;  // deviations of a normal distribution
    const double threshold =
        chance.thresholdOf(falseStepShare / 2.0 / static_cast<double>(std::max<std::size_t>(seriesTried, 1)),
                           versions, Search::splits);
    const auto k = static_cast<double>(newest);
    const auto n = static_cast<double>(versions);
    const double rankSumOfAll = std::sqrt(12.0 * k * (n - k) / (n + 1.0));
    // The rank sum grows with the chance that a version behind the step is slower than one before it, and
    // varies less the further that is from a half.
    const auto isSeen = [&](double deviations) {
        const double isSlower = 0.5 * std::erfc(-deviations / 2.0);
        const double variation = std::sqrt(4.0 * isSlower * (1.0 - isSlower));
        return rankSumOfAll * (isSlower - 0.5) - seenInFourOfFive * variation >= threshold;
    };
    double low = 0.0;
    double high = 20.0;
    if (!isSeen(high)) {
        return std::nullopt;
    }
    for (int halving = 0; halving < 60; ++halving) {
        const double middle = (low + high) / 2.0;
        (isSeen(middle) ? high : low) = middle;
    }
    return std::expm1(high * spreadShare);
}

}  // namespace zeb::analysis
