#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "analysis/Labels.h"
#include "analysis/LogText.h"
#include "log/ChunkCheck.h"
#include "log/EventUnit.h"

/// The figures of one run as plain values. They own all that they hold, so a run outlives the log and the
/// store that it was made from. Units stand in the names. Names of graphs and layers and the texts of steps
/// and events have no more bytes than `maxTextBytes`; texts are the bytes of the log and may be no UTF-8.
namespace zeb::analysis {

/// How deep a run was profiled.
enum class Level : std::int32_t { basic = 1, detailed = 2, internal = 1100 };

/// @return the level in a word; empty for one that has none
constexpr std::string_view nameOf(Level level) {
    switch (level) {
        case Level::basic:
            return "basic";
        case Level::detailed:
            return "detailed";
        case Level::internal:
            return "internal";
    }
    return "";
}

using Value = std::variant<std::monostate, std::int64_t, std::uint64_t, double, SharedText>;

/// Events nest no deeper in a run than in a log, whatever it was read from.
using profiling::maxEventDepth;

/// An event and what stands below it.
struct Event {
    SharedText name;
    std::uint32_t type = 0;
    profiling::EventUnit unit = profiling::EventUnit::microseconds;
    Value value;
    std::optional<std::uint64_t> objectBytes;  ///< size of an object event's content
    std::vector<Event> events;
};

/// What the log says about itself.
struct Header {
    double timeScale = 0.0;
    std::uint64_t epochUs = 0;   ///< since the Unix epoch
    std::uint64_t steadyUs = 0;  ///< steady clock at the same moment
    std::string generatorName;
    std::string generatorVersion;
    std::string backendVersion;
    bool isAdapterUpdaterLog = false;
};

enum class StepKind : std::uint8_t { libraryLoad, initStep, compose, init, finalize, deInit };

/// One measured step of the start or the end of a run.
struct Step {
    StepKind kind = StepKind::init;
    std::string text;                         ///< the graph, where the step has one
    std::optional<std::uint64_t> startUs;     ///< of the log's clock
    std::optional<std::uint64_t> durationUs;  ///< nothing when the log does not have both times
    std::vector<Event> events;                ///< of the latest step of a kind, and of a graph
};

/// All occurrences together of a method that is neither a step nor an execution.
struct OtherMethod {
    std::string method;
    std::string graph;
    std::uint64_t count = 0;
    std::uint64_t averageUs = 0;  ///< of those that have a duration, cut; so are the two below
    std::uint64_t minUs = 0;
    std::uint64_t maxUs = 0;
};

/// The executions of a graph in log order, as columns of one length.
struct Executions {
    std::vector<std::optional<std::uint64_t>> startUs;     ///< of the log's clock
    std::vector<std::optional<std::uint64_t>> durationUs;  ///< nothing when the log does not have both times
    std::vector<std::optional<std::uint64_t>> queueWaitUs;

    [[nodiscard]] std::size_t count() const { return durationUs.size(); }
};

/// A quantile of durations: the one below which a share of them lies.
struct Quantile {
    std::string_view key;    ///< of the JSON
    std::string_view title;  ///< that forms show
    double share;
    std::uint64_t minCount;  ///< durations that it takes: of fewer it tells nothing, and forms leave it out
};

/// All that are worked out, in the order of the forms.
inline constexpr Quantile quantiles[] = {
    {"min_us", "Min", 0.0, 1},    {"median_us", "Median", 0.5, 1}, {"p90_us", "p90", 0.9, 10},
    {"p99_us", "p99", 0.99, 100}, {"max_us", "Max", 1.0, 1},
};

consteval std::size_t positionOfQuantile(double share) {
    std::size_t position = 0;
    while (quantiles[position].share != share) {  // none of them: does not compile
        ++position;
    }
    return position;
}

/// How durations are spread. Quantiles lie between the two nearest values in proportion; over no values all
/// is 0.
struct Spread {
    std::uint64_t count = 0;  ///< of durations that are not 0
    std::array<double, std::size(quantiles)> quantilesUs{};
    std::optional<double> firstUs;  ///< of the log's first execution; nothing where it has no duration

