#include "forms/text/ComparisonRows.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>

#include "analysis/FigureText.h"
#include "analysis/runs/Answer.h"
#include "text/NumberText.h"

namespace zeb::forms {

namespace {

using analysis::Basis;
using analysis::LayerChange;
using analysis::TotalChange;
using analysis::Verdict;

constexpr std::string_view unsure = "~";

bool isMarked(const LayerChange& row) {
    return row.verdict != Verdict::unsure && row.verdict != Verdict::same;
}

// All figures of a row have as many digits as the largest deserves.
std::string withDigitsOf(std::initializer_list<double> figures, double us) {
    constexpr double wholeFrom = 1000.0;
    const bool areWhole =
        std::all_of(figures.begin(), figures.end(), [](double value) { return value == std::floor(value); });
    const bool isLarge =
        std::any_of(figures.begin(), figures.end(), [](double value) { return value >= wholeFrom; });
    return profiling::fixedPoint(us, areWhole || isLarge ? 0 : 1);
}

std::string withDigitsOf(const TotalChange& row, double us) {
    return withDigitsOf(
        {row.base.mean, row.base.min, row.base.max, row.changed.mean, row.changed.min, row.changed.max}, us);
}

std::string withSign(double value, const std::string& text) {
    return (value > 0.0 ? "+" : "") + text;
}

}  // namespace

std::string rangeText(const TotalChange& row, const analysis::Range& range, std::size_t logs, bool isWanted) {
    if (logs == 0) {
        return "-";
    }
    const std::string mean = withDigitsOf(row, range.mean);
    return logs == 1 || !isWanted
               ? mean
               : mean + " (" + withDigitsOf(row, range.min) + " to " + withDigitsOf(row, range.max) + ")";
}

std::string changeUsOf(const TotalChange& row) {
    return withSign(row.changeUs(), withDigitsOf(row, row.changeUs()));
}

std::string changeUsOf(const LayerChange& row) {
    return withSign(row.changeUs(), timeOf(row, row.changeUs()));
}

std::string timeOf(const LayerChange& row, double us) {
    return withDigitsOf({row.baseUs, row.newUs}, us);
}

std::string changeOf(const TotalChange& row) {
    if (row.verdict == Verdict::unsure) {
        return std::string(unsure);
    }
    return row.change ? analysis::signedPercent(*row.change) : "";
}

std::string changeOf(const LayerChange& row, Basis basis, bool hasShared) {
    const bool isTold =
        row.verdict != Verdict::unsure || basis == Basis::oneEach || (hasShared && basis != Basis::tooFew);
    if (!isTold) {
        return std::string(unsure);
    }
    return row.change ? analysis::signedPercent(*row.change) : "";
}

std::string beyondOf(const LayerChange& row) {
    if (row.verdict == Verdict::slower || row.verdict == Verdict::faster) {
        return analysis::signedPercent(row.excess.value_or(0.0));
    }
    return row.verdict == Verdict::unsure ? std::string(unsure) : "";
}

std::string pText(const std::optional<double>& p) {
    if (!p) {
        return "";
    }
    return *p < 0.001 ? "<0.001" : profiling::fixedPoint(*p, 3);
}

std::string wordOf(Verdict verdict) {
    return verdict == Verdict::unsure ? "" : std::string(nameOf(verdict));
}

std::string sharedWords(const analysis::SharedChange& shared) {
    return "All layers share " + analysis::signedPercent(shared.change) +
           (shared.interval ? " (" + textOf(*shared.interval) + ")" : "") +
           "; a layer is marked by what it changed beyond that.";
}

ShownRows shownRows(const std::vector<LayerChange>& rows, double hideBelow, std::size_t most) {
    ShownRows result;
    result.sum.name = "Sum";
    for (const LayerChange& row : rows) {
        result.sum.baseUs += row.baseUs;
        result.sum.newUs += row.newUs;
    }
    for (const LayerChange& row : rows) {
        if (isMarked(row) || std::abs(row.changeUs()) >= hideBelow * result.sum.baseUs) {
            result.shown.push_back(&row);
        }
    }
    if (result.shown.size() > most) {
        std::stable_partition(result.shown.begin(), result.shown.end(),
                              [](const LayerChange* row) { return isMarked(*row); });
        result.shown.resize(most);
        std::sort(result.shown.begin(), result.shown.end(), std::less<>());  // as they stand in the list
    }
    result.hidden = rows.size() - result.shown.size();
    result.others.name = analysis::othersName(result.hidden);
    auto next = result.shown.begin();
    for (const LayerChange& row : rows) {
        if (next != result.shown.end() && *next == &row) {
            ++next;
        } else {
            result.others.baseUs += row.baseUs;
            result.others.newUs += row.newUs;
        }
    }
    return result;
}

}  // namespace zeb::forms
