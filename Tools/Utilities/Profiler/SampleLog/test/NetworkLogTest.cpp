// The run of the sample network, as the reader sees it: its figures agree with one another, whatever the
// options. Those of some runs are pinned down by their whole reports.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>

#include "reader/backend/BackendObjects.h"
#include "reader/backend/LayerStats.h"
#include "reader/backend/LayerTypeNames.h"
#include "reports/EventText.h"
#include "samplelog/NetworkLog.h"
#include "samplelog/NetworkTiming.h"
#include "support/TestReader.h"

namespace zeb::samplelog {
namespace {

using profiling::EventList;
using profiling::MethodRecord;

Bytes networkLog(const NetworkOptions& options) {
    std::ostringstream out;
    writeNetworkLog(out, options);
    const std::string text = out.str();
    return {text.begin(), text.end()};
}

std::vector<std::span<const std::byte>> objectsOf(const EventList& events) {
    std::vector<std::span<const std::byte>> objects;
    for (const auto& event : events) {
        if (event.isObject()) {
            objects.push_back(event.objectBytes());
        }
    }
    return objects;
}

// The test ends here where there is none.
template <typename List>
const auto& firstOf(const List& list) {
    if (list.size() == 0) {
        throw std::out_of_range("the log lacks what is looked at");
    }
    return list[0];
}

// A run's log once it is loaded, and what the backend's report takes of its first graph.
struct LoadedRun {
    explicit LoadedRun(const NetworkOptions& given) : options(given), loaded(networkLog(given)) {
        EXPECT_TRUE(loaded.isLoaded);
        EXPECT_EQ(loaded.notes, "");
        EXPECT_EQ(store.executeRecords.size(), options.graphs);
        EXPECT_EQ(records.countByWalking(), options.executions);
        const EventList& lastEvents = records.back().events;
        const auto profiles = objectsOf(lastEvents.walkTo(lastEvents.countByWalking() - 1).subEvents);
        const auto configs = objectsOf(firstOf(store.finalizeRecords).record->events);
        const auto mappings = objectsOf(store.initEvents);
        profile = profiling::readGraphProfile(profiles.at(0), true);
        config = profiling::readLayerConfig(configs.at(0), true);
        if (!mappings.empty()) {
            mapping = profiling::readNodeMapping(mappings.at(0), mappings.at(1));
        }
    }

    [[nodiscard]] std::uint64_t value(std::string_view name) const {
        return std::stoull(profiling::findEventValue(name, records.back().events).value());
    }

