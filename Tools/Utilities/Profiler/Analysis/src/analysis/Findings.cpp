#include "analysis/Findings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "text/NumberText.h"

namespace zeb::analysis {

namespace {

using profiling::fixedPoint;

std::string us(double value) {
    return fixedPoint(value, 0) + " us";
}

std::string percent(double value) {
    return fixedPoint(value, 0) + '%';
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view several) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : several);
}

double share(double part, double whole) {
    return whole > 0.0 ? part / whole * 100.0 : 0.0;
}

// A third of a whole is one, whatever the division has rounded.
bool reaches(double percent, double threshold) {
    constexpr double rounding = 1e-9;
    return percent >= threshold - rounding;
}

double layersUs(const Graph& graph) {
    return static_cast<double>(graph.layers.timeUs());
}

// A sentence, and the figures that it rests on; nothing when the rule does not hold.
struct Sentence {
    std::string text;
    std::optional<double> us;
    std::optional<double> percent;
};
using Said = std::optional<Sentence>;

Said noBackendData(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    if (graph.breakdown) {
        return std::nullopt;
    }
    return Sentence{
        "The log has no data of the backend on this graph, so it is not known where its time goes.", {}, {}};
}

Said levelBasic(const Graph& graph, const Run& run, double /*threshold*/) {
    if (!graph.breakdown || run.level != Level::basic) {
        return std::nullopt;
    }
    return Sentence{
        "The run was profiled at level basic, so the log has no data on layers; level detailed has.", {}, {}};
}

Said countsDisagree(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    if (!graph.breakdown || graph.breakdown->executionCount == graph.executions.count()) {
        return std::nullopt;
    }
    return Sentence{"The log has " + counted(graph.executions.count(), "execution", "executions") +
                        ", and the backend counts " + std::to_string(graph.breakdown->executionCount) +
                        ", so its averages are not of the same executions.",
                    {},
                    {}};
}

Said layersDoNotAddUp(const Graph& graph, const Run& /*run*/, double threshold) {
    if (graph.oruLayers.empty() || !graph.breakdown || graph.breakdown->acceleratorUs.value_or(0) == 0) {
        return std::nullopt;
    }
    const auto accelerator = static_cast<double>(*graph.breakdown->acceleratorUs);
    const double difference = accelerator - layersUs(graph);
    const double part = share(difference, accelerator);
    if (!reaches(std::abs(part), threshold)) {
        return std::nullopt;
    }
    return Sentence{"The layers' times add up to " + us(layersUs(graph)) + ", the accelerator's time is " +
                        us(accelerator) + ": " + us(std::abs(difference)) +
                        (difference > 0 ? " of it belong to no layer." : " more than it."),
                    std::abs(difference), std::abs(part)};
}

Said outsideAccelerator(const Graph& graph, const Run& /*run*/, double threshold) {
    if (!graph.breakdown || graph.breakdown->acceleratorUs.value_or(0) == 0) {
        return std::nullopt;
    }
    const auto whole = static_cast<double>(graph.average.durationUs);
    const double outside = whole - static_cast<double>(*graph.breakdown->acceleratorUs);
    const double part = share(outside, whole);
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{us(outside) + " of an inference, " + percent(part) + ", pass outside of the accelerator.",
                    outside, part};
}

Said queueWait(const Graph& graph, const Run& /*run*/, double threshold) {
    if (!graph.breakdown || !graph.breakdown->queueWaitUs) {
        return std::nullopt;
    }
    const auto wait = static_cast<double>(*graph.breakdown->queueWaitUs);
    const double part = share(wait, static_cast<double>(graph.average.durationUs));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{"An execution waits " + us(wait) + " in queues, " + percent(part) + " of its time.", wait,
                    part};
}

