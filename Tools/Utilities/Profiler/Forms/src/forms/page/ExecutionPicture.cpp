#include "forms/page/ExecutionPicture.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>
#include <string_view>

#include "analysis/Spread.h"

namespace zeb::forms {

namespace {

using Durations = std::vector<std::optional<std::uint64_t>>;
using Bin = ExecutionPicture::Bin;

constexpr std::size_t minBins = 16;
constexpr std::size_t maxBinsOfGraph = 1000;
constexpr std::size_t maxColumns = 40;

Bin binOf(std::span<const std::optional<std::uint64_t>> durations) {
    std::vector<double> timed;
    timed.reserve(durations.size());
    for (const auto& us : durations) {
        if (us.value_or(0) != 0) {
            timed.push_back(static_cast<double>(*us));
        }
    }
    if (timed.empty()) {
        return {};
    }
    std::sort(timed.begin(), timed.end());
    return {timed.size(), timed.front(), analysis::quantile(timed, 0.5), timed.back()};
}

template <typename Use>
void forEachTimed(const Durations& durations, Use use) {
    for (std::size_t position = 0; position < durations.size(); ++position) {
        if (durations[position].value_or(0) != 0) {
            use(position, static_cast<double>(*durations[position]));
        }
    }
}

// The few longest executions would leave all others one column, so what is far off is counted, not shown.
void addHistogram(ExecutionPicture& picture, const analysis::Graph& graph) {
    const analysis::Spread& spread = graph.spread;
    if (spread.count == 0) {
        return;
    }
    const double bulkUs = std::max(spread.p90Us() - spread.minUs(), 1.0);
    const double toUs = std::min(spread.maxUs(), spread.p90Us() + 2.0 * bulkUs);
    const double roomUs = std::max(toUs - spread.minUs(), 1.0);
    const auto fewEnough =
        static_cast<std::size_t>(std::ceil(2.0 * std::sqrt(static_cast<double>(spread.count))));
    // Durations are whole: columns of whole widths hold as many of them each.
    picture.columnUs =
        std::max(1.0, std::ceil(roomUs / static_cast<double>(std::min(maxColumns, fewEnough))));
    picture.fromUs = spread.minUs();
    picture.columns.resize(static_cast<std::size_t>(std::floor(roomUs / picture.columnUs)) + 1);
    forEachTimed(graph.executions.durationUs, [&picture](std::size_t /*position*/, double us) {
        const double column = (us - picture.fromUs) / picture.columnUs;
        if (column < static_cast<double>(picture.columns.size())) {
            ++picture.columns[static_cast<std::size_t>(column)];
        } else {
            ++picture.above;
        }
    });
}

void writeBins(JsonWriter& json, std::string_view key, const ExecutionPicture& picture, double Bin::*figure) {
    json.key(key);
    json.beginList();
    for (const Bin& bin : picture.bins) {
        bin.count == 0 ? json.null() : json.value(bin.*figure);
    }
    json.endList();
}

}  // namespace

std::size_t maxSinglesOfGraph(const analysis::Run& run) {
    const std::size_t executions = std::accumulate(
        run.graphs.begin(), run.graphs.end(), std::size_t{0},
        [](std::size_t sum, const analysis::Graph& graph) { return sum + graph.executions.count(); });
    if (executions <= maxSingleExecutions) {
        return maxSingleExecutions;
    }
    return std::clamp(maxSingleExecutions / run.graphs.size(), minBins, maxBinsOfGraph);
}

ExecutionPicture pictureOf(const analysis::Graph& graph, std::size_t maxBins) {
    ExecutionPicture picture;
    const std::span durations(graph.executions.durationUs);
    picture.count = durations.size();
    picture.binSize = std::max<std::size_t>(1, (durations.size() + maxBins - 1) / maxBins);
    for (std::size_t first = 0; first < durations.size(); first += picture.binSize) {
        picture.bins.push_back(binOf(
            durations.subspan(first, std::min<std::size_t>(picture.binSize, durations.size() - first))));
    }
    addHistogram(picture, graph);
    return picture;
}

void writePicture(JsonWriter& json, const ExecutionPicture& picture) {
    json.beginObject();
    json.member("count", picture.count);
    json.member("bin_size", picture.binSize);
    writeBins(json, "median_us", picture, &Bin::medianUs);
    if (picture.binSize > 1) {
        writeBins(json, "min_us", picture, &Bin::minUs);
        writeBins(json, "max_us", picture, &Bin::maxUs);
    }
    json.member("from_us", picture.fromUs);
    json.member("column_us", picture.columnUs);
    json.key("columns");
    json.beginList();
    for (const std::uint64_t count : picture.columns) {
        json.value(count);
    }
    json.endList();
    json.member("above", picture.above);
    json.endObject();
}

void writeQuantiles(JsonWriter& json) {
    json.beginList();
    for (const analysis::Quantile& quantile : analysis::quantiles) {
        json.beginObject();
        json.member("key", quantile.key);
        json.member("title", quantile.title);
        json.member("min_count", quantile.minCount);
        json.endObject();
    }
    json.endList();
}

}  // namespace zeb::forms
