#include <gtest/gtest.h>

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

Message atLevel(std::int8_t level, Message message) {
    message.level = level;
    return message;
}

Message withoutText(Message message) {
    message.text.reset();
    return message;
}

Message timed(std::optional<std::uint64_t> start, std::optional<std::uint64_t> end) {
    Message made = message(MethodType::Init, "", 0);
    made.timing = {start, end};
    return made;
}

TEST(Decoding, UnknownMethodsAreLoggedAndDropped) {
    for (const int type : {0, 18, 127, -1, -128}) {
        TestStore store;
        const test::CaughtLog log;
        EXPECT_FALSE(store.take(message(static_cast<MethodType>(type), "net", 5)));
        EXPECT_TRUE(log.has("1 Unknown method type.")) << type;
        EXPECT_TRUE(store.executeRecords.empty());
    }
}

TEST(Decoding, OnlyMessagesBelowTheVisibilityLevelPass) {
    const struct {
        std::int8_t reader;
        std::int8_t message;
        bool passes;
    } cases[] = {{2, 0, true},  {2, 1, true},  {2, 2, false},     {2, 3, false},       {2, -1, true},
                 {0, 0, false}, {0, -1, true}, {127, 127, false}, {-128, -128, false}, {-127, -128, true}};
    for (const auto& [reader, level, passes] : cases) {
        EXPECT_EQ(TestStore(reader).take(atLevel(level, message(MethodType::Execute, "net", 5))), passes)
            << int{reader} << " " << int{level};
    }
}

TEST(Decoding, WhatADroppedMessageLeaves) {
    TestStore store(1);
    store.take(message(MethodType::InitStep, "first", 5, {}, 10));
    for (const MethodType type :
         {MethodType::ExecuteAsync, MethodType::InitStep, MethodType::ComposeGraphs}) {
        EXPECT_FALSE(store.take(atLevel(1, message(type, "dropped", 7, {event("e")}, 20))));
    }
    EXPECT_TRUE(store.asyncExecute);
    EXPECT_EQ(store.initStepTimestamp, 20U);
    EXPECT_EQ(store.initStepDurationUs, 5U);
    EXPECT_EQ(store.initStepMessage, "first");
    EXPECT_EQ(store.composeTimestamp, 20U);
    EXPECT_EQ(store.composeDurationUs, 0U);
    EXPECT_TRUE(store.executeRecords.empty());
}

TEST(Decoding, ADurationNeedsBothTimesInOrder) {
    const struct {
        std::optional<std::uint64_t> start;
        std::optional<std::uint64_t> end;
        std::uint64_t durationUs;
    } cases[] = {{3, 10, 7},           {0, 10, 10}, {std::nullopt, 10, 0},
                 {3, std::nullopt, 0}, {10, 10, 0}, {11, 10, 0}};
    for (const auto& [start, end, durationUs] : cases) {
        TestStore store;
        EXPECT_TRUE(store.take(timed(start, end)));
        EXPECT_EQ(store.initRecord.durationUs, durationUs);
    }
}

TEST(Decoding, ALaterMessageReplacesASingleRecord) {
    TestStore store;
    store.take(
        message(MethodType::Init, "unread", 5, {event("old"), ofType(initEventType, event("init"))}, 1));
    store.take(
        message(MethodType::Init, "unread", 6, {event("new"), ofType(initEventType, event("init"))}, 2));
    EXPECT_TRUE(store.hasInitRecord);
    EXPECT_FALSE(store.hasInitEvents);
    EXPECT_EQ(store.initRecord.durationUs, 6U);
    EXPECT_EQ(store.initRecord.timestamp, 2U);
    EXPECT_EQ(inLine(store.initRecord.events), "new= init=");
    EXPECT_TRUE(store.initRecord.message.empty());

    store.take(message(MethodType::DeInit, std::string("bye\0bye", 7), 3, {event("d")}));
    store.take(withoutText(message(MethodType::DeInit, "", 4)));
    EXPECT_EQ(store.deInitRecord.message, "bye");
    EXPECT_EQ(store.deInitRecord.durationUs, 4U);
    EXPECT_TRUE(store.deInitRecord.events.empty());

    store.take(message(MethodType::ExecuteOverall, "", 8, {event("duration", number(9))}));
    store.take(message(MethodType::DynamicLibLoad, "", 2, {event("load", number(2))}));
    EXPECT_TRUE(store.hasExecuteOverall && store.hasLibLoad);
    EXPECT_EQ(inLine(store.executeOverallRecord.events), "duration=9");
    EXPECT_EQ(inLine(store.libLoadRecord.events), "load=2");
}