Said dspBetweenOffloaded(const Graph& graph, const Run& /*run*/, double threshold) {
    const auto isOffloaded = [](const OruLayer& layer) { return layer.isOffloaded; };
    const auto first = std::find_if(graph.oruLayers.begin(), graph.oruLayers.end(), isOffloaded);
    const auto last = std::find_if(graph.oruLayers.rbegin(), graph.oruLayers.rend(), isOffloaded).base();
    std::uint64_t layers = 0;
    double time = 0.0;
    for (auto layer = first; layer < last; ++layer) {
        if (!layer->isOffloaded) {
            ++layers;
            time += static_cast<double>(layer->timeUs());
        }
    }
    const double part = share(time, layersUs(graph));
    if (layers == 0 || !reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{counted(layers, "layer runs", "layers run") +
                        " on the DSP between layers of the Krel core: " + us(time) + ", " + percent(part) +
                        " of the layers' time.",
                    time, part};
}

Said offloadOverhead(const Graph& graph, const Run& /*run*/, double threshold) {
    double hal = 0.0;
    double driver = 0.0;
    double cacheFlush = 0.0;
    double krel = 0.0;
    for (const OruLayer& layer : graph.oruLayers) {
        hal += layer.halUs;
        driver += layer.driverUs;
        cacheFlush += layer.cacheFlushUs;
        krel += layer.krelExecUs;
    }
    const double part = share(hal - krel, krel);
    if (krel <= 0.0 || !reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{"Offloaded layers take " + us(hal) + " in the HAL, " + us(driver) +
                        " in the driver and " + us(cacheFlush) + " flushing caches, against " + us(krel) +
                        " on the Krel core.",
                    hal - krel, part};
}

constexpr std::array<std::string_view, 5> dataMovement = {"LAYOUT", "CACHE", "QUANTIZE", "DMA_MOVER",
                                                          "MEM_OP"};

bool movesData(const LayerType& type) {
    return std::any_of(dataMovement.begin(), dataMovement.end(),
                       [&type](std::string_view part) { return type.name.find(part) != std::string::npos; });
}

Said dataIsMoved(const Graph& graph, const Run& /*run*/, double threshold) {
    std::uint64_t layers = 0;
    double time = 0.0;
    for (const LayerType& type : graph.layerTypes) {
        if (movesData(type)) {
            layers += type.dspLayers + type.krelLayers;
            time += static_cast<double>(type.timeUs);
        }
    }
    const double part = share(time, layersUs(graph));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{counted(layers, "layer changes or moves", "layers change or move") +
                        " data only (layout, cache, quantisation): " + us(time) + ", " + percent(part) +
                        " of the layers' time.",
                    time, part};
}

Said dominantLayer(const Graph& graph, const Run& /*run*/, double threshold) {
    std::string name;
    std::uint64_t time = 0;
    forEachLayer(graph, [&name, &time](const auto& layer) {
        if (layer.timeUs() > time) {
            time = layer.timeUs();
            name = layerName(layer);
        }
    });
    const double part = share(static_cast<double>(time), layersUs(graph));
    if (!reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{name + " alone takes " + us(static_cast<double>(time)) + ", " + percent(part) +
                        " of the layers' time.",
                    static_cast<double>(time), part};
}

constexpr std::uint64_t fewestForWarmUp = 5;  // executions; of fewer none is usual

Said warmUp(const Graph& graph, const Run& /*run*/, double threshold) {
    const Spread& spread = graph.spread;
    const double excess = spread.firstUs.value_or(0.0) - spread.medianUs();
    const double part = share(excess, spread.medianUs());
    if (spread.count < fewestForWarmUp || !reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{"The first execution takes " + us(*spread.firstUs) + ", " + percent(part) +
                        " more than the median of " + us(spread.medianUs()) + ".",
                    excess, part};
}

Said wideSpread(const Graph& graph, const Run& /*run*/, double threshold) {
    const Spread& spread = graph.spread;
    const double part = share(spread.p90Us() - spread.medianUs(), spread.medianUs());
    if (!spread.shownUs(positionOfQuantile(0.9)) || !reaches(part, threshold)) {
        return std::nullopt;
    }
    return Sentence{"One execution in ten takes " + us(spread.p90Us()) + " or more, " + percent(part) +
                        " above the median of " + us(spread.medianUs()) + ".",
                    spread.p90Us() - spread.medianUs(), part};
}

Said outliers(const Graph& graph, const Run& /*run*/, double /*threshold*/) {
    constexpr std::size_t maxNumbers = 5;
    const Outliers& outliers = graph.outliers;
    if (outliers.count == 0) {
        return std::nullopt;
    }
    std::string numbers;
    double longestUs = 0.0;
    for (const Outlier& outlier : outliers.longest) {
        longestUs = std::max(longestUs, outlier.us);
    }
    for (const Outlier& outlier :
         std::span(outliers.longest).first(std::min(maxNumbers, outliers.longest.size()))) {
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(outlier.position + 1);
    }
    const double medianUs = graph.spread.medianUs();
    return Sentence{counted(outliers.count, "execution takes", "executions take") + " more than " +
                        us(outliers.limitUs) + ", " + fixedPoint(outlierFactor, 1) +
                        " times the median: " + (outliers.count == 1 ? "number " : "numbers ") + numbers +
                        (outliers.count > maxNumbers ? " and others." : "."),
                    longestUs - medianUs, share(longestUs - medianUs, medianUs)};
}

// The rules, and from what per cent on each of them speaks. Those on what is missing come first, since they
// say what the others can't know; the rest is ordered by its time.
struct Rule {
    std::string_view name;
    bool isOnMissingData;
    double threshold;  ///< per cent
    Said (*say)(const Graph& graph, const Run& run, double threshold);
};

constexpr Rule rules[] = {
    {"no-backend-data", true, 0.0, noBackendData},
    {"level-basic", true, 0.0, levelBasic},
    {"counts-disagree", true, 0.0, countsDisagree},
    {"layers-do-not-add-up", false, 10.0, layersDoNotAddUp},
    {"outside-accelerator", false, 20.0, outsideAccelerator},
    {"queue-wait", false, 5.0, queueWait},
    {"dsp-between-offloaded", false, 5.0, dspBetweenOffloaded},
    {"offload-overhead", false, 20.0, offloadOverhead},
    {"data-movement", false, 10.0, dataIsMoved},
    {"dominant-layer", false, 100.0 / 3.0, dominantLayer},
    {"warm-up", false, 25.0, warmUp},
    {"spread", false, 20.0, wideSpread},
    {"outliers", false, (outlierFactor - 1.0) * 100.0, outliers},
};

}  // namespace

void addFindings(Graph& graph, const Run& run) {
    std::vector<Finding> timed;
    for (const Rule& rule : rules) {
        if (Said said = rule.say(graph, run, rule.threshold)) {
            (rule.isOnMissingData ? graph.findings : timed)
                .push_back({std::string(rule.name), std::move(said->text), said->us, said->percent});
        }
    }
    std::stable_sort(timed.begin(), timed.end(), [](const Finding& left, const Finding& right) {
        return left.us.value_or(0.0) > right.us.value_or(0.0);
    });
    graph.findings.insert(graph.findings.end(), timed.begin(), timed.end());
    graph.findings.resize(std::min(graph.findings.size(), maxFindings));
}

void addFindings(Run& run) {
    if (run.graphs.empty()) {
        run.findings.push_back({"no-graph", "No graph was executed in this log.", {}, {}});
    }
    for (Graph& graph : run.graphs) {
        addFindings(graph, run);
    }
}

}  // namespace zeb::analysis
