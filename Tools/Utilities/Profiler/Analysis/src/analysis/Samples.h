#pragma once

#include <optional>
#include <span>
#include <vector>

/// What two samples of times tell about a change from the one to the other. Changes are looked at on
/// logarithms, since a version makes a share of the time faster or slower: 0.1 is a growth by 10 %.
/// A time that is 0, negative or not finite has no logarithm, and no change is worked out from a sample that
/// holds one.
namespace zeb::analysis {

struct Range {
    double mean = 0.0;
    double median = 0.0;
    double min = 0.0;
    double max = 0.0;
};

/// @param values in any order; of none everything is 0
Range rangeOf(std::span<const double> values);

/// How sure an interval is, and below which p a difference is taken for one.
inline constexpr double confidence = 0.95;
inline constexpr double significance = 1.0 - confidence;

struct Interval {
    double low = 0.0;
    double high = 0.0;

    [[nodiscard]] bool holds(double value) const { return low <= value && value <= high; }
};

/// A change by the ranks of the samples: it needs no assumption on how they are spread.
struct Shift {
    double change = 0.0;               ///< the Hodges-Lehmann estimate, as a share of the base
    std::optional<Interval> interval;  ///< of the change; nothing when there are too few values for one
    double p = 1.0;                    ///< of the two-sided test
};

/// By the Mann-Whitney test, which the interval inverts. Up to 50 values a side without a tie the
/// distribution of the test is exact, else it is the normal approximation, corrected for ties and for
/// continuity. With ties the interval may just touch 0 where p is below the significance: it is the interval
/// that decides.
/// @return nothing when a sample is empty, or a value has no logarithm
std::optional<Shift> shiftBetween(std::span<const double> base, std::span<const double> changed);

/// The same of pairs, the n-th base with the n-th changed value: Wilcoxon's signed rank test on the
/// logarithms of their ratios. Up to 50 pairs the distribution of the test is exact, with equal ratios too,
/// which share their mean rank; else it is the normal approximation, corrected for ties and for continuity.
/// The test leaves out pairs of equal values; estimate and interval (of the Walsh averages) count them.
/// @param base,changed of one size
/// @return nothing as above
std::optional<Shift> shiftOfPairs(std::span<const double> base, std::span<const double> changed);

/// @return the change between the geometric means; nothing when a sample is empty or has a value without a
///         logarithm
std::optional<double> geometricChange(std::span<const double> base, std::span<const double> changed);

/// Welch's t test on logarithms. Samples that do not vary have a p of 1 when they are equal, else of 0.
/// @return p of the two-sided test; nothing when a sample has less than two values, or one without a
///         logarithm
std::optional<double> welchP(std::span<const double> base, std::span<const double> changed);

/// The t test on the logarithms of the ratios of pairs, otherwise the same.
/// @param base,changed of one size
std::optional<double> pairedP(std::span<const double> base, std::span<const double> changed);

/// Holm's correction for as many tests as there are values.
/// @return the corrected values in the same order, each 1 at most
std::vector<double> holm(std::span<const double> p);

/// How far a log lies from the mean of its side: the standard deviation of logarithms over both samples, or,
/// of pairs, of the logarithms of their ratios. It is the upper end of what is likely with 80 %, since few
/// logs tell little of it.
/// @return nothing when a sample has less than two values, or one without a logarithm
std::optional<double> largeSpread(std::span<const double> base, std::span<const double> changed,
                                  bool isPaired);

/// The regularised incomplete beta function.
/// @param a,b above 0
/// @param x 0 to 1
double incompleteBeta(double a, double b, double x);

}  // namespace zeb::analysis
