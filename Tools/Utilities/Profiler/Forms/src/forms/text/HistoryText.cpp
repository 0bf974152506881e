#include "forms/text/HistoryText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/FigureText.h"
#include "console/ConsoleText.h"
#include "text/NumberText.h"

namespace zeb::forms {

namespace {

using analysis::counted;
using analysis::History;
using analysis::HistorySeries;
using analysis::LevelStep;
using analysis::SeriesKind;
using console::ConsoleTable;
using console::left;
using console::right;
using console::shownName;
using profiling::fixedPoint;

constexpr std::size_t maxNameColumns = 40;
constexpr std::size_t maxTextColumns = 1000;  // of a warning
constexpr std::size_t maxPictureColumns = 48;
constexpr std::size_t maxCauses = 5;
constexpr std::array<std::string_view, 8> bars = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<std::string_view, 8> plainBars = {"0", "1", "2", "3", "4", "5", "6", "7"};

std::string withSign(double value, const std::string& text) {
    return (value > 0.0 ? "+" : "") + text;
}

std::string percent(double share) {
    return withSign(share, fixedPoint(share * 100.0, std::abs(share) < 0.01 ? 2 : 1)) + '%';
}

std::string us(double value) {
    return fixedPoint(value, value < 100.0 ? 1 : 0) + " us";
}

std::string levelText(const HistorySeries& series, double value) {
    return series.kind == SeriesKind::commonFactor ? fixedPoint(value, 3) : us(value);
}

// Each character is the median of as many versions as it takes to fit, between the lowest and the highest of
// them.
std::string pictureOf(const HistorySeries& series, bool hasUnicode) {
    const std::size_t columns = std::min(maxPictureColumns, series.points.size());
    std::vector<double> heights;
    for (std::size_t column = 0; column < columns; ++column) {
        std::vector<double> values;
        const std::size_t end = (column + 1) * series.points.size() / columns;
        for (std::size_t point = column * series.points.size() / columns; point < end; ++point) {
            values.push_back(series.points[point].median);
        }
        heights.push_back(analysis::rangeOf(values).median);
    }
    const auto [low, high] = std::minmax_element(heights.begin(), heights.end());
    std::string picture;
    for (const double height : heights) {
        const double share = *high > *low ? (height - *low) / (*high - *low) : 0.0;
        picture +=
            (hasUnicode ? bars : plainBars)[std::min<std::size_t>(static_cast<std::size_t>(share * 8.0), 7)];
    }
    return picture;
}

bool isStill(const HistorySeries& series) {
    return series.course.steps.empty() && !series.course.driftShare;
}

bool isOfSameGraph(const HistorySeries& left, const HistorySeries& right) {
    return left.graph == right.graph && left.conditions == right.conditions;
}

class HistoryPrinter {
public:
    HistoryPrinter(std::ostream& out, const History& history, analysis::RankSumChance& chance,
                   const HistoryTextOptions& options)
        : out_(out), history_(history), chance_(chance), options_(options) {}

    void print() {
        printHead();
        for (auto first = history_.series.begin(); first != history_.series.end();) {
            const auto end = std::find_if(first, history_.series.end(), [first](const HistorySeries& series) {
                return !isOfSameGraph(*first, series);
            });
            printGraph({first, end});
            first = end;
        }
        if (history_.series.empty()) {
            out_ << "\nNo run has a time, so there is no history.\n";
        }
    }

private:
    using Series = std::span<const HistorySeries>;

    [[nodiscard]] std::string name(const std::string& text) const {
        return shownName(text, maxNameColumns, options_.hasUnicode);
    }

    [[nodiscard]] std::string versionAt(const HistorySeries& series, std::size_t point) const {
        return name(history_.versions[series.points[point].version].name);
    }

    void printHead() {
        std::size_t runs = 0;
        for (const auto& version : history_.versions) {
            runs += version.runs;
        }
        out_ << counted(history_.versions.size(), "version") << " of " << counted(runs, "run");
        if (!history_.versions.empty()) {
            out_ << ": " << name(history_.versions.front().name) << " to "
                 << name(history_.versions.back().name);
        }
        out_ << '\n';
        for (const std::string& warning : history_.warnings) {
            out_ << "  ! " << shownName(warning, maxTextColumns, options_.hasUnicode) << '\n';
        }
    }