    NetworkOptions options;
    test::Loaded<profiling::ZebProfileLogReader> loaded;
    const profiling::EventStore& store = loaded.reader.store();
    const profiling::RecordList& records = firstOf(store.executeRecords).records;
    profiling::LayerConfig config;
    profiling::GraphProfile profile;
    std::vector<profiling::NodeMappingEntry> mapping;
};

void expectTimesThatHoldOneAnother(const LoadedRun& run) {
    std::uint64_t layersUs = 0;
    for (const profiling::LayerRecord& record : run.profile.layerRecords) {
        layersUs += record.totalTimeUs;
    }
    std::uint64_t roundTripsUs = 0;
    for (const MethodRecord& record : run.records) {
        roundTripsUs += record.durationUs;
    }
    const bool async = run.options.async;
    const std::uint64_t copiesUs = run.value("Input Tensor Copy Time") + run.value("Output Tensor Copy Time");
    const std::uint64_t hlosUs = run.value("HLOS Graph Execution Time");
    const std::uint64_t backendUs = run.value(async ? "ZebGraph_executeAsync" : "ZebGraph_execute");
    const std::uint64_t waitsUs =
        async ? run.value("graphQueueWaitUs") + run.value("dispatcherQueueWaitUs") : 0;
    EXPECT_LT(layersUs, run.profile.acceleratorTimeUs);
    EXPECT_LT(run.profile.acceleratorTimeUs, run.profile.dspGraphTimeUs);
    EXPECT_LT(run.profile.dspGraphTimeUs, hlosUs);
    EXPECT_LT(hlosUs + copiesUs + waitsUs, backendUs);
    EXPECT_LT(backendUs, roundTripsUs);
    EXPECT_EQ(run.store.asyncExecute, async);
    ASSERT_EQ(run.store.executeQueueWaits.size(), async ? 1U : 0U);
    if (async) {
        const auto& waits = run.store.executeQueueWaits[0].queueWaits;
        EXPECT_EQ(waits.size(), run.options.executions);
        EXPECT_EQ(std::accumulate(waits.begin(), waits.end(), std::uint64_t{0}), waitsUs);
    }
}

void expectASlowStartAndLittleVariation(const profiling::RecordList& records) {
    std::vector<std::uint64_t> durations;
    std::uint64_t timestamp = 0;
    for (const MethodRecord& record : records) {
        EXPECT_LT(timestamp, record.timestamp);
        timestamp = record.timestamp;
        durations.push_back(record.durationUs);
    }
    const auto [shortest, longest] = std::minmax_element(durations.begin() + 1, durations.end());
    EXPECT_GT(durations[0], *longest * 11 / 10);
    EXPECT_LT(*shortest, *longest);
    EXPECT_GT(*shortest * 11 / 10, *longest);
}

// The layers of configuration, profile and mapping are the same ones, each has its place in the schedule, and
// a linked layer without a count follows the first of its group.
void expectLayersThatAgree(const LoadedRun& run, std::size_t zebLayers, std::size_t oruLayers) {
    EXPECT_EQ(run.config.layerCount, oruLayers);
    EXPECT_EQ(run.profile.layerCount, oruLayers);
    EXPECT_EQ(run.profile.executionCount, run.options.executions);
    ASSERT_EQ(run.config.entries.size(), oruLayers);
    ASSERT_EQ(run.profile.layerRecords.size(), oruLayers);
    ASSERT_EQ(run.mapping.size(), oruLayers);
    std::set<std::string_view> names;
    std::set<std::uint32_t> schedule;
    std::uint32_t groups = 0;
    for (std::size_t position = 0; position < oruLayers; ++position) {
        const profiling::LayerConfigEntry& entry = run.config.entries[position];
        const profiling::LayerRecord& record = run.profile.layerRecords[position];
        EXPECT_EQ(entry.layerId, position);
        EXPECT_EQ(run.mapping[position].oruLayerId, position);
        EXPECT_TRUE(profiling::isKnownLayerType(entry.layerType));
        names.insert(run.mapping[position].zebLayerName);
        schedule.insert(record.orderKey);
        EXPECT_EQ(record.execCount, entry.loopbackEnabled() ? 0 : run.options.executions);
        groups += entry.linked() && record.execCount != 0 ? 1 : 0;
        EXPECT_EQ(entry.mergedGroup, entry.linked() ? groups : 0);
        EXPECT_TRUE(!entry.linked() || entry.offloaded());
        EXPECT_TRUE(entry.linked() || !entry.loopbackEnabled());
    }
    EXPECT_EQ(names.size(), zebLayers);
    EXPECT_EQ(schedule.size(), oruLayers);
    EXPECT_TRUE(oruLayers == 0 || *schedule.rbegin() == oruLayers - 1);
}

TEST(NetworkLog, AgreesWithItselfWhateverTheOptions) {
    for (const auto level : {ProfileLevel::basic, ProfileLevel::detailed, ProfileLevel::internal}) {
        for (const auto seed : {std::optional<std::uint64_t>(), std::optional<std::uint64_t>(7)}) {
            for (const bool async : {false, true}) {
                SCOPED_TRACE(std::to_string(static_cast<std::uint32_t>(level)) + (seed ? " seed" : "") +
                             (async ? " async" : ""));
                const LoadedRun run({.async = async, .level = level, .seed = seed});
                EXPECT_EQ(run.value("Execute Profiling Level"), static_cast<std::uint32_t>(level));
                const bool hasLayers = level != ProfileLevel::basic;
                expectLayersThatAgree(run, hasLayers ? designedLayerCount : 0, hasLayers ? 63 : 0);
                expectTimesThatHoldOneAnother(run);
                expectASlowStartAndLittleVariation(run.records);
            }
        }
    }
}

TEST(NetworkLog, ScalesToTheNumberOfLayers) {
    const struct {
        std::uint32_t zebLayers;
        std::size_t oruLayers;
    } cases[] = {{1, 2}, {4, 8}, {6, 11}, {7, 13}, {31, 59}, {33, 67}, {34, 71}, {50'000, 199'935}};
    for (const auto& [zebLayers, oruLayers] : cases) {
        SCOPED_TRACE(zebLayers);
        const LoadedRun run({.executions = 2, .layers = zebLayers});
        expectLayersThatAgree(run, zebLayers, oruLayers);
    }
}

TEST(NetworkLog, ScalesToTheNumberOfGraphsAndExecutions) {
    const LoadedRun run({.async = true, .executions = 3, .graphs = 40, .seed = 3});
    EXPECT_EQ(run.store.finalizeRecords.size(), 40U);
    EXPECT_EQ(run.store.executeQueueWaits.size(), 40U);
    EXPECT_EQ(objectsOf(run.store.initEvents).size(), 2U);
    ASSERT_EQ(run.store.executeRecords.size(), 40U);
    EXPECT_EQ(run.store.executeRecords[39].graphName, "mobilenet_v1_224_40");
    std::set<std::uint64_t> durations;
    for (const auto& graph : run.store.executeRecords) {
        EXPECT_EQ(graph.records.countByWalking(), 3U);
        durations.insert(graph.records.walkTo(1).durationUs);
    }
    EXPECT_GT(durations.size(), 20U);
}

// Per cent by which the times of the changed network exceed those of the other one.
double growth(std::uint64_t base, std::uint64_t changed) {
    return (static_cast<double>(changed) / static_cast<double>(base) - 1.0) * 100.0;
}

// Both are cut to whole microseconds.
bool isLonger(std::uint64_t base, std::uint64_t changed, double factor) {
    return std::abs(static_cast<double>(changed) - static_cast<double>(base) * factor) < 1.0 + factor;
}

TEST(NetworkLog, ASlowerRunIsSlowerInAllThatItMeasures) {
    for (const bool async : {false, true}) {
        const LoadedRun base({.async = async, .executions = 4, .seed = 4});
        const LoadedRun slower({.async = async, .executions = 4, .seed = 4, .slowerMillionths = 250'000});
        EXPECT_NEAR(growth(base.records.walkTo(1).durationUs, slower.records.walkTo(1).durationUs), 25.0,
                    0.1);
        EXPECT_NEAR(growth(base.profile.acceleratorTimeUs, slower.profile.acceleratorTimeUs), 25.0, 0.1);
        EXPECT_NEAR(growth(base.value("Input Tensor Copy Time"), slower.value("Input Tensor Copy Time")),
                    25.0, 1.0);
        EXPECT_NEAR(growth(firstOf(base.store.finalizeRecords).record->durationUs,
                           firstOf(slower.store.finalizeRecords).record->durationUs),
                    25.0, 0.1);
        ASSERT_EQ(slower.profile.layerRecords.size(), base.profile.layerRecords.size());
        for (std::size_t position = 0; position < base.profile.layerRecords.size(); ++position) {
            const auto& from = base.profile.layerRecords[position];
            const auto& to = slower.profile.layerRecords[position];
            EXPECT_TRUE(isLonger(from.totalTimeUs, to.totalTimeUs, 1.25));
            EXPECT_NEAR(growth(from.totalDspCycles + 1, to.totalDspCycles + 1), from.totalDspCycles ? 25 : 0,
                        0.1);
        }
        expectTimesThatHoldOneAnother(slower);
    }
}

TEST(NetworkLog, ASlowerLayerSlowsItsOwnOruLayersAndTheWhole) {
    const LoadedRun base({.executions = 4});
    const LoadedRun slower({.executions = 4, .slowerLayer = SlowerLayer{"conv_pw_3", 500'000}});
    std::uint64_t addedUs = 0;
    ASSERT_EQ(slower.profile.layerRecords.size(), base.profile.layerRecords.size());
    ASSERT_EQ(slower.mapping.size(), base.profile.layerRecords.size());
    for (std::size_t position = 0; position < base.profile.layerRecords.size(); ++position) {
        const auto from = base.profile.layerRecords[position].totalTimeUs;
        const auto to = slower.profile.layerRecords[position].totalTimeUs;
        const bool isSlower = slower.mapping[position].zebLayerName == "conv_pw_3";
        EXPECT_TRUE(isSlower ? isLonger(from, to, 1.5) : to == from);
        addedUs += to - from;
    }
    EXPECT_GT(addedUs, 0U);
    EXPECT_NEAR(static_cast<double>(slower.profile.acceleratorTimeUs - base.profile.acceleratorTimeUs),
                static_cast<double>(addedUs), 8.0);
    expectTimesThatHoldOneAnother(slower);
}

TEST(NetworkLog, TheDriftHasTheDeviationThatItIsGiven) {
    constexpr int seeds = 2000;
    double sum = 0.0;
    double squares = 0.0;
    for (int seed = 0; seed < seeds; ++seed) {
        const RunPace pace = runPaceOf({.seed = seed, .driftMillionths = 20'000});
        const double percent = growth(1'000'000, pace.millionths);
        sum += percent;
        squares += percent * percent;
    }
    EXPECT_NEAR(sum / seeds, 0.0, 0.15);
    EXPECT_NEAR(std::sqrt(squares / seeds), 2.0, 0.1);
    EXPECT_EQ(runPaceOf({.seed = 3}).millionths, 1'000'000U);
}

TEST(NetworkLog, TheSameOptionsGiveTheSameBytesAndASeedOthers) {
    std::set<Bytes> logs;
    const std::vector<NetworkOptions> runs = {
        {}, {.seed = 1}, {.seed = 2}, {.async = true}, {.seed = 1, .driftMillionths = 20'000}};
    for (const NetworkOptions& options : runs) {
        const Bytes log = networkLog(options);
        EXPECT_EQ(log, networkLog(options));
        logs.insert(log);
    }
    EXPECT_EQ(logs.size(), runs.size());
}

}  // namespace
}  // namespace zeb::samplelog
