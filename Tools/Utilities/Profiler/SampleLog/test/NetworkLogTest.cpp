// The run of the sample network, as the reader sees it.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

#include "LoadedLog.h"
#include "NetworkLog.h"
#include "NetworkTiming.h"
#include "reader/backend/BackendObjects.h"
#include "reader/backend/LayerStats.h"
#include "reader/backend/ZebLayers.h"
#include "reports/EventText.h"

namespace zeb::samplelog {
namespace {

using profiling::EventList;
using profiling::EventStore;
using profiling::MethodRecord;
using test::LoadedLog;

Bytes networkLog(const NetworkOptions& options) {
    return test::written([&options](std::ostream& out) { writeNetworkLog(out, options); });
}

std::vector<const profiling::ProfileEvent*> objectsOf(const EventList& events) {
    std::vector<const profiling::ProfileEvent*> objects;
    for (const auto& event : events) {
        if (event.isObject()) {
            objects.push_back(&event);
        }
    }
    return objects;
}

// What the backend's report takes from a log of one graph.
struct BackendView {
    explicit BackendView(const EventStore& store) : records(store.executeRecords[0].records) {
        const auto configs = objectsOf(store.finalizeRecords[0].record.events);
        const auto profiles = objectsOf(records.back().events[records.back().events.size() - 1].subEvents);
        const auto mappings = objectsOf(store.initEvents);
        if (configs.size() != 1 || profiles.size() != 1) {
            ADD_FAILURE() << configs.size() << " configurations, " << profiles.size() << " profiles";
            return;
        }
        EXPECT_EQ(profiles[0]->name, "Graph Execute Profile Data");
        config = profiling::readLayerConfig(configs[0]->objectBytes(), true);
        profile = profiling::readGraphProfile(profiles[0]->objectBytes(), true);
        layers = profiling::computeLayerStats(profile, config);
        if (mappings.size() == 2) {
            mapping = profiling::readNodeMapping(mappings[0]->objectBytes(), mappings[1]->objectBytes());
        }
    }

    // The value that a report takes, which is that of the first event of the name.
    [[nodiscard]] std::uint64_t value(std::string_view name) const {
        for (const MethodRecord& record : records) {
            if (const auto text = profiling::findEventValue(name, record.events)) {
                return std::stoull(*text);
            }
        }
        ADD_FAILURE() << "no event " << name;
        return 0;
    }

    [[nodiscard]] std::uint64_t roundTripsUs() const {
        return std::accumulate(
            records.begin(), records.end(), std::uint64_t{0},
            [](std::uint64_t sum, const MethodRecord& record) { return sum + record.durationUs; });
    }

