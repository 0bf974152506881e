#include "samplelog/NetworkTiming.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zeb::samplelog {

namespace {

// Pace of an execution in per mille of the usual time.
constexpr std::uint64_t usualPace = 1000;
constexpr std::uint64_t warmUpPace = 1380;
constexpr auto paces = std::to_array<std::uint64_t>({1000, 1006, 996, 1011, 992, 1003, 998});
constexpr std::uint64_t graphPhase = 3;

// Random variation under a seed, to either side.
constexpr std::uint64_t layerSpread = 15;
constexpr std::uint64_t paceSpread = 20;

// What the DSP spends on an offloaded job, and how much of it on writing back its caches.
constexpr std::uint64_t driverCycles = 3200;
constexpr std::uint64_t flushCycles = 1700;
constexpr std::uint64_t halCycles = 1650;

// What comes on top of the layers, from the inside to the outside.
constexpr std::uint64_t gapBehindLayerNs = 450;
constexpr std::uint64_t graphStartUs = 47;
constexpr std::uint64_t ipcUs = 186;
constexpr std::uint64_t bytesCopiedPerUs = 9800;
constexpr std::uint64_t copySetupNs = 640;
constexpr std::uint64_t apiUs = 34;
constexpr std::uint64_t callUs = 19;

constexpr std::uint64_t queuedUs = 138;
constexpr std::uint64_t dispatchedUs = 11;

// Time of that many cycles.
std::uint64_t nanoseconds(std::uint64_t cycles, std::uint32_t clockHz) {
    return cycles * 1'000'000 / (clockHz / 1000);
}

std::uint32_t toU32(std::uint64_t value) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(value, std::numeric_limits<std::uint32_t>::max()));
}

// A step of the SplitMix64 generator: well mixed, and the same on every machine.
std::uint64_t mixed(std::uint64_t state) {
    state += 0x9E3779B97F4A7C15U;
    state = (state ^ (state >> 30U)) * 0xBF58476D1CE4E5B9U;
    state = (state ^ (state >> 27U)) * 0x94D049BB133111EBU;
    return state ^ (state >> 31U);
}

// A number between -spread and +spread, around the usual pace.
std::uint64_t randomPace(std::uint64_t seed, std::uint64_t which, std::uint64_t spread) {
    return usualPace - spread + mixed(mixed(seed) ^ which) % (2 * spread + 1);
}

// A number around 0 whose standard deviation is the unit and whose spread is close to the normal one: the sum
// of twelve numbers of equal chance, each of a variance of a twelfth.
constexpr std::int64_t deviationUnit = 1'000'000;
constexpr std::uint64_t drawsOfDeviation = 12;
constexpr std::uint64_t driftStream = 0x6472696674;  // apart from the draws for layers and executions
constexpr std::uint64_t noiseStream = 0x6E6F697365;

std::int64_t randomDeviation(std::uint64_t seed) {
    std::int64_t sum = -6 * deviationUnit;
    for (std::uint64_t draw = 0; draw < drawsOfDeviation; ++draw) {
        sum += static_cast<std::int64_t>(mixed(seed + draw) % static_cast<std::uint64_t>(deviationUnit + 1));
    }
    return sum;
}

// The root in whole numbers, cut, so that every machine comes to the same.
std::int64_t rootOf(std::int64_t square) {
    std::int64_t root = 0;
    for (std::int64_t step = std::int64_t{1} << 30U; step != 0; step /= 2) {
        root += (root + step) * (root + step) <= square ? step : 0;
    }
    return root;
}

std::uint64_t atPace(std::uint64_t value, std::uint64_t pace) {
    return value * pace / usualPace;
}

}  // namespace

RunPace runPaceOf(const NetworkOptions& options) {
    std::int64_t driftMillionths = 0;
    if (options.seed) {
        const std::int64_t drawn =
            randomDeviation(mixed(options.driftSeed.value_or(*options.seed)) ^ driftStream);
        driftMillionths = drawn * options.driftMillionths / deviationUnit;
    }
    const auto drifted = static_cast<std::uint64_t>(deviationUnit + driftMillionths);
    return {drifted * (1'000'000U + options.slowerMillionths) / 1'000'000U};
}