TEST(Decoding, ComposedGraphsAddUp) {
    TestStore store;
    store.take(message(MethodType::ComposeGraphs, "a", 10, {}, 0));
    store.take(message(MethodType::ComposeGraphs, "", 1, {}, 5));
    store.take(withoutText(message(MethodType::ComposeGraphs, "", 2, {}, 7)));
    store.take(message(MethodType::ComposeGraphs, "b", 20, {}, 9));
    EXPECT_EQ(store.composeGraphNames, "a; b");
    EXPECT_EQ(store.composeDurationUs, 33U);
    EXPECT_EQ(store.composeTimestamp, 5U);
}

TEST(Decoding, GraphsKeepTheOrderOfTheirFirstAppearance) {
    TestStore store;
    for (const char* const graph : {"g2", "g1", "g2", "", "G1"}) {
        EXPECT_TRUE(store.take(message(MethodType::Execute, graph, 5)));
    }
    ASSERT_EQ(store.executeRecords.size(), 4U);
    EXPECT_EQ(store.executeRecords[0].graphName, "g2");
    EXPECT_EQ(store.executeRecords[0].records.size(), 2U);
    EXPECT_EQ(store.executeRecords[1].graphName, "g1");
    EXPECT_EQ(store.executeRecords[2].graphName, "");
    EXPECT_EQ(store.executeRecords[3].graphName, "G1");
}

TEST(Decoding, MethodsOfAGraphNeedItsName) {
    for (const MethodType type :
         {MethodType::Execute, MethodType::ExecuteAsync, MethodType::Finalize, MethodType::GraphEvents,
          MethodType::ApplyBinarySection, MethodType::FinalizeAfterTensorUpdates}) {
        TestStore store;
        const auto init = ofType(initEventType, event("init"));
        EXPECT_FALSE(store.take(withoutText(message(type, "", 5, {init, event("e")}))));
        EXPECT_FALSE(store.hasInitEvents || store.hasFinalize || store.hasFinalizeEvents);
        EXPECT_TRUE(store.executeRecords.empty() && store.finalizeRecords.empty());
        EXPECT_EQ(store.asyncExecute, type == MethodType::ExecuteAsync);
    }
}

TEST(Decoding, InitEventsComeFromTheLatestMessageThatCanHaveThem) {
    TestStore store;
    store.take(
        message(MethodType::Execute, "net", 5, {event("a"), ofType(initEventType, event("i")), event("b")}));
    EXPECT_EQ(inLine(store.initEvents), "i=");
    EXPECT_EQ(inLine(store.executeRecords[0].records[0].events), "a= b=");
    store.take(message(MethodType::ApplyBinarySection, "net", 5, {ofType(initEventType, event("kept"))}));
    EXPECT_EQ(inLine(store.initEvents), "i=");
    EXPECT_EQ(inLine(store.applyBinarySectionRecords[0].records[0].events), "kept=");
    store.take(message(MethodType::Finalize, "net", 5, {event("f")}));
    EXPECT_TRUE(store.hasInitEvents);
    EXPECT_TRUE(store.initEvents.empty());
}

TEST(Decoding, FinalizeKeepsOneRecordForEachGraph) {
    TestStore store;
    store.take(message(MethodType::Finalize, "g1", 5, {event("first")}));
    store.take(message(MethodType::Finalize, "g2", 6));
    store.take(message(MethodType::Finalize, "g1", 7, {}, 77));
    ASSERT_EQ(store.finalizeRecords.size(), 2U);
    EXPECT_EQ(store.finalizeRecords[0].record.durationUs, 7U);
    EXPECT_EQ(store.finalizeRecords[0].record.timestamp, 77U);
    EXPECT_TRUE(store.finalizeRecords[0].record.events.empty())
        << "replaced by a later message without events";
    EXPECT_TRUE(store.hasFinalize && store.hasFinalizeEvents);
}

