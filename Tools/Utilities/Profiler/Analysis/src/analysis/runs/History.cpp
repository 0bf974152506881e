#include "analysis/runs/History.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <numeric>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "analysis/FigureText.h"
#include "analysis/runs/CommonFactor.h"

namespace zeb::analysis {

namespace {

// A log's averages are cut to whole microseconds, so a layer's step by no more may be all rounding.
constexpr double resolutionUs = 1.0;
constexpr std::uint64_t year2000Us = 946'684'800'000'000;
constexpr std::string_view commonFactorName = "All layers";

struct SeriesTotal {
    Total total;
    std::string_view name;
};
constexpr SeriesTotal seriesTotals[] = {
    {Total::marlix, "Marlix"}, {Total::accelerator, "Accelerator"}, {Total::layers, "ZEB layers"}};

// A graph of one run, and where it stands among the versions.
struct GraphRun {
    std::size_t version = 0;
    const GraphSummary* graph = nullptr;
};

// The runs that may be compared with each other.
struct Group {
    std::string graph;
    std::string conditions;
    std::vector<GraphRun> runs;  ///< in the order of their versions
};

// A condition of a run, and its text; empty where it is not told.
struct Condition {
    std::string_view name;
    std::string (*textOf)(const HistoryRun& run, const GraphSummary& graph);
};

std::string clockText(std::uint32_t hz) {
    return hz == 0 ? "" : std::to_string(hz / 1'000'000) + " MHz";
}

std::string levelText(const std::optional<Level>& level) {
    return std::string(level ? nameOf(*level) : "");
}

constexpr Condition conditions[] = {
    {"level", [](const HistoryRun& run, const GraphSummary&) { return levelText(run.summary.level); }},
    {"execution",
     [](const HistoryRun& run, const GraphSummary&) {
         return std::string(run.summary.isAsync ? "asynchronous" : "synchronous");
     }},
    {"DSP", [](const HistoryRun&, const GraphSummary& graph) { return clockText(graph.dspClockHz); }},
    {"Krel", [](const HistoryRun&, const GraphSummary& graph) { return clockText(graph.krelClockHz); }},
    {"", [](const HistoryRun& run, const GraphSummary&) { return run.split; }},
};
constexpr std::size_t conditionCount = std::size(conditions);
using ConditionTexts = std::array<std::string, conditionCount>;

ConditionTexts conditionsOf(const HistoryRun& run, const GraphSummary& graph) {
    ConditionTexts texts;
    std::transform(std::begin(conditions), std::end(conditions), texts.begin(),
                   [&](const Condition& condition) { return condition.textOf(run, graph); });
    return texts;
}

// What two sets of runs of a graph differ in; what all share goes without saying.
std::string differing(const ConditionTexts& texts, const std::vector<const ConditionTexts*>& all) {
    std::string text;
    for (std::size_t place = 0; place < conditionCount; ++place) {
        const bool isShared = std::all_of(all.begin(), all.end(), [&](const ConditionTexts* other) {
            return (*other)[place] == texts[place];
        });
        if (!isShared) {
            const std::string_view name = conditions[place].name;
            text.append(text.empty() ? "" : ", ").append(name).append(name.empty() ? "" : " ");
            text.append(texts[place].empty() ? "not told" : texts[place]);
        }
    }
    return text;
}

// The runs of which none is a copy of another one.
std::vector<const HistoryRun*> countedRuns(std::span<const HistoryRun> runs,
                                           std::vector<std::string>& warnings) {
    std::vector<const HistoryRun*> counted;
    std::unordered_map<std::string_view, const HistoryRun*> seen;
    for (const HistoryRun& run : runs) {
        const auto [first, isNew] = seen.emplace(run.summary.runId, &run);
        if (isNew || run.summary.runId.empty()) {
            counted.push_back(&run);
        } else {
            warnings.push_back(run.summary.logFile + " is a copy of " + first->second->summary.logFile +
                               " and does not count.");
        }
    }
    return counted;
}

void warnOfClocks(History& history) {
    std::size_t old = 0;
    std::size_t ties = 0;
    for (std::size_t version = 0; version < history.versions.size(); ++version) {
        const std::uint64_t epochUs = history.versions[version].epochUs;
        old += epochUs < year2000Us ? 1 : 0;
        ties += version > 0 && history.versions[version - 1].epochUs == epochUs ? 1 : 0;
    }
    if (old > 0) {
        history.warnings.push_back(
            counted(old, "version") + " of " + std::to_string(history.versions.size()) +
            " began before the year 2000 by the clock of the log, so their order means little.");
    }
    if (ties > 0) {
        history.warnings.push_back(
            counted(ties, "version") +
            " began at the same time as another; they stand in the order in which they were given.");
    }
}

// The versions in order, and the position of each by its name.
std::unordered_map<std::string_view, std::size_t> addVersions(History& history,
                                                              const std::vector<const HistoryRun*>& runs,
                                                              VersionOrder order) {
    std::unordered_map<std::string_view, std::size_t> positions;
    for (const HistoryRun* const run : runs) {
        const auto [found, isNew] = positions.emplace(run->version, history.versions.size());
        if (isNew) {
            history.versions.push_back({run->version, 0, run->summary.epochUs});
        }
        HistoryVersion& version = history.versions[found->second];
        ++version.runs;
        version.epochUs = std::min(version.epochUs, run->summary.epochUs);
    }
    if (order == VersionOrder::epoch) {
        std::stable_sort(history.versions.begin(), history.versions.end(),
                         [](const HistoryVersion& left, const HistoryVersion& right) {
                             return left.epochUs < right.epochUs;
                         });
        warnOfClocks(history);
    }
    positions.clear();
    for (std::size_t version = 0; version < history.versions.size(); ++version) {
        positions.emplace(history.versions[version].name, version);
    }
    return positions;
}

std::vector<Group> groupsOf(const std::vector<const HistoryRun*>& runs,
                            const std::unordered_map<std::string_view, std::size_t>& positions) {
    std::map<std::pair<std::string, ConditionTexts>, std::vector<GraphRun>> byCondition;
    std::vector<std::string> graphs;  // in order of first appearance
    std::unordered_set<std::string_view> known;
    for (const HistoryRun* const run : runs) {
        for (const GraphSummary& graph : run->summary.graphs) {
            byCondition[{graph.name, conditionsOf(*run, graph)}].push_back(
                {positions.at(run->version), &graph});
            if (known.insert(graph.name).second) {
                graphs.push_back(graph.name);
            }
        }
    }
    std::vector<Group> groups;
    for (const std::string& name : graphs) {
        std::vector<const ConditionTexts*> all;
        for (const auto& [key, unused] : byCondition) {
            if (key.first == name) {
                all.push_back(&key.second);
            }
        }
        for (auto& [key, graphRuns] : byCondition) {
            if (key.first == name) {
                std::stable_sort(
                    graphRuns.begin(), graphRuns.end(),
                    [](const GraphRun& left, const GraphRun& right) { return left.version < right.version; });
                groups.push_back({name, differing(key.second, all), std::move(graphRuns)});
            }
        }
    }
    return groups;
}

// One value a run becomes one point a version.
std::vector<SeriesPoint> pointsOf(const std::vector<std::pair<std::size_t, double>>& values) {
    std::vector<SeriesPoint> points;
    for (auto first = values.begin(); first != values.end();) {
        const auto last = std::find_if(first, values.end(),
                                       [first](const auto& value) { return value.first != first->first; });
        std::vector<double> ofVersion;
        std::transform(first, last, std::back_inserter(ofVersion),
                       [](const auto& value) { return value.second; });
        const Range range = rangeOf(ofVersion);
        points.push_back({first->first, ofVersion.size(), range.median, range.min, range.max});
        first = last;
    }
    return points;
}

// The times of a group's layers, matched by name and by the order among equal ones.
struct LayerColumn {
    std::string name;
    std::vector<double> us;  ///< by run; 0 where a run does not have the layer
    double middleUs = 0.0;
};

std::vector<LayerColumn> layerColumns(const Group& group) {
    std::vector<LayerColumn> columns;
    std::map<std::pair<std::string_view, std::size_t>, std::size_t> positions;
    for (std::size_t run = 0; run < group.runs.size(); ++run) {
        std::unordered_map<std::string_view, std::size_t> equalNames;
        for (const LayerTime& layer : group.runs[run].graph->layers) {
            const auto [found, isNew] = positions.emplace(
                std::pair(std::string_view(layer.name), equalNames[layer.name]++), columns.size());
            if (isNew) {
                columns.push_back({layer.name, std::vector<double>(group.runs.size(), 0.0), 0.0});
            }
            columns[found->second].us[run] = layer.us;
        }
    }
    for (LayerColumn& column : columns) {
        std::vector<double> known;
        std::copy_if(column.us.begin(), column.us.end(), std::back_inserter(known),
                     [](double us) { return us > 0.0; });
        column.middleUs = rangeOf(known).median;
    }
    return columns;
}

// The factor that all layers of a run share against their middles over all runs; 1 where there is none.
std::vector<std::optional<double>> commonFactors(const std::vector<LayerColumn>& columns, std::size_t runs) {
    std::vector<double> middles;
    for (const LayerColumn& column : columns) {
        middles.push_back(column.middleUs);
    }
    std::vector<std::optional<double>> factors(runs);
    std::vector<double> us(columns.size());
    for (std::size_t run = 0; run < runs; ++run) {
        std::transform(columns.begin(), columns.end(), us.begin(),
                       [run](const LayerColumn& column) { return column.us[run]; });
        if (const auto factor = commonFactor(middles, us)) {
            factors[run] = factor->factor;
        }
    }
    return factors;
}

class SeriesMaker {
public:
    SeriesMaker(History& history, const Group& group) : history_(history), group_(group) {}