NetworkTiming::NetworkTiming(const Network& network, std::uint32_t graph, const NetworkOptions& options)
    : network_(network),
      graph_(graph),
      seed_(options.seed ? std::optional(mixed(*options.seed) + graph) : std::nullopt),
      runPace_(runPaceOf(options)) {
    addPaces(options);
    layers_.reserve(network.oruLayers.size());
    for (const OruLayer& layer : network.oruLayers) {
        const auto& slower = options.slowerLayer;
        const bool isSlower = slower && network.zebLayerNames[layer.zebLayer] == slower->name;
        addLayer(layer, {1'000'000U + (isSlower ? slower->millionths : 0U)});
    }
}

void NetworkTiming::addLayer(const OruLayer& layer, RunPace layerPace) {
    LayerTimes times = timeLayer(layer, layers_.size());
    for (const auto part :
         {&LayerTimes::coreCycles, &LayerTimes::dspCycles, &LayerTimes::flushNs, &LayerTimes::krelNs,
          &LayerTimes::driverNs, &LayerTimes::halNs, &LayerTimes::totalNs}) {
        times.*part = layerPace.of(times.*part);
    }
    sum_.coreCycles += times.coreCycles;
    sum_.dspCycles += times.dspCycles;
    sum_.totalNs += times.totalNs;
    layers_.push_back(times);
}

NetworkTiming::LayerTimes NetworkTiming::timeLayer(const OruLayer& layer, std::uint64_t position) const {
    const std::uint64_t layerPace = seed_ ? randomPace(*seed_, position << 32U, layerSpread) : usualPace;
    const std::uint64_t cycles = atPace(layer.cycles, layerPace);
    LayerTimes times;
    if (!layer.offloaded) {
        times.dspCycles = cycles;
        times.totalNs = nanoseconds(cycles, dspClockHz);
        return times;
    }
    // A group is one job, which the DSP starts with its first layer.
    const bool startsJob = layer.startsGroup;
    times.coreCycles = cycles;
    times.dspCycles = startsJob ? driverCycles + halCycles : 0;
    times.flushNs = startsJob ? nanoseconds(flushCycles, dspClockHz) : 0;
    times.krelNs = nanoseconds(cycles, krelClockHz);
    times.driverNs = times.krelNs + (startsJob ? nanoseconds(driverCycles, dspClockHz) : 0);
    times.halNs = times.driverNs + (startsJob ? nanoseconds(halCycles, dspClockHz) : 0);
    times.totalNs = times.halNs;
    return times;
}

// Noise that wanders: a part of the one before, and so much of its own that all have the same deviation.
void NetworkTiming::addPaces(const NetworkOptions& options) {
    if (options.noiseMillionths == 0 && options.slowingMillionths == 0) {
        return;
    }
    const std::int64_t kept = options.wanderMillionths;
    const std::int64_t own = rootOf(deviationUnit * deviationUnit - kept * kept);
    std::int64_t noise = 0;
    for (std::uint32_t execution = 0; execution < options.executions; ++execution) {
        std::int64_t factor = deviationUnit;
        if (options.noiseMillionths != 0 && seed_) {
            const std::int64_t drawn =
                randomDeviation(mixed(*seed_ ^ noiseStream) + execution * drawsOfDeviation);
            noise = execution == 0 ? drawn : (noise * kept + drawn * own) / deviationUnit;
            factor += noise * options.noiseMillionths / deviationUnit;
        }
        if (execution > 1) {
            factor += std::int64_t{options.slowingMillionths} * (execution - 1) / (options.executions - 2);
        }
        const std::uint64_t pace = options.noiseMillionths == 0 ? rhythm(execution)
                                   : execution == 0             ? warmUpPace
                                                                : usualPace;
        paces_.push_back(pace * static_cast<std::uint64_t>(std::max<std::int64_t>(factor, 0)) /
                         static_cast<std::uint64_t>(deviationUnit));
    }
}