TEST(Decoding, GraphEventsFillExecutionsWithoutEventsFromTheFront) {
    TestStore store;
    for (const std::uint64_t durationUs : {1U, 2U, 3U}) {
        store.take(message(MethodType::Execute, "net", durationUs));
    }
    for (const std::uint64_t value : {10U, 20U, 30U, 40U}) {
        store.take(message(MethodType::GraphEvents, "net", 99, {ofType(200, event("e", number(value)))}));
    }
    const auto& records = store.executeRecords[0].records;
    ASSERT_EQ(records.size(), 4U);
    for (std::size_t index = 0; index < records.size(); ++index) {
        EXPECT_EQ(inLine(records[index].events), "e=" + std::to_string((index + 1) * 10));
        EXPECT_EQ(records[index].durationUs, index == 3 ? 0 : index + 1);
        EXPECT_EQ(records[index].timestamp, index == 3 ? 0U : 1000U);
    }
    store.take(message(MethodType::Execute, "net", 5));
    store.take(message(MethodType::GraphEvents, "net", 0, {event("late", number(50))}));
    EXPECT_EQ(inLine(records[4].events), "late=50");
    EXPECT_EQ(records[4].durationUs, 5U);
}

TEST(Decoding, GraphEventsAreFiledByType) {
    TestStore store;
    store.take(message(MethodType::GraphEvents, "i", 0, {ofType(initEventType, event("i"))}));
    EXPECT_TRUE(store.executeRecords.empty());
    store.take(
        message(MethodType::GraphEvents, "net", 0,
                {event("x1"), ofType(finalizeEventType, event("f1")), ofType(initEventType, event("i2")),
                 event("x2"), ofType(finalizeEventType, event("f2"))}));
    EXPECT_EQ(inLine(store.initEvents), "i2=");
    EXPECT_EQ(inLine(store.finalizeRecords[0].record.events), "f1= f2=");
    EXPECT_EQ(inLine(store.executeRecords[0].records[0].events), "x1= x2=");
    EXPECT_FALSE(store.hasFinalize);
    store.take(message(MethodType::GraphEvents, "other", 0, {event("x")}));
    EXPECT_EQ(store.finalizeRecords.size(), 2U)
        << "once there are events of finalization, every graph gets its entry";
}

TEST(Decoding, FinalizeAfterTensorUpdatesNamesTheGraphBeforeTheBracket) {
    TestStore store;
    const char* const texts[] = {"net [3]", "net", "net[3]", " [3]", "[", "net [1] [2]"};
    for (const char* const text : texts) {
        store.take(message(MethodType::FinalizeAfterTensorUpdates, text, 5));
    }
    const GraphRecordList& graphs = store.finalizeAfterTensorUpdatesRecords;
    ASSERT_EQ(graphs.size(), 4U);
    EXPECT_EQ(graphs[0].graphName, "net");
    ASSERT_EQ(graphs[0].records.size(), 3U);
    EXPECT_EQ(graphs[0].records[0].message, "net [3]");
    EXPECT_EQ(graphs[0].records[2].message, "net [1] [2]");
    EXPECT_EQ(graphs[1].graphName, "net[3]");
    EXPECT_EQ(graphs[2].graphName, "");
    EXPECT_EQ(graphs[3].graphName, "[");
}

TEST(Decoding, ContextMethodsKeepTheLatestOrAll) {
    TestStore store;
    store.take(message(MethodType::ContextGetBinary, "late", 1, {event("unread")}));
    store.take(message(MethodType::ContextGetBinarySize, "s", 2));
    store.take(withoutText(message(MethodType::ContextGetBinary, "", 3)));
    for (const std::uint64_t durationUs : {4U, 5U}) {
        store.take(message(MethodType::ContextGetBinarySectionSize, "section", durationUs));
    }
    ASSERT_EQ(store.contextRetrieval.size(), 2U);
    EXPECT_EQ(store.contextRetrieval[0].name, "CONTEXT GET BINARY");
    EXPECT_EQ(store.contextRetrieval[0].record.durationUs, 3U);
    EXPECT_TRUE(store.contextRetrieval[0].record.message.empty());
    EXPECT_TRUE(store.contextRetrieval[0].record.events.empty());
    EXPECT_EQ(store.contextRetrieval[1].name, "CONTEXT GET BINARY SIZE");
    ASSERT_EQ(store.contextSectionRetrieval.size(), 1U);
    EXPECT_EQ(store.contextSectionRetrieval[0].graphName, "CONTEXT GET BINARY SECTION SIZE");
    EXPECT_EQ(store.contextSectionRetrieval[0].records.size(), 2U);
    EXPECT_EQ(store.contextSectionRetrieval[0].records[1].message, "section");
}