    void addTotals() {
        for (const auto& [total, name] : seriesTotals) {
            add(SeriesKind::total, std::string(name),
                [total = total](const GraphRun& run, std::size_t) { return run.graph->totalUs(total); });
        }
    }

    void addLayers() {
        const std::vector<LayerColumn> columns = layerColumns(group_);
        const auto factors = commonFactors(columns, group_.runs.size());
        add(SeriesKind::commonFactor, std::string(commonFactorName),
            [&](const GraphRun&, std::size_t run) { return factors[run]; });
        for (const LayerColumn& column : columns) {
            add(SeriesKind::layer, column.name, [&](const GraphRun&, std::size_t run) {
                return column.us[run] > 0.0 ? std::optional(column.us[run] / factors[run].value_or(1.0))
                                            : std::nullopt;
            });
        }
    }

private:
    template <typename ValueOf>
    void add(SeriesKind kind, std::string name, const ValueOf& valueOf) {
        std::vector<std::pair<std::size_t, double>> values;
        for (std::size_t run = 0; run < group_.runs.size(); ++run) {
            if (const std::optional<double> value = valueOf(group_.runs[run], run)) {
                values.emplace_back(group_.runs[run].version, *value);
            }
        }
        if (!values.empty()) {
            history_.series.push_back(
                {group_.graph, group_.conditions, kind, std::move(name), pointsOf(values), {}});
        }
    }

