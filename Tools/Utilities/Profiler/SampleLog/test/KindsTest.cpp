// The small logs. What the one of every method and that of the adapter updater hold is pinned down by their
// whole reports.

#include <gtest/gtest.h>

#include <set>
#include <span>

#include "log/ChunkCheck.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "log/Methods.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/SharedEventsLog.h"
#include "support/TestReader.h"

namespace zeb::samplelog {
namespace {

using profiling::ChunkFault;
using Loaded = test::Loaded<profiling::ZebProfileLogReader>;

TEST(MethodsLog, TheReaderTakesAllButTheUnknownMethod) {
    std::ostringstream out;
    writeMethodsLog(out);
    const std::string text = out.str();
    const test::CaughtLog caught(profiling::ZEB_LOG_LEVEL_ERROR);
    EXPECT_TRUE(Loaded(Bytes(text.begin(), text.end())).isLoaded);
    EXPECT_EQ(caught.lines(), std::vector<std::string>{"1 Unknown method type."});
}

TEST(MethodsLog, HasMessagesOfAllMethods) {
    const test::TempDir directory;
    std::ostringstream out;
    writeMethodsLog(out);
    profiling::ChunkReader chunks(directory.write("log", out.str()));
    profiling::FlatBufferReaderUtil walker;
    std::set<MethodType> seen;
    while (chunks.nextLength()) {
        const auto buffer = chunks.readBody();
        ASSERT_TRUE(walker.openChunk(*buffer));
        while (const auto* const message = walker.nextMessage()) {
            seen.insert(message->methodType());
        }
    }
    for (const profiling::Method& method : profiling::methods) {
        EXPECT_TRUE(seen.contains(method.type)) << method.name;
    }
}

// The verifier takes 62 levels and less than 2^32 tables. Verifying the whole would take most of a minute.
TEST(SharedEventsLog, AFewKilobytesThatPassEveryCheckStandForBillionsOfEvents) {
    const auto faultOf = [](const SharedEventsShape& shape) {
        const Bytes log = encodeSharedEventsLog(shape);
        return profiling::checkChunk(std::span(log).subspan(4));
    };
    constexpr std::uint64_t otherTables = 4;
    EXPECT_EQ(faultOf({.fanOut = 10}), ChunkFault::none);
    EXPECT_EQ(faultOf({.levels = 63, .fanOut = 10}), ChunkFault::verification);
    EXPECT_LT(encodeSharedEventsLog().size(), 8'192U);
    EXPECT_GT(SharedEventsShape().eventCount(), 2'000'000'000U);
    EXPECT_LT(SharedEventsShape().eventCount() + otherTables, 4'294'967'295U);
}

std::uint64_t countOf(const profiling::EventList& events) {
    std::uint64_t sum = events.countByWalking();
    for (const auto& event : events) {
        sum += countOf(event.subEvents);
    }
    return sum;
}

TEST(SharedEventsLog, CountsTheEventsThatAReaderSees) {
    const SharedEventsShape shape{.levels = 6, .sharedLevels = 3, .fanOut = 4};
    const Loaded loaded(encodeSharedEventsLog(shape));
    EXPECT_EQ(countOf(loaded.reader.store().executeRecords[0].records.front().events), 87U);
    EXPECT_EQ(shape.eventCount(), 87U);
}

}  // namespace
}  // namespace zeb::samplelog