    [[nodiscard]] double minUs() const { return quantilesUs[positionOfQuantile(0.0)]; }
    [[nodiscard]] double medianUs() const { return quantilesUs[positionOfQuantile(0.5)]; }
    [[nodiscard]] double p90Us() const { return quantilesUs[positionOfQuantile(0.9)]; }
    [[nodiscard]] double maxUs() const { return quantilesUs[positionOfQuantile(1.0)]; }

    /// @return what forms show of a quantile; nothing where there are too few durations
    [[nodiscard]] std::optional<double> shownUs(std::size_t position) const {
        return count < quantiles[position].minCount ? std::nullopt : std::optional(quantilesUs[position]);
    }
};

/// Executions above that multiple of the median are outliers.
inline constexpr double outlierFactor = 1.5;
/// Outliers that are held one by one, the longest.
inline constexpr std::size_t maxHeldOutliers = 200;

struct Outlier {
    std::uint64_t position = 0;  ///< among the executions, from 0
    double us = 0.0;
};

/// The executions that take far longer than most. The first is none of them, however long: it is the warm-up.
struct Outliers {
    double limitUs = 0.0;  ///< what takes more is one
    std::uint64_t count = 0;
    double excessUs = 0.0;         ///< what they take above the median, all together
    std::vector<Outlier> longest;  ///< in log order
};

/// The average, the shortest or the longest execution.
struct TypicalExecution {
    std::uint64_t durationUs = 0;
    std::vector<Event> events;
};

/// Where the time of an average execution goes, by the backend's totals over all executions. Nothing where
/// the log does not tell.
struct Breakdown {
    std::uint32_t executionCount = 0;        ///< by the backend
    std::optional<std::uint64_t> backendUs;  ///< in the backend's call; asynchronous: with the queue wait
    std::optional<std::uint64_t> queueWaitUs;
    std::optional<double> inputCopyUs;
    std::optional<double> outputCopyUs;
    std::optional<std::uint64_t> ipcUs;
    std::optional<std::uint64_t> acceleratorUs;
};

/// A layer of the accelerator's graph; times and cycles are averages of an execution.
struct OruLayer {
    std::uint32_t id = 0;
    std::uint32_t type = 0;
    std::string typeName;
    bool isOffloaded = false;  ///< runs on the Krel core, else on the DSP
    bool isLinked = false;
    bool isLoopbackEnabled = false;
    std::uint32_t mergedGroup = 0;  ///< of a linked layer
    std::uint32_t executions = 0;
    std::uint64_t averageUs = 0;  ///< as the DSP sees it
    std::uint64_t totalUs = 0;    ///< over all executions
    std::uint64_t dspCycles = 0;
    std::uint64_t totalDspCycles = 0;
    std::uint32_t halUs = 0;  ///< this and all below: offloaded layers only
    std::uint32_t driverUs = 0;
    std::uint32_t cacheFlushUs = 0;
    std::uint32_t krelExecUs = 0;
    std::uint32_t nodes = 0;
    std::uint32_t coreCycles = 0;
    std::uint32_t coreUs = 0;

    /// The time that the reports count for the layer: on the core where it is offloaded, else on the DSP.
    [[nodiscard]] std::uint64_t timeUs() const { return isOffloaded ? coreUs : averageUs; }
    [[nodiscard]] std::uint64_t onDspUs() const { return isOffloaded ? 0 : timeUs(); }
    [[nodiscard]] std::uint64_t onKrelUs() const { return isOffloaded ? timeUs() : 0; }
};

/// A layer of the framework's graph.
struct ZebLayer {
    std::string name;
    std::uint64_t dspUs = 0;
    std::uint64_t krelUs = 0;
    std::vector<std::uint32_t> oruLayers;  ///< their ids

    [[nodiscard]] std::uint64_t timeUs() const { return dspUs + krelUs; }
    [[nodiscard]] std::uint64_t onDspUs() const { return dspUs; }
    [[nodiscard]] std::uint64_t onKrelUs() const { return krelUs; }
};

/// The layers that forms speak of: ZEB layers, or ORU layers where the log maps none to a ZEB layer.
enum class LayerKind : std::uint8_t { none, zeb, oru };

/// Sums over the layers that forms speak of.
struct LayerSums {
    LayerKind kind = LayerKind::none;
    std::uint64_t dspUs = 0;
    std::uint64_t krelUs = 0;
    std::uint64_t handingOverUs = 0;  ///< what the DSP sees of all layers above the time that is counted