    History& history_;
    const Group& group_;
};

double levelUs(const HistorySeries& series, std::size_t first, std::size_t end) {
    std::vector<double> values;
    for (std::size_t point = first; point < end; ++point) {
        values.push_back(series.points[point].median);
    }
    return rangeOf(values).median;
}

double changeUsOf(const HistorySeries& series, const LevelStep& step) {
    const auto position = static_cast<std::size_t>(&step - series.course.steps.data());
    const std::size_t first = position == 0 ? 0 : series.course.steps[position - 1].first;
    return levelUs(series, first, step.first) * step.change;
}

void dropRounding(HistorySeries& series) {
    if (series.kind != SeriesKind::layer) {
        return;
    }
    std::vector<LevelStep> kept;
    for (const LevelStep& step : series.course.steps) {
        if (std::abs(changeUsOf(series, step)) > resolutionUs) {
            kept.push_back(step);
        }
    }
    series.course.steps = std::move(kept);
    series.course.newestLevel = series.course.steps.empty() ? 0 : series.course.steps.back().first;
}

void addCourses(History& history, RankSumChance& chance) {
    std::vector<std::vector<double>> times;
    for (const HistorySeries& series : history.series) {
        auto& ofSeries = times.emplace_back();
        std::transform(series.points.begin(), series.points.end(), std::back_inserter(ofSeries),
                       [](const SeriesPoint& point) { return point.median; });
        history.seriesTried += ofSeries.size() >= 2 * minLevelLength ? 1 : 0;
    }
    std::vector<SeriesCourse> courses = coursesOf(times, chance);
    for (std::size_t position = 0; position < courses.size(); ++position) {
        history.series[position].course = std::move(courses[position]);
        dropRounding(history.series[position]);
    }
}

void warnOfConditions(History& history, const std::vector<Group>& groups) {
    for (const Group& group : groups) {
        if (!group.conditions.empty()) {
            history.warnings.push_back("Runs of " + group.graph + " with " + group.conditions +
                                       " are series of their own: " + counted(group.runs.size(), "run") +
                                       '.');
        }
    }
}

std::string percentOfShare(double share) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.3g %%", share * 100.0);
    return text.data();
}

// A step of a total comes with those of the others and of the common factor, so their p are corrected for
// less.
std::optional<double> hiddenIn(const History& history, const HistorySeries& series, std::size_t newest,
                               RankSumChance& chance) {
    const auto companions = static_cast<std::size_t>(
        std::count_if(history.series.begin(), history.series.end(), [&](const HistorySeries& other) {
            return other.kind != SeriesKind::layer && other.graph == series.graph &&
                   other.conditions == series.conditions;
        }));
    const std::size_t tried =
        series.kind == SeriesKind::layer ? history.seriesTried : history.seriesTried / companions;
    return hiddenStep(series.points.size() - series.course.newestLevel, newest, series.course.spreadShare,
                      tried, chance);
}

}  // namespace

