#include "analysis/runs/CommonFactor.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zeb::analysis {

namespace {

struct Weighted {
    double value = 0.0;
    double weight = 0.0;
};

// The value below and above which lies half of the weight; between two values where they share it just so.
double weightedMedian(std::vector<Weighted> values) {
    std::sort(values.begin(), values.end(),
              [](const Weighted& left, const Weighted& right) { return left.value < right.value; });
    double half = 0.0;
    for (const Weighted& one : values) {
        half += one.weight / 2.0;
    }
    double sum = 0.0;
    for (std::size_t position = 0; position + 1 < values.size(); ++position) {
        sum += values[position].weight;
        if (sum > half) {
            return values[position].value;
        }
        if (sum == half) {
            return (values[position].value + values[position + 1].value) / 2.0;
        }
    }
    return values.back().value;
}

bool isTime(double us) {
    return us > 0.0 && std::isfinite(us);
}

}  // namespace

std::optional<CommonFactor> commonFactor(std::span<const double> referenceUs, std::span<const double> us) {
    std::vector<Weighted> ratios;
    double whole = 0.0;
    double largest = 0.0;
    for (std::size_t layer = 0; layer < referenceUs.size(); ++layer) {
        const double reference = referenceUs[layer];
        if (!isTime(reference)) {
            continue;
        }
        whole += reference;
        largest = std::max(largest, reference);
        if (reference >= minCommonUs && isTime(us[layer])) {
            ratios.push_back({std::log(us[layer] / reference), reference});
        }
    }
    if (ratios.size() < minCommonLayers || largest > maxCommonShare * whole) {
        return std::nullopt;
    }
    const double middle = weightedMedian(ratios);
    for (Weighted& ratio : ratios) {
        ratio.value = std::abs(ratio.value - middle);
    }
    return CommonFactor{.factor = std::exp(middle), .deviation = weightedMedian(std::move(ratios))};
}

std::optional<double> excessOf(double referenceUs, double us, double factor) {
    if (!isTime(referenceUs) || !isTime(us)) {
        return std::nullopt;
    }
    return us / (referenceUs * factor) - 1.0;
}

}  // namespace zeb::analysis