    void printGraph(Series all) {
        out_ << "\nGraph " << name(all.front().graph);
        if (!all.front().conditions.empty()) {
            out_ << " (" << name(all.front().conditions) << ')';
        }
        out_ << '\n';
        printSeries(all);
        printSteps(all);
        printHidden(all.front());
    }

    void printSeries(Series all) {
        ConsoleTable table(left(""), right("Now"), right("Last step"), left(""), left("Course"));
        std::size_t still = 0;
        for (const HistorySeries& series : all) {
            if (series.kind == SeriesKind::layer && isStill(series)) {
                ++still;
                continue;
            }
            const auto& course = series.course;
            std::string change = "none";
            std::string place;
            if (course.driftShare) {
                change = percent(*course.driftShare);
                place = "a version, steadily";
            } else if (!course.steps.empty()) {
                change = percent(course.steps.back().change);
                place = "at " + versionAt(series, course.steps.back().first);
            }
            table.add(name(series.name), levelText(series, series.newestUs()), change, place,
                      pictureOf(series, options_.hasUnicode));
        }
        for (const std::string& line : table.lines(2)) {
            out_ << line << '\n';
        }
        if (still != 0) {
            out_ << "  [" << counted(still, "layer") << " without a step]\n";
        }
    }

    void printSteps(Series all) {
        bool isFirst = true;
        for (const HistorySeries& series : all) {
            if (series.kind != SeriesKind::total) {
                continue;
            }
            for (const LevelStep& step : series.course.steps) {
                if (isFirst) {
                    out_ << "\n  Steps\n";
                    isFirst = false;
                }
                printStep(series, step);
            }
        }
    }

    void printStep(const HistorySeries& series, const LevelStep& step) {
        const std::string_view colour = !options_.hasColour ? ""
                                        : step.change > 0.0 ? "\x1B[31m"
                                                            : "\x1B[32m";
        out_ << "    " << colour << series.name << (step.change > 0.0 ? " slower" : " faster") << " from "
             << versionAt(series, step.first) << " on: " << percent(step.change)
             << (colour.empty() ? "" : "\x1B[0m");
        if (step.interval) {
            out_ << ", about " << percent(step.interval->low) << " to " << percent(step.interval->high);
        }
        if (series.course.areNeighboursRelated()) {
            out_ << "; unsure, as neighbouring versions are related ("
                 << fixedPoint(series.course.neighbourCorrelation, 2) << ')';
        }
        out_ << '\n';
        const auto causes = analysis::causesOf(history_, series, step);
        for (std::size_t cause = 0; cause < std::min(causes.size(), maxCauses); ++cause) {
            const auto& [of, own, changeUs] = causes[cause];
            out_ << "      " << (of->kind == SeriesKind::commonFactor ? "all layers alike" : name(of->name))
                 << ' ' << withSign(changeUs, us(changeUs)) << " (" << percent(own->change) << ")\n";
        }
        if (causes.size() > maxCauses) {
            out_ << "      and " << counted(causes.size() - maxCauses, "layer") << " more\n";
        }
        if (causes.empty()) {
            out_ << "      no layer has a step beside it\n";
        }
    }

    // The first series of a graph is that of its executions where it has one.
    void printHidden(const HistorySeries& series) {
        if (series.kind != SeriesKind::total) {
            return;
        }
        const auto hidden = analysis::hiddenStepsOf(history_, series, chance_);
        out_ << "\n  A step of " << series.name << " in the newest versions could still hide";
        if (hidden.empty()) {
            out_ << ", whatever its size: there are too few versions behind the last step to tell.\n";
            return;
        }
        out_ << ": below ";
        for (std::size_t place = 0; place < hidden.size(); ++place) {
            out_ << (place == 0 ? "" : ", ") << fixedPoint(hidden[place].share * 100.0, 1)
                 << "% in the newest " << hidden[place].newest;
        }
        out_ << ".\n";
    }

    std::ostream& out_;
    const History& history_;
    analysis::RankSumChance& chance_;
    HistoryTextOptions options_;
};

}  // namespace

void printHistory(std::ostream& out, const History& history, analysis::RankSumChance& chance,
                  const HistoryTextOptions& options) {
    HistoryPrinter(out, history, chance, options).print();
}

}  // namespace zeb::forms