double HistorySeries::newestUs() const {
    return levelUs(*this, course.newestLevel, points.size());
}

History historyOf(std::span<const HistoryRun> runs, VersionOrder order, RankSumChance& chance) {
    History history;
    const std::vector<const HistoryRun*> counted = countedRuns(runs, history.warnings);
    const auto positions = addVersions(history, counted, order);
    const std::vector<Group> groups = groupsOf(counted, positions);
    warnOfConditions(history, groups);
    for (const Group& group : groups) {
        SeriesMaker maker(history, group);
        maker.addTotals();
        maker.addLayers();
    }
    addCourses(history, chance);
    return history;
}

std::vector<HiddenStep> hiddenStepsOf(const History& history, const HistorySeries& series,
                                      RankSumChance& chance) {
    std::vector<HiddenStep> hidden;
    for (const std::size_t newest : {4U, 8U, 16U, 32U}) {
        if (const auto share = hiddenIn(history, series, newest, chance)) {
            hidden.push_back({newest, *share});
        }
    }
    return hidden;
}

std::vector<StepCause> causesOf(const History& history, const HistorySeries& series, const LevelStep& step) {
    constexpr std::size_t apart = 2;  // versions by which the split of another series may lie beside it
    const std::size_t version = series.points[step.first].version;
    std::vector<StepCause> causes;
    double layersUs = 0.0;
    for (const HistorySeries& other : history.series) {
        if (other.kind == SeriesKind::total || other.graph != series.graph ||
            other.conditions != series.conditions) {
            continue;
        }
        layersUs += other.kind == SeriesKind::layer ? levelUs(other, 0, other.points.size()) : 0.0;
        for (const LevelStep& own : other.course.steps) {
            const std::size_t place = other.points[own.first].version;
            if (std::max(place, version) - std::min(place, version) <= apart) {
                causes.push_back(
                    {&other, &own, other.kind == SeriesKind::layer ? changeUsOf(other, own) : own.change});
            }
        }
    }
    for (StepCause& cause : causes) {
        cause.changeUs *= cause.series->kind == SeriesKind::commonFactor ? layersUs : 1.0;
    }
    std::stable_sort(causes.begin(), causes.end(), [](const StepCause& left, const StepCause& right) {
        return std::abs(left.changeUs) > std::abs(right.changeUs);
    });
    return causes;
}

NewestVerdict judgeNewest(const History& history, double maxGrowth, RankSumChance& chance) {
    NewestVerdict verdict;
    bool isAnyJudged = false;
    const auto add = [&verdict](NewestOutcome outcome, std::string reason) {
        // What is slower outweighs what is unsure.
        verdict.outcome = verdict.outcome == NewestOutcome::slower ? verdict.outcome : outcome;
        verdict.reasons.push_back(std::move(reason));
    };
    for (const HistorySeries& series : history.series) {
        if (series.name != seriesTotals[0].name || series.kind != SeriesKind::total ||
            series.newestVersion() + 1 != history.versions.size()) {
            continue;
        }
        isAnyJudged = true;
        const std::string graph =
            series.conditions.empty() ? series.graph : series.graph + " (" + series.conditions + ')';
        const SeriesCourse& course = series.course;
        if (!course.steps.empty() && course.steps.back().change > maxGrowth &&
            !course.areNeighboursRelated()) {
            add(NewestOutcome::slower,
                graph + ": Marlix grew by " + percentOfShare(course.steps.back().change) + " at " +
                    history.versions[series.points[course.steps.back().first].version].name + ", and " +
                    percentOfShare(maxGrowth) + " is allowed");
            continue;
        }
        const std::size_t newest =
            std::max<std::size_t>(2 * minLevelLength, (series.points.size() - course.newestLevel) / 4);
        const auto hidden = hiddenIn(history, series, newest, chance);
        if (course.areNeighboursRelated()) {
            add(NewestOutcome::unsure, graph + ": neighbouring versions are related (" +
                                           percentOfShare(course.neighbourCorrelation) +
                                           "), so steps of Marlix are unsure");
        } else if (!hidden || *hidden > maxGrowth) {
            add(NewestOutcome::unsure,
                graph + ": in the newest " + counted(newest, "version") + " a step of Marlix by " +
                    percentOfShare(maxGrowth) + " may hide: " +
                    (hidden ? "what is below " + percentOfShare(*hidden) + " is not sure to be seen"
                            : "there are too few versions"));
        }
    }
    if (!isAnyJudged) {
        add(NewestOutcome::unsure, "the newest version has no executions to judge");
    }
    return verdict;
}

}  // namespace zeb::analysis
