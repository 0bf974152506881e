#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/runs/History.h"

/// The keys of a history's JSON: each struct's members in the order of the documentation. A visitor is called
/// with each key and value.
namespace zeb::forms {

std::string_view keyOf(analysis::SeriesKind kind);
std::string_view keyOf(analysis::NewestOutcome outcome);

/// A step of a series, with what came along.
struct StepInHistory {
    const analysis::History& history;
    const analysis::HistorySeries& series;
    const analysis::LevelStep& step;
};

/// A series, with what could still hide in its newest versions.
struct SeriesInHistory {
    const analysis::HistorySeries& series;
    std::vector<StepInHistory> steps;
    std::vector<analysis::HiddenStep> hidden;
};

template <typename Visit>
void fieldsOf(const analysis::HistoryVersion& version, Visit visit) {
    visit("name", version.name);
    visit("runs", version.runs);
    visit("epoch_us", version.epochUs == 0 ? std::nullopt : std::optional(version.epochUs));
}

template <typename Visit>
void fieldsOf(const analysis::SeriesPoint& point, Visit visit) {
    visit("version", point.version);
    visit("runs", point.runs);
    visit("median", point.median);
    visit("min", point.min);
    visit("max", point.max);
}

template <typename Visit>
void fieldsOf(const analysis::StepCause& cause, Visit visit) {
    visit("kind", keyOf(cause.series->kind));
    visit("name", cause.series->name);
    visit("change", cause.step->change);
    visit("change_us", cause.changeUs);
}

template <typename Visit>
void fieldsOf(const StepInHistory& in, Visit visit) {
    const auto& interval = in.step.interval;
    const std::size_t version = in.series.points[in.step.first].version;
    visit("version", version);
    visit("version_name", in.history.versions[version].name);
    visit("change", in.step.change);
    visit("low", interval ? std::optional(interval->low) : std::nullopt);
    visit("high", interval ? std::optional(interval->high) : std::nullopt);
    visit("p", in.step.p);
    visit("causes", in.series.kind == analysis::SeriesKind::total
                        ? analysis::causesOf(in.history, in.series, in.step)
                        : std::vector<analysis::StepCause>());
}

template <typename Visit>
void fieldsOf(const analysis::HiddenStep& hidden, Visit visit) {
    visit("newest", hidden.newest);
    visit("below", hidden.share);
}

template <typename Visit>
void fieldsOf(const SeriesInHistory& in, Visit visit) {
    const analysis::SeriesCourse& course = in.series.course;
    visit("graph", in.series.graph);
    visit("conditions", in.series.conditions);
    visit("kind", keyOf(in.series.kind));
    visit("name", in.series.name);
    visit("newest_level", in.series.newestUs());
    visit("spread", course.spreadShare);
    visit("neighbour_correlation", course.neighbourCorrelation);
    visit("unsure", course.areNeighboursRelated());
    visit("drift", course.driftShare);
    visit("steps", in.steps);
    visit("hidden", in.hidden);
    visit("points", in.series.points);
}

template <typename Visit>
void fieldsOf(const analysis::NewestVerdict& verdict, Visit visit) {
    visit("outcome", keyOf(verdict.outcome));
    visit("reasons", verdict.reasons);
}

}  // namespace zeb::forms