TEST(Decoding, UpdateBinarySectionKeepsTheLatestMessageUnderNoName) {
    TestStore store;
    store.take(withoutText(message(MethodType::UpdateBinarySection, "", 1, {event("old")})));
    store.take(message(MethodType::UpdateBinarySection, "unread", 2, {event("new")}));
    ASSERT_EQ(store.updateBinarySectionRecords.size(), 1U);
    EXPECT_EQ(store.updateBinarySectionRecords[0].name, "");
    EXPECT_EQ(store.updateBinarySectionRecords[0].record.durationUs, 2U);
    EXPECT_EQ(inLine(store.updateBinarySectionRecords[0].record.events), "new=");
}

TEST(Decoding, TheSelectorDecidesOnTheValue) {
    const auto selected = [](std::uint32_t selector, test::Value value) {
        test::Event made = event("e", std::move(value));
        made.valueSelector = selector;
        return made;
    };
    const struct {
        test::Event event;
        ValueKind kind;
        std::string text;
    } cases[] = {
        {event("e"), ValueKind::unset, ""},
        {event("e", std::int64_t{-3}), ValueKind::int64, "-3"},
        {event("e", number(18446744073709551615U)), ValueKind::uint64, "18446744073709551615"},
        {event("e", 2.5F), ValueKind::float32, "2.500000"},
        {event("e", -0.125), ValueKind::float64, "-0.125000"},
        {event("e", std::string("abc\0def", 7)), ValueKind::text, "abc"},
        {event("e", samplelog::Bytes{1, 2}), ValueKind::unset, ""},
        {selected(0, number(5)), ValueKind::unset, ""},
        {selected(1, {}), ValueKind::int64, "0"},
        {selected(2, {}), ValueKind::uint64, "0"},
        {selected(3, {}), ValueKind::float32, "0.000000"},
        {selected(4, {}), ValueKind::unset, ""},
        {selected(5, {}), ValueKind::float64, "0.000000"},
        {selected(6, {}), ValueKind::unset, ""},
        {selected(7, number(5)), ValueKind::unset, ""},
        {selected(2, std::int64_t{4}), ValueKind::uint64, "0"},
    };
    for (const auto& [source, kind, text] : cases) {
        TestStore store;
        store.take(message(MethodType::Init, "", 0, {source}));
        const EventValue value = store.initRecord.events[0].value;
        EXPECT_EQ(value.kind, kind);
        EXPECT_EQ(formatEventValue(value), text);
    }
}

TEST(Decoding, AFloatLeavesTheHighBytesOfThePayloadClear) {
    TestStore store;
    store.take(message(MethodType::Init, "", 0, {event("e", 1.5F)}));
    EXPECT_EQ(store.initRecord.events[0].value.payload, 0x3FC00000U);
}

TEST(Decoding, AnEventTreeComesOutInTheOrderOfTheLog) {
    TestStore store;
    test::Event nameless;
    nameless.unit = samplelog::Unit::cycles;
    nameless.subEvents = {event("b", number(1), {event("c", number(2)), event("d", number(3))}), event("e")};
    store.take(message(MethodType::Init, "", 0,
                       {nameless, test::object("o", {7, 8, 9}, "o.bin"), event(std::string("cut\0off", 7))}));
    const EventList events = store.initRecord.events;
    EXPECT_EQ(inLine(events), "null=(b=1(c=2 d=3) e=) o= cut=");
    EXPECT_EQ(events[0].unit, EventUnit::cycles);
    EXPECT_EQ(events[0].occurrences, 1U);
    EXPECT_TRUE(events[0].objectBytes().empty());
    ASSERT_EQ(events[1].objectBytes().size(), 3U);
    EXPECT_EQ(std::to_integer<int>(events[1].objectBytes()[2]), 9);
    EXPECT_EQ(events[1].objectFileName(), "o.bin");
}

}  // namespace
}  // namespace zeb::profiling