std::uint64_t NetworkTiming::pace(std::uint32_t execution) const {
    return execution < paces_.size() ? paces_[execution] : rhythm(execution);
}

std::uint64_t NetworkTiming::rhythm(std::uint32_t execution) const {
    const std::uint64_t own =
        execution == 0 ? warmUpPace : paces[(std::uint64_t{execution} + graph_ * graphPhase) % paces.size()];
    return seed_ ? atPace(own, randomPace(*seed_, execution, paceSpread)) : own;
}

ExecutionTimes NetworkTiming::execution(std::uint32_t position) const {
    const std::uint64_t paceNow = pace(position);
    ExecutionTimes times;
    times.coreCycles = atPace(sum_.coreCycles, paceNow);
    times.dspCycles = atPace(sum_.dspCycles, paceNow);
    times.acceleratorUs = atPace((sum_.totalNs + layers_.size() * gapBehindLayerNs) / 1000, paceNow) + 1;
    times.dspGraphUs = times.acceleratorUs + atPace(graphStartUs, paceNow);
    times.hlosUs = times.dspGraphUs + atPace(ipcUs, paceNow);
    times.inputCopyNs = atPace(copySetupNs + network_.inputBytes * 1000 / bytesCopiedPerUs, paceNow);
    times.outputCopyNs = atPace(copySetupNs + network_.outputBytes * 1000 / bytesCopiedPerUs, paceNow);
    times.backendUs = times.hlosUs + (times.inputCopyNs + times.outputCopyNs) / 1000 + atPace(apiUs, paceNow);
    times.roundTripUs = times.backendUs + atPace(callUs, paceNow);
    // The first execution finds the queue empty.
    times.graphQueueWaitUs = position == 0 ? 0 : atPace(queuedUs, paceNow) + position % 4;
    times.dispatcherQueueWaitUs = dispatchedUs + position % 3;
    for (const auto part :
         {&ExecutionTimes::coreCycles, &ExecutionTimes::dspCycles, &ExecutionTimes::acceleratorUs,
          &ExecutionTimes::dspGraphUs, &ExecutionTimes::hlosUs, &ExecutionTimes::inputCopyNs,
          &ExecutionTimes::outputCopyNs, &ExecutionTimes::backendUs, &ExecutionTimes::roundTripUs,
          &ExecutionTimes::graphQueueWaitUs, &ExecutionTimes::dispatcherQueueWaitUs}) {
        times.*part = runPace_.of(times.*part);
    }
    return times;
}

std::vector<LayerRecord> NetworkTiming::layerRecords(std::uint32_t executions) const {
    std::uint64_t paceSum = 0;
    for (std::uint32_t position = 0; position < executions; ++position) {
        paceSum += pace(position);
    }
    const auto total = [&](std::uint64_t value) { return atPace(runPace_.of(value), paceSum); };
    const auto totalUs = [&](std::uint64_t ns) { return total(ns) / 1000; };
    std::vector<LayerRecord> records;
    records.reserve(layers_.size());
    for (std::size_t position = 0; position < layers_.size(); ++position) {
        const OruLayer& layer = network_.oruLayers[position];
        const LayerTimes& times = layers_[position];
        records.push_back({
            .nodeCount = layer.nodeCount,
            .execCount = layer.startsGroup ? executions : 0,
            .orderKey = layer.schedule,
            .totalTimeUs = totalUs(times.totalNs),
            .totalDspCycles = total(times.dspCycles),
            .totalCoreCycles = total(times.coreCycles),
            .totalHalExecUs = toU32(totalUs(times.halNs)),
            .totalKrelExecUs = toU32(totalUs(times.krelNs)),
            .totalDriverExecUs = toU32(totalUs(times.driverNs)),
            .totalCacheFlushUs = toU32(totalUs(times.flushNs)),
        });
    }
    return records;
}

}  // namespace zeb::samplelog
