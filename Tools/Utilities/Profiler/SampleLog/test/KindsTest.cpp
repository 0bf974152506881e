// The small logs: one of every method, one of the adapter updater, one of shared events.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <span>
#include <variant>

#include "AdapterUpdaterLog.h"
#include "LoadedLog.h"
#include "MethodsLog.h"
#include "SharedEventsLog.h"
#include "log/ChunkCheck.h"

namespace zeb::samplelog {
namespace {

using test::LoadedLog;

// What the messages of a log are made of.
struct Ingredients {
    explicit Ingredients(const Chunks& chunks) {
        for (const std::vector<Message>& chunk : chunks) {
            for (const Message& message : chunk) {
                ++messages;
                methods.insert(static_cast<int>(message.methodType));
                levels.insert(message.level);
                add(message.events, 1);
            }
        }
    }

    void add(const std::vector<Event>& events, std::size_t level) {
        depth = events.empty() ? depth : std::max(depth, level);
        for (const Event& event : events) {
            values.insert(event.value.index());
            units.insert(event.unit);
            types.insert(event.type);
            namedObjects += event.unit == Unit::object && event.fileName ? 1U : 0U;
            namelessObjects += event.unit == Unit::object && !event.fileName ? 1U : 0U;
            add(event.subEvents, level + 1);
        }
    }

    std::size_t messages = 0;
    std::set<int> methods;
    std::set<int> levels;
    std::set<std::size_t> values;
    std::set<std::uint32_t> units;
    std::set<std::uint32_t> types;
    std::size_t depth = 0;
    std::size_t namedObjects = 0;
    std::size_t namelessObjects = 0;
};

TEST(MethodsLog, HasEverythingThatALogCanHold) {
    const Ingredients log(methodsChunks());
    for (int method = 1; method <= 18; ++method) {
        EXPECT_TRUE(log.methods.contains(method)) << method;
    }
    EXPECT_EQ(log.values.size(), std::variant_size_v<Value>);
    EXPECT_EQ(log.units, (std::set<std::uint32_t>{0, 2, 3, 4, 5, 6, 77}));
    EXPECT_EQ(log.types, (std::set<std::uint32_t>{0, 100, 200, 300, 405}));
    EXPECT_GE(log.levels.size(), 4U);
    EXPECT_GE(log.depth, 4U);
    EXPECT_GE(log.namedObjects, 3U);
    EXPECT_GE(log.namelessObjects, 1U);
    EXPECT_LT(log.messages, 40U);
}

TEST(MethodsLog, TheReaderTakesAllButTheUnknownMethod) {
    const test::CaughtLog caught(profiling::ZEB_LOG_LEVEL_ERROR);
    const LoadedLog log(test::written(writeMethodsLog));
    const profiling::EventStore& store = log.store();
    EXPECT_EQ(caught.lines(), std::vector<std::string>{"1 Unknown method type."});
    EXPECT_EQ(store.executeRecords.size(), 2U);
    EXPECT_EQ(store.executeQueueWaits.size(), 2U);
    EXPECT_EQ(store.finalizeAfterTensorUpdatesRecords.size(), 2U);
    EXPECT_EQ(store.contextSectionRetrieval[0].records.size(), 3U);
    EXPECT_EQ(store.deInitRecord.events.size(), 9U);
    for (const auto& graph : store.executeRecords) {
        for (const auto& record : graph.records) {
            EXPECT_FALSE(record.events.empty()) << graph.graphName;
        }
    }
}

TEST(AdapterUpdaterLog, TheReaderKnowsItAndKeepsTheLastUpdate) {
    const LoadedLog log(test::written(writeAdapterUpdaterLog));
    EXPECT_TRUE(log.header().isAdapterUpdaterLog);
    ASSERT_EQ(log.store().updateBinarySectionRecords.size(), 1U);
    const profiling::MethodRecord& record = log.store().updateBinarySectionRecords[0].record;
    EXPECT_EQ(record.durationUs, *adapterUpdaterChunks().back().back().timing.endTime -
                                     *adapterUpdaterChunks().back().back().timing.startTime);
    EXPECT_TRUE(record.events[record.events.size() - 1].isObject());
}

profiling::ChunkFault faultOf(const SharedEventsShape& shape) {
    const Bytes log = encodeSharedEventsLog(shape);
    return profiling::checkChunk(std::span(log).subspan(4));
}

TEST(SharedEventsLog, PassesEveryCheckDownToTheDeepestLevel) {
    EXPECT_EQ(faultOf({.fanOut = 10}), profiling::ChunkFault::none);
    EXPECT_EQ(faultOf({.levels = 63, .fanOut = 10}), profiling::ChunkFault::verification);
}

// The verifier takes less than 2^32 tables. Verifying the whole would take most of a minute.
TEST(SharedEventsLog, AFewKilobytesStandForBillionsOfEvents) {
    constexpr std::uint64_t otherTables = 4;
    EXPECT_LT(encodeSharedEventsLog().size(), 8'192U);
    EXPECT_GT(SharedEventsShape().eventCount(), 2'000'000'000U);
    EXPECT_LT(SharedEventsShape().eventCount() + otherTables, 4'294'967'295U);
}

TEST(SharedEventsLog, CountsTheEventsThatAReaderSees) {
    const SharedEventsShape shape{.levels = 6, .sharedLevels = 3, .fanOut = 4};
    const LoadedLog log(encodeSharedEventsLog(shape));
    const std::function<std::uint64_t(const profiling::EventList&)> count =
        [&count](const profiling::EventList& events) {
            std::uint64_t sum = events.size();
            for (const auto& event : events) {
                sum += count(event.subEvents);
            }
            return sum;
        };
    EXPECT_EQ(count(log.store().executeRecords[0].records[0].events), shape.eventCount());
    EXPECT_EQ(shape.eventCount(), 87U);
}

}  // namespace
}  // namespace zeb::samplelog