    const std::vector<MethodRecord>& records;
    profiling::LayerConfig config;
    profiling::GraphProfile profile;
    std::vector<profiling::LayerStats> layers;
    std::vector<profiling::NodeMappingEntry> mapping;
};

class EveryRun : public testing::TestWithParam<std::tuple<bool, ProfileLevel, bool>> {
protected:
    const NetworkOptions options{.async = std::get<0>(GetParam()),
                                 .level = std::get<1>(GetParam()),
                                 .seed = std::get<2>(GetParam()) ? std::optional(7U) : std::nullopt};
    const LoadedLog log{networkLog(options)};
    const EventStore& store = log.store();
};

INSTANTIATE_TEST_SUITE_P(Network, EveryRun,
                         testing::Combine(testing::Bool(),
                                          testing::Values(ProfileLevel::basic, ProfileLevel::detailed,
                                                          ProfileLevel::internal),
                                          testing::Bool()));

TEST_P(EveryRun, HasAllStationsOfARun) {
    EXPECT_EQ(store.asyncExecute, options.async);
    EXPECT_EQ(store.executeRecords.size(), 1U);
    EXPECT_EQ(store.executeRecords[0].records.size(), 20U);
    EXPECT_EQ(store.executeRecords[0].graphName, store.composeGraphNames);
    EXPECT_EQ(store.finalizeRecords[0].name, store.composeGraphNames);
    EXPECT_GT(store.composeDurationUs, 0U);
    EXPECT_GT(store.initStepDurationUs, 0U);
    EXPECT_GT(store.finalizeRecords[0].record.durationUs, 0U);
    EXPECT_FALSE(store.initEvents.empty());
    EXPECT_GT(store.deInitRecord.durationUs, 0U);
    EXPECT_TRUE(store.hasLibLoad);
    const EventList& overall = store.executeOverallRecord.events;
    ASSERT_EQ(overall.size(), 2U);
    EXPECT_EQ(overall[0].name, "duration");
    EXPECT_EQ(profiling::formatEventValue(overall[1].value), "20");
    EXPECT_GT(log.header().epochTimestamp, 0U);
    EXPECT_FALSE(log.header().isAdapterUpdaterLog);
}

TEST_P(EveryRun, ItsTimesHoldOneAnother) {
    const BackendView view(store);
    EXPECT_EQ(view.value("Execute Profiling Level"), static_cast<std::uint32_t>(options.level));
    EXPECT_EQ(view.profile.executionCount, 20U);
    std::uint64_t layersUs = 0;
    for (const profiling::LayerRecord& record : view.profile.layerRecords) {
        layersUs += record.totalTimeUs;
    }
    const std::uint64_t copiesUs =
        view.value("Input Tensor Copy Time") + view.value("Output Tensor Copy Time");
    const std::uint64_t hlosUs = view.value("HLOS Graph Execution Time");
    const std::uint64_t backendUs = view.value(options.async ? "ZebGraph_executeAsync" : "ZebGraph_execute");
    const std::uint64_t waitsUs =
        options.async ? view.value("graphQueueWaitUs") + view.value("dispatcherQueueWaitUs") : 0;
    EXPECT_LT(layersUs, view.profile.acceleratorTimeUs);
    EXPECT_LT(view.profile.acceleratorTimeUs, view.profile.dspGraphTimeUs);
    EXPECT_LT(view.profile.dspGraphTimeUs, hlosUs);
    EXPECT_LT(hlosUs + copiesUs + waitsUs, backendUs);
    EXPECT_LT(backendUs, view.roundTripsUs());
    EXPECT_GT(view.value("Input Tensor Copy Time"), view.value("Output Tensor Copy Time"));
    EXPECT_TRUE(backendUs / 20 > 1'000 && backendUs / 20 < 5'000) << backendUs;
}

TEST_P(EveryRun, StartsSlowlyAndThenVariesALittle) {
    const std::vector<MethodRecord>& records = store.executeRecords[0].records;
    const auto shorter = [](const MethodRecord& left, const MethodRecord& right) {
        return left.durationUs < right.durationUs;
    };
    const auto [shortest, longest] = std::minmax_element(records.begin() + 1, records.end(), shorter);
    EXPECT_GT(records[0].durationUs, longest->durationUs * 11 / 10);
    EXPECT_LT(shortest->durationUs, longest->durationUs);
    EXPECT_GT(shortest->durationUs * 11 / 10, longest->durationUs);
    for (std::size_t position = 1; position < records.size(); ++position) {
        EXPECT_LT(records[position - 1].timestamp, records[position].timestamp);
    }
}

TEST_P(EveryRun, HasOneQueueWaitToAnAsynchronousExecution) {
    if (!options.async) {
        EXPECT_TRUE(store.executeQueueWaits.empty());
        return;
    }
    ASSERT_EQ(store.executeQueueWaits.size(), 1U);
    const std::vector<std::uint64_t>& waits = store.executeQueueWaits[0].queueWaits;
    const BackendView view(store);
    EXPECT_EQ(waits.size(), 20U);
    EXPECT_EQ(std::accumulate(waits.begin(), waits.end(), std::uint64_t{0}),
              view.value("graphQueueWaitUs") + view.value("dispatcherQueueWaitUs"));
    EXPECT_EQ(store.executeMaxQueueWaits.size(), 1U);
    EXPECT_EQ(store.executeMinQueueWaits.size(), 1U);
}

TEST_P(EveryRun, HasLayersThatAgreeAboveLevelBasic) {
    const BackendView view(store);
    EXPECT_EQ(view.config.krelClockHz, krelClockHz);
    EXPECT_EQ(view.config.dspClockHz, dspClockHz);
    const std::size_t count = options.level == ProfileLevel::basic ? 0 : 63;
    EXPECT_EQ(view.config.layerCount, count);
    EXPECT_EQ(view.profile.layerCount, count);
    EXPECT_EQ(view.config.entries.size(), count);
    EXPECT_EQ(view.profile.layerRecords.size(), count);
    EXPECT_EQ(view.mapping.size(), count);
    EXPECT_EQ(objectsOf(store.initEvents).size(), count == 0 ? 0U : 2U);
    std::set<std::uint32_t> schedule;
    for (std::size_t position = 0; position < view.layers.size(); ++position) {
        EXPECT_EQ(view.layers[position].layerId, position);
        EXPECT_EQ(view.layers[position].execCount, 20U) << position;
        EXPECT_EQ(view.mapping[position].oruLayerId, position);
        EXPECT_TRUE(profiling::isKnownLayerType(view.layers[position].layerType));
        schedule.insert(view.layers[position].orderKey);
    }
    EXPECT_EQ(schedule.size(), count);
}

class DetailedRun : public testing::Test {
protected:
    const LoadedLog log{networkLog({})};
    const BackendView view{log.store()};
};

TEST_F(DetailedRun, MostLayersAreOffloadedAndTheirTimesFit) {
    std::size_t offloaded = 0;
    for (const profiling::LayerStats& layer : view.layers) {
        if (!layer.offloaded) {
            EXPECT_GT(layer.avgDspCycles, 0U);
            EXPECT_NEAR(static_cast<double>(layer.avgTimeUs),
                        static_cast<double>(layer.avgDspCycles) * 1e6 / dspClockHz, 1.0);
            continue;
        }
        ++offloaded;
        EXPECT_GT(layer.nodeCount, 0U);
        EXPECT_NEAR(layer.avgKrelExecUs, layer.avgCoreTimeUs, 1.0);
        EXPECT_LE(layer.avgKrelExecUs + layer.avgCacheFlushUs, layer.avgDriverExecUs);
        EXPECT_LE(layer.avgDriverExecUs, layer.avgHalExecUs);
        EXPECT_LE(layer.avgHalExecUs, layer.avgTimeUs);
    }
    EXPECT_EQ(offloaded, 36U);
}

TEST_F(DetailedRun, ALinkedLayerWithoutACountFollowsTheFirstOfItsGroup) {
    std::set<std::uint32_t> groups;
    std::uint32_t group = 0;
    std::size_t uncounted = 0;
    for (std::size_t position = 0; position < view.layers.size(); ++position) {
        const profiling::LayerConfigEntry& entry = view.config.entries[position];
        if (!entry.linked()) {
            EXPECT_EQ(entry.mergedGroup, 0U);
            continue;
        }
        EXPECT_TRUE(entry.offloaded());
        if (view.profile.layerRecords[position].execCount != 0) {
            group = entry.mergedGroup;
            EXPECT_TRUE(groups.insert(group).second) << group;
        } else {
            ++uncounted;
            EXPECT_EQ(entry.mergedGroup, group);
            EXPECT_TRUE(entry.loopbackEnabled());
        }
    }
    EXPECT_EQ(groups.size(), 12U);
    EXPECT_EQ(uncounted, 18U);
}

TEST_F(DetailedRun, EveryZebLayerHasItsOruLayersInTheNetworksOrder) {
    std::vector<profiling::ZebLayer> zebLayers = profiling::gatherZebLayers(view.mapping);
    profiling::addLayerTimes(zebLayers, view.layers);
    std::vector<std::string_view> names;
    std::uint32_t nextOruLayer = 0;
    std::uint64_t totalUs = 0;
    for (const profiling::ZebLayer& layer : zebLayers) {
        names.push_back(layer.name);
        totalUs += layer.totalTimeUs();
        EXPECT_GT(layer.totalTimeUs(), 0U) << layer.name;
        for (const std::uint32_t oruLayer : layer.oruLayerIds) {
            EXPECT_EQ(oruLayer, nextOruLayer++);
        }
    }
    ASSERT_EQ(names.size(), designedLayerCount);
    EXPECT_EQ(names.front(), "input_1");
    EXPECT_EQ(names[7], "conv_pw_3");
    EXPECT_EQ(names.back(), "predictions");
    EXPECT_LT(totalUs, view.profile.acceleratorTimeUs / view.profile.executionCount);
    const double krelPercent = profiling::shareOfTime(zebLayers).krelTimePercent;
    EXPECT_TRUE(krelPercent > 50.0 && krelPercent < 95.0) << krelPercent;
}

TEST(NetworkLog, TheSameOptionsGiveTheSameBytesAndASeedOthers) {
    std::set<Bytes> logs;
    const std::vector<NetworkOptions> runs = {{}, {.seed = 1}, {.seed = 2}, {.async = true}};
    for (const NetworkOptions& options : runs) {
        const Bytes log = networkLog(options);
        EXPECT_EQ(log, networkLog(options));
        logs.insert(log);
    }
    EXPECT_EQ(logs.size(), runs.size());
}

TEST(NetworkLog, WorksOutCyclesFromTheLayersWork) {
    const struct {
        std::size_t oruLayer;
        std::uint64_t cycles;
    } cases[] = {
        {0, 1'200 + 224 * 224 * 3 * 5 / 32},          // bytes of the image as floats and as integers
        {2, 1'500 + 112 * 112 * 32 * 27 / 432},       // multiplications of the first convolution
        {4, 1'500 + 112 * 112 * 32 * 9 / 64},         // of a depthwise one
        {14, 1'500 + 56 * 56 * 128 * 128 / 512},      // of a pointwise one
        {48, 1'500 + 7 * 7 * 1024 * 1024 / 512 / 4},  // a quarter of the last one
        {55, 1'500 + (1024 + 1024 * 1000 + 1000) / 4 / 32 + 1},  // bytes of a quarter of the classifier
        {60, 1'200},
        {61, 1'200 + 12 * 1000},
    };
    const Network network = makeNetwork(designedLayerCount);
    for (const auto& [oruLayer, cycles] : cases) {
        EXPECT_EQ(network.oruLayers[oruLayer].cycles, cycles) << oruLayer;
    }
}

TEST(NetworkLog, ScalesToTheNumberOfLayers) {
    const struct {
        std::uint32_t zebLayers;
        std::size_t oruLayers;
    } cases[] = {{1, 2}, {4, 8}, {6, 11}, {7, 13}, {31, 59}, {32, 63}, {33, 67}, {34, 71}, {50'000, 199'935}};
    for (const auto& [zebLayers, oruLayers] : cases) {
        const LoadedLog log(networkLog({.executions = 2, .layers = zebLayers}));
        const BackendView view(log.store());
        std::map<std::string_view, std::size_t> names;
        for (const profiling::NodeMappingEntry& entry : view.mapping) {
            ++names[entry.zebLayerName];
        }
        EXPECT_EQ(names.size(), zebLayers);
        EXPECT_EQ(view.layers.size(), oruLayers) << zebLayers;
        EXPECT_EQ(view.mapping.size(), view.layers.size());
        EXPECT_EQ(view.config.layerCount, view.layers.size());
    }
}

TEST(NetworkLog, ScalesToTheNumberOfGraphsAndExecutions) {
    const LoadedLog log(networkLog({.async = true, .executions = 3, .graphs = 40, .seed = 3}));
    const EventStore& store = log.store();
    EXPECT_EQ(store.executeRecords.size(), 40U);
    EXPECT_EQ(store.finalizeRecords.size(), 40U);
    EXPECT_EQ(store.executeQueueWaits.size(), 40U);
    EXPECT_EQ(objectsOf(store.initEvents).size(), 2U);
    EXPECT_EQ(store.executeRecords[39].graphName, "mobilenet_v1_224_40");
    for (const auto& graph : store.executeRecords) {
        EXPECT_EQ(graph.records.size(), 3U);
    }
    EXPECT_NE(store.executeRecords[0].records[1].durationUs, store.executeRecords[1].records[1].durationUs);
}

}  // namespace
}  // namespace zeb::samplelog