    [[nodiscard]] std::uint64_t timeUs() const { return dspUs + krelUs; }
};

enum class PartKind : std::uint8_t {
    inference,
    backend,
    accelerator,
    krel,  ///< layers on the Krel core
    dsp,   ///< layers on the DSP
    handingOver,
    host,
    queueWait,
    event,  ///< of the average execution, where the log has no data of the backend
    rest,   ///< what nobody accounts for
};

/// A part of an average inference, and the parts that it consists of.
struct Part {
    std::string name;
    double us = 0.0;  ///< an average, at least 0
    PartKind kind = PartKind::rest;
    std::string note;  ///< a sentence on why its parts take more than it; empty where they don't
    std::vector<Part> parts;
};

/// The ORU layers of one type together.
struct LayerType {
    std::string name;
    std::uint64_t dspLayers = 0;
    std::uint64_t krelLayers = 0;
    std::uint64_t timeUs = 0;
};

enum class FindingGroup : std::uint8_t {
    note,            ///< on what the log lacks, and what its figures therefore can't tell
    everyInference,  ///< on what an inference takes
    once,            ///< on what a run pays once
};

/// What stands out, and what it rests on.
struct Finding {
    std::string rule;  ///< its name in the table of rules
    FindingGroup group = FindingGroup::note;
    std::string text;               ///< a sentence; a second one where another finding is on the same layers
    std::optional<double> us;       ///< the figure of the sentence
    std::optional<double> percent;  ///< the same
    std::optional<double> costUs;  ///< of an inference on average, or paid once; what findings are ordered by
    std::vector<std::uint32_t> oruLayers;   ///< ids of the layers that it is about
    std::vector<std::uint64_t> executions;  ///< places of the executions that it is about, from 0
    std::vector<std::uint64_t> steps;       ///< the same of the run's steps
    std::optional<std::string> partOf;  ///< the rule of a finding before it, on layers that both are about
    std::string next;                   ///< what to look at or to measure next, a sentence
};

/// One graph, worked out from its own executions and its own objects.
struct Graph {
    std::string name;
    Executions executions;
    std::uint64_t totalUs = 0;  ///< of all executions' durations; those of asynchronous ones may overlap
    Spread spread;
    Outliers outliers;
    TypicalExecution average;
    TypicalExecution shortest;
    TypicalExecution longest;
    std::optional<Breakdown> breakdown;       ///< nothing when the log has no data of the backend on it
    Part inference;                           ///< averages throughout, the first execution included
    std::optional<std::uint64_t> finalizeUs;  ///< what the report shows; nothing without a finalization
    std::uint32_t dspClockHz = 0;             ///< 0: not told
    std::uint32_t krelClockHz = 0;
    std::vector<OruLayer> oruLayers;    ///< in the order of the report
    std::vector<ZebLayer> zebLayers;    ///< in the order of the report
    std::vector<LayerType> layerTypes;  ///< the costliest first
    LayerSums layers;
    std::vector<Finding>
        findings;  ///< notes, what inferences take with the costliest first, what is paid once
};

/// Calls `use` with each of the layers that forms speak of, of whichever of the two types.
template <typename Use>
void forEachLayer(const Graph& graph, Use use) {
    if (graph.layers.kind == LayerKind::zeb) {
        for (const ZebLayer& layer : graph.zebLayers) {
            use(layer);
        }
    } else if (graph.layers.kind == LayerKind::oru) {
        for (const OruLayer& layer : graph.oruLayers) {
            use(layer);
        }
    }
}

/// @return the name that forms show
std::string layerName(const ZebLayer& layer);
std::string layerName(const OruLayer& layer);

/// Everything about a run.
struct Run {
    std::string logFile;  ///< its name as it was given
    std::string runId;    ///< what tells it from any other run: 32 hex digits, see RunId.h
    Labels labels;
    std::optional<Header> header;
    std::optional<Level> level;  ///< nothing when the log has no data of the backend
    bool isAsync = false;
    std::vector<Step> steps;              ///< in log order
    std::optional<std::uint64_t> initUs;  ///< what the report shows as Init; nothing without a step of it
    std::vector<Graph> graphs;
    std::vector<OtherMethod> otherMethods;
    std::vector<Finding> findings;  ///< on the log as a whole
};

}  // namespace zeb::analysis
