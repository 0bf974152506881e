#include "analysis/FigureText.h"

#include <cmath>

#include "text/NumberText.h"

namespace zeb::analysis {

using profiling::fixedPoint;

std::string usDigits(double us) {
    const double size = std::abs(us);
    if (size >= 100.0 || size == std::floor(size)) {
        return fixedPoint(us, 0);
    }
    return fixedPoint(us, size < 10.0 ? 2 : 1);
}

std::string timeText(double us) {
    constexpr double msFrom = 1e4;
    constexpr double secondsFrom = 1e7;
    const double size = std::abs(us);
    if (size < msFrom) {
        return usDigits(us) + " us";
    }
    const bool isInMs = size < secondsFrom;
    const double value = us / (isInMs ? 1e3 : 1e6);
    return fixedPoint(value, std::abs(value) < 100.0 ? 1 : 0) + (isInMs ? " ms" : " s");
}

std::string percentText(double percent) {
    if (percent > 0.0 && percent < 0.005) {
        return "<0.01%";
    }
    if (percent < 100.0 && percent >= 99.95) {
        return ">99.9%";
    }
    return fixedPoint(percent, percent > 0.0 && percent < 0.1 ? 2 : 1) + '%';
}

double percentOf(double part, double whole) {
    return whole > 0.0 ? part / whole * 100.0 : 0.0;
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view several) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : several);
}

std::string counted(std::uint64_t count, std::string_view one) {
    return counted(count, one, std::string(one) + 's');
}

std::string othersName(std::uint64_t count) {
    return '[' + counted(count, "other") + ']';
}

}  // namespace zeb::analysis
