#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <set>

#include "samplelog/SharedTextLog.h"
#include "support/TestStore.h"

namespace zeb::profiling {
namespace {

using samplelog::finalizeEventType;
using samplelog::initEventType;
using test::event;
using test::inLine;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using test::ofType;
using test::TestStore;

Message withoutText(Message message) {
    message.text.reset();
    return message;
}

test::Event initEvent(const char* name) {
    return ofType(initEventType, event(name));
}

double processorSecondsOf(const std::function<void()>& work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// "name:count" of each graph.
std::string graphsIn(const GraphRecordList& graphs) {
    std::string text;
    for (const GraphMethodRecords& graph : graphs) {
        text += std::string(graph.graphName) + ":" + std::to_string(graph.records.countByWalking()) + " ";
    }
    return text;
}

std::string joined(const BlockList<StoredText>& names) {
    std::string text;
    for (const StoredText name : names) {
        text += (text.empty() ? "" : "; ") + std::string(name);
    }
    return text;
}

TEST(Decoding, UnknownMethodsAreLoggedAndDropped) {
    for (const int type : {0, 18, 127, -1, -128}) {
        TestStore store;
        const test::CaughtLog log;
        EXPECT_FALSE(store.take(message(static_cast<MethodType>(type), "net", 5)));
        EXPECT_TRUE(log.has("1 Unknown method type.")) << type;
    }
}

TEST(Decoding, WhatADroppedMessageLeaves) {
    TestStore store(1);
    store.take(message(MethodType::InitStep, "first", 5, {}, 10));
    for (const MethodType type :
         {MethodType::ExecuteAsync, MethodType::InitStep, MethodType::ComposeGraphs}) {
        Message dropped = message(type, "dropped", 7, {event("e")}, 20);
        dropped.level = 1;
        EXPECT_FALSE(store.take(dropped));
    }
    EXPECT_TRUE(store.asyncExecute);
    EXPECT_EQ(store.initStepTimestamp, 20U);
    EXPECT_EQ(store.initStepDurationUs, 5U);
    EXPECT_EQ(store.initStepMessage, "first");
    EXPECT_EQ(store.composeTimestamp, 20U);
    EXPECT_EQ(store.composeDurationUs, 0U);
    EXPECT_TRUE(store.executeRecords.empty());
    store.take(withoutText(message(MethodType::InitStep, "", 5)));
    EXPECT_EQ(store.initStepMessage, "first");
    store.take(message(MethodType::InitStep, "", 5));
    EXPECT_EQ(store.initStepMessage, "") << "an empty text is one";
}

TEST(Decoding, ADurationNeedsBothTimesInOrder) {
    const std::pair<samplelog::Timing, std::uint64_t> cases[] = {
        {{3, 10}, 7}, {{{}, 10}, 0}, {{3, {}}, 0}, {{10, 10}, 0}, {{11, 10}, 0}};
    for (const auto& [timing, durationUs] : cases) {
        TestStore store;
        Message init = message(MethodType::Init, "", 0);
        init.timing = timing;
        EXPECT_TRUE(store.take(init));
        EXPECT_EQ(store.initRecord.durationUs, durationUs);
    }
}

TEST(Decoding, ALaterMessageReplacesASingleRecord) {
    TestStore store;
    store.take(message(MethodType::Init, "unread", 5, {event("old"), initEvent("init")}, 1));
    store.take(message(MethodType::Init, "unread", 6, {event("new"), initEvent("init")}, 2));
    EXPECT_FALSE(store.hasInitEvents);
    EXPECT_EQ(store.initRecord.durationUs, 6U);
    EXPECT_EQ(store.initRecord.timestamp, 2U);
    EXPECT_EQ(inLine(store.initRecord.events), "new= init=");
    store.take(message(MethodType::DeInit, std::string("bye\0bye", 7), 3, {event("d")}));
    store.take(withoutText(message(MethodType::DeInit, "", 4)));
    EXPECT_EQ(store.deInitRecord.message, "bye");
    EXPECT_EQ(store.deInitRecord.durationUs, 4U);
    EXPECT_TRUE(store.deInitRecord.events.empty());
}

TEST(Decoding, ComposedGraphsAddUp) {
    TestStore store;
    store.take(message(MethodType::ComposeGraphs, "a", 10, {}, 0));
    store.take(message(MethodType::ComposeGraphs, "", 1, {}, 5));
    store.take(withoutText(message(MethodType::ComposeGraphs, "", 2, {}, 7)));
    store.take(message(MethodType::ComposeGraphs, "b", 20, {}, 9));
    EXPECT_EQ(joined(store.composeGraphNames), "a; b");
    EXPECT_EQ(store.composeDurationUs, 33U);
    EXPECT_EQ(store.composeTimestamp, 5U);
}

TEST(Decoding, GraphsKeepTheOrderOfTheirFirstAppearanceAndNeedAName) {
    for (const MethodType type :
         {MethodType::Execute, MethodType::ExecuteAsync, MethodType::Finalize, MethodType::GraphEvents,
          MethodType::ApplyBinarySection, MethodType::FinalizeAfterTensorUpdates}) {
        TestStore store;
        EXPECT_FALSE(store.take(withoutText(message(type, "", 5, {initEvent("init"), event("e")}))));
        EXPECT_FALSE(store.hasInitEvents || store.hasFinalize || store.hasFinalizeEvents);
        EXPECT_TRUE(store.executeRecords.empty() && store.finalizeRecords.empty());
        EXPECT_EQ(store.asyncExecute, type == MethodType::ExecuteAsync);
    }
    TestStore store;
    for (const char* const graph : {"g2", "g1", "g2", "", "G1"}) {
        EXPECT_TRUE(store.take(message(MethodType::Execute, graph, 5)));
    }
    EXPECT_EQ(graphsIn(store.executeRecords), "g2:2 g1:1 :1 G1:1 ");
    for (const char* const text : {"net [3]", "net", "net[3]", " [3]", "[", "net [1] [2]"}) {
        store.take(message(MethodType::FinalizeAfterTensorUpdates, text, 5));
    }
    EXPECT_EQ(graphsIn(store.finalizeAfterTensorUpdatesRecords), "net:3 net[3]:1 :1 [:1 ");
    EXPECT_EQ(store.finalizeAfterTensorUpdatesRecords[0].records.walkTo(2).message, "net [1] [2]");
}

TEST(Decoding, InitEventsComeFromTheLatestMessageThatCanHaveThem) {
    TestStore store;
    store.take(message(MethodType::Execute, "net", 5, {event("a"), initEvent("i"), event("b")}));
    EXPECT_EQ(inLine(store.initEvents), "i=");
    EXPECT_EQ(inLine(store.executeRecords[0].records.front().events), "a= b=");
    store.take(message(MethodType::ApplyBinarySection, "net", 5, {initEvent("kept")}));
    EXPECT_EQ(inLine(store.initEvents), "i=");
    EXPECT_EQ(inLine(store.applyBinarySectionRecords[0].records.front().events), "kept=");
    store.take(message(MethodType::Finalize, "net", 5, {event("f")}));
    EXPECT_TRUE(store.hasInitEvents);
    EXPECT_TRUE(store.initEvents.empty());
    store.take(message(MethodType::Finalize, "net", 7, {}, 77));
    ASSERT_EQ(store.finalizeRecords.size(), 1U);
    EXPECT_EQ(store.finalizeRecords[0].record->durationUs, 7U);
    EXPECT_EQ(store.finalizeRecords[0].record->timestamp, 77U);
    EXPECT_TRUE(store.finalizeRecords[0].record->events.empty()) << "replaced by a message without events";
}

TEST(Decoding, GraphEventsFillExecutionsWithoutEventsFromTheFront) {
    TestStore store;
    for (const std::uint64_t durationUs : {1U, 2U, 3U}) {
        store.take(message(MethodType::Execute, "net", durationUs));
    }
    for (const std::uint64_t value : {10U, 20U, 30U, 40U}) {
        store.take(message(MethodType::GraphEvents, "net", 99, {ofType(200, event("e", number(value)))}));
    }
    store.take(message(MethodType::Execute, "net", 5));
    store.take(message(MethodType::GraphEvents, "net", 0, {event("late", number(50))}));
    std::string filled;
    for (const MethodRecord& record : store.executeRecords[0].records) {
        filled += std::to_string(record.durationUs) + "@" + std::to_string(record.timestamp) + " " +
                  inLine(record.events) + ", ";
    }
    EXPECT_EQ(filled, "1@1000 e=10, 2@1000 e=20, 3@1000 e=30, 0@0 e=40, 5@1000 late=50, ");
}

TEST(Decoding, EventsOfManyExecutionsFindTheirRecordsInOneWalk) {
    constexpr std::size_t executions = 200'000;  // each time from the front, that would be 20 billion steps
    EventArena arena;
    const std::span<ProfileEvent> events = arena.makeEvents(1);
    events[0] = {arena.keepName("e"), 0, {}, {}, {}};
    RecordList records;
    EXPECT_LT(processorSecondsOf([&] {
                  for (std::size_t execution = 0; execution < executions; ++execution) {
                      records.add({}, arena);
                  }
                  for (std::size_t execution = 0; execution < executions; ++execution) {
                      records.fill(EventList(events), arena);
                  }
              }),
              3.0);
    EXPECT_EQ(records.countByWalking(), executions);
}

TEST(Decoding, GraphEventsAreFiledByType) {
    TestStore store;
    store.take(message(MethodType::GraphEvents, "i", 0, {initEvent("i")}));
    EXPECT_TRUE(store.executeRecords.empty());
    store.take(message(MethodType::GraphEvents, "net", 0,
                       {event("x1"), ofType(finalizeEventType, event("f1")), initEvent("i2"), event("x2"),
                        ofType(finalizeEventType, event("f2"))}));
    EXPECT_EQ(inLine(store.initEvents), "i2=");
    EXPECT_EQ(inLine(store.finalizeRecords[0].record->events), "f1= f2=");
    EXPECT_EQ(inLine(store.executeRecords[0].records.front().events), "x1= x2=");
    EXPECT_FALSE(store.hasFinalize);
    store.take(message(MethodType::GraphEvents, "other", 0, {event("x")}));
    EXPECT_EQ(store.finalizeRecords.size(), 2U)
        << "once there are events of finalization, every graph gets its entry";
}

TEST(Decoding, GraphEventsLeaveTheTimesOfTheirGraphsFinalization) {
    TestStore store;
    store.take(message(MethodType::Finalize, "net", 7, {event("old")}, 77));
    store.take(message(MethodType::GraphEvents, "net", 99, {ofType(finalizeEventType, event("new"))}, 88));
    ASSERT_EQ(store.finalizeRecords.size(), 1U);
    const MethodRecord& record = *store.finalizeRecords[0].record;
    EXPECT_EQ(inLine(record.events), "new=");
    EXPECT_EQ(record.durationUs, 7U);
    EXPECT_EQ(record.timestamp, 77U);
}

TEST(Decoding, TheSelectorDecidesOnTheValue) {
    constexpr std::uint32_t own = 99;  // the selector that the value asks for
    const struct {
        std::uint32_t selector;
        test::Value value;
        ValueKind kind;
        std::string text;
    } cases[] = {
        {own, std::int64_t{-3}, ValueKind::int64, "-3"},
        {own, number(18446744073709551615U), ValueKind::uint64, "18446744073709551615"},
        {own, 2.5F, ValueKind::float32, "2.500000"},
        {own, -0.125, ValueKind::float64, "-0.125000"},
        {own, std::string("abc\0def", 7), ValueKind::text, "abc"},
        {own, samplelog::Bytes{1, 2}, ValueKind::unset, ""},
        {0, number(5), ValueKind::unset, ""},
        {1, {}, ValueKind::int64, "0"},
        {3, {}, ValueKind::float32, "0.000000"},
        {4, {}, ValueKind::unset, ""},
        {5, {}, ValueKind::float64, "0.000000"},
        {7, number(5), ValueKind::unset, ""},
        {2, std::int64_t{4}, ValueKind::uint64, "0"},
    };
    for (const auto& [selector, source, kind, text] : cases) {
        test::Event made = event("e", source);
        made.valueSelector = selector == own ? std::nullopt : std::optional(selector);
        TestStore store;
        store.take(message(MethodType::Init, "", 0, {made}));
        const EventValue value = store.initRecord.events.front().value();
        EXPECT_EQ(value.kind, kind);
        EXPECT_EQ(formatEventValue(value), text);
    }
}

TEST(Decoding, AnEventTreeComesOutInTheOrderOfTheLog) {
    TestStore store;
    test::Event nameless;
    nameless.unit = samplelog::Unit::cycles;
    nameless.subEvents = {event("b", number(1), {event("c", number(2)), event("d", number(3))}), event("e")};
    store.take(message(MethodType::Init, "", 0,
                       {nameless, test::object("o", {7, 8, 9}, std::string("o.bin\0cut", 9)),
                        event(std::string("cut\0off", 7))}));
    const EventList events = store.initRecord.events;
    EXPECT_EQ(inLine(events), "null=(b=1(c=2 d=3) e=) o= cut=");
    EXPECT_EQ(events.front().unit(), EventUnit::cycles);
    EXPECT_TRUE(events.front().objectBytes().empty());
    ASSERT_EQ(events.walkTo(1).objectBytes().size(), 3U);
    EXPECT_EQ(std::to_integer<int>(events.walkTo(1).objectBytes()[2]), 9);
    EXPECT_EQ(events.walkTo(1).objectFileName(), "o.bin") << "not what stands behind its NUL";
}

// Short texts and long ones are kept in different ways, and what stands behind the NUL may make the
// difference.
TEST(Decoding, TextsEndAtTheirFirstNul) {
    for (const auto& [length, behind] : {std::pair{3U, 5U}, {3U, 500U}, {300U, 5U}}) {
        const std::string shown(length, 'a');
        const std::string text = shown + '\0' + std::string(behind, 'b');
        TestStore store;
        for (const std::string& graph : {text, shown}) {
            store.take(
                message(MethodType::Execute, graph, 1, {test::object(text, {1}, text), event("e", text)}));
            store.take(message(MethodType::Finalize, graph, 1));
            store.take(message(MethodType::FinalizeAfterTensorUpdates, graph, 1));
            store.take(message(MethodType::ComposeGraphs, graph, 1));
        }
        store.take(message(MethodType::InitStep, text, 1));
        store.take(message(MethodType::DeInit, text, 1));
        EXPECT_EQ(graphsIn(store.executeRecords), shown + ":2 ");
        const EventList& events = store.executeRecords[0].records.front().events;
        EXPECT_EQ(events.front().name, shown);
        EXPECT_EQ(events.front().objectFileName(), shown);
        EXPECT_EQ(formatEventValue(events.walkTo(1).value()), shown);
        EXPECT_EQ(store.finalizeRecords.size(), 1U);
        EXPECT_EQ(store.finalizeRecords[0].name, shown);
        EXPECT_EQ(graphsIn(store.finalizeAfterTensorUpdatesRecords), shown + ":2 ");
        EXPECT_EQ(store.finalizeAfterTensorUpdatesRecords[0].records.front().message, shown);
        EXPECT_EQ(joined(store.composeGraphNames), shown + "; " + shown);
        EXPECT_EQ(store.initStepMessage, shown);
        EXPECT_EQ(store.deInitRecord.message, shown);
    }
}

// One text names an entry in two lists, which need not stand at the same position.
TEST(Decoding, AGraphHasItsOwnPlaceInEachList) {
    for (const std::size_t length : {3U, 300U}) {
        const std::string graph(length, 'g');
        TestStore store;
        store.take(message(MethodType::Execute, "first", 7, {event("own")}));
        store.take(
            message(MethodType::GraphEvents, graph, 0, {ofType(finalizeEventType, event("f")), event("x")}));
        store.take(message(MethodType::Execute, graph, 8));
        EXPECT_EQ(graphsIn(store.executeRecords), "first:1 " + graph + ":2 ");
        EXPECT_EQ(store.executeRecords[1].records.front().durationUs, 0U);
        EXPECT_EQ(inLine(store.executeRecords[1].records.front().events), "x=");
        EXPECT_EQ(store.executeRecords[1].records.walkTo(1).durationUs, 8U);
        ASSERT_EQ(store.finalizeRecords.size(), 1U);
        EXPECT_EQ(store.finalizeRecords[0].name, graph);
        EXPECT_EQ(inLine(store.finalizeRecords[0].record->events), "f=");
    }
}

// What has to be one and the same place in all events of such a log.
std::set<const void*> placesIn(const EventList& events) {
    return {events.front().objectBytes().data(), events.front().objectFileName().data(),
            events.walkTo(1).value().asText()};
}

TEST(Decoding, ALongTextIsKeptOnceHoweverManyReferToIt) {
    const std::string text(1000, 'a');
    TestStore store;
    ASSERT_TRUE(store.takeLog(
        samplelog::encodeSharedTextLog({MethodType::FinalizeAfterTensorUpdates, 3, text + " [1]", 900}), 3));
    ASSERT_EQ(graphsIn(store.finalizeAfterTensorUpdatesRecords), text + ":3 ");
    const RecordList& records = store.finalizeAfterTensorUpdatesRecords[0].records;
    for (const MethodRecord& record : records) {
        EXPECT_EQ(record.message, text + " [1]");
        EXPECT_EQ(record.message.text().data(), records.front().message.text().data());
        EXPECT_EQ(record.events.front().name, text + " [1]");
        EXPECT_EQ(formatEventValue(record.events.walkTo(1).value()), text + " [1]");
        EXPECT_EQ(record.events.front().objectBytes().size(), 900U);
        EXPECT_EQ(placesIn(record.events), placesIn(records.front().events));
    }
    ASSERT_FALSE(testing::Test::HasFailure()) << "what follows would take more memory than there is";
    // With so many references, a tenth of a millisecond for each would be 20 s.
    const std::string longText(1U << 20U, 'b');
    for (const MethodType type : {MethodType::Execute, MethodType::FinalizeAfterTensorUpdates,
                                  MethodType::Finalize, MethodType::InitStep, MethodType::ComposeGraphs}) {
        constexpr std::size_t messages = 200'000;
        const samplelog::Bytes log = samplelog::encodeSharedTextLog({type, messages, longText});
        const double seconds = processorSecondsOf([&] { TestStore().takeLog(log, messages); });
        EXPECT_LT(seconds, 3.0) << static_cast<int>(type);
    }
}

// Whatever the chunk before, a larger one, has left.
TEST(Decoding, PayloadsThatOverlapTakeNoMoreMemoryThanTheirChunk) {
    constexpr std::size_t messages = 100;
    TestStore store;
    const struct {
        char letter;
        std::size_t size;
        std::size_t step;
    } chunks[] = {{'a', 4000, 20}, {'b', 1200, 4}};
    for (const auto& [letter, size, step] : chunks) {
        ASSERT_TRUE(store.takeLog(samplelog::encodeSharedTextLog(
                                      {MethodType::Execute, messages, std::string(300, letter), size, step}),
                                  messages));
        const RecordList& records = store.executeRecords[store.executeRecords.size() - 1].records;
        for (std::size_t position = 1; position < messages; ++position) {
            const auto bytes = records.walkTo(position).events.front().objectBytes();
            ASSERT_EQ(bytes.size(), size / 2);
            EXPECT_EQ(std::to_integer<std::size_t>(bytes[0]), size / 2 % 256);
            if (position > messages / 2) {
                EXPECT_EQ(bytes.data(),
                          records.walkTo(position - 1).events.front().objectBytes().data() + step);
            }
        }
    }
    const std::string next(300, 'c');
    ASSERT_TRUE(store.takeLog(samplelog::encodeSharedTextLog({MethodType::Execute, 1, next, 600}), 1));
    EXPECT_EQ(formatEventValue(store.executeRecords[2].records.front().events.walkTo(1).value()), next);
}

TEST(Decoding, AnAddressTellsNothingOfTheNextChunk) {
    TestStore store;
    LogChunkBuffer chunk(10'000);
    const std::pair<char, std::size_t> textsAndPayloads[] = {{'a', 900}, {'b', 900}, {'b', 908}};
    for (const auto& [letter, payloadSize] : textsAndPayloads) {
        samplelog::Bytes log =
            samplelog::encodeSharedTextLog({MethodType::Execute, 1, std::string(1000, letter), payloadSize});
        log.resize(chunk.size() + 4);
        ASSERT_TRUE(store.takeLog(log, 1, chunk));
    }
    ASSERT_EQ(store.executeRecords.size(), 2U);
    EXPECT_EQ(store.executeRecords[1].records.front().events.front().name, std::string(1000, 'b'));
    EXPECT_EQ(store.executeRecords[1].records.front().events.front().objectFileName(),
              std::string(1000, 'b'));
    const auto payload = store.executeRecords[1].records.walkTo(1).events.front().objectBytes();
    EXPECT_EQ(std::to_integer<int>(payload[0]), 908 / 2 % 256);
}

}  // namespace
}  // namespace zeb::profiling
