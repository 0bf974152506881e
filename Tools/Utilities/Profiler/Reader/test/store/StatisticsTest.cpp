#include <gtest/gtest.h>

#include "store/Statistics.h"
#include "support/TestStore.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::inLine;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using test::TestStore;
using Events = std::vector<test::Event>;
using Lines = std::vector<std::string>;

// Executions of one graph with those events, 10 us each.
std::vector<Message> executions(const std::vector<Events>& eventLists,
                                MethodType type = MethodType::Execute) {
    std::vector<Message> messages;
    messages.reserve(eventLists.size());
    for (const Events& events : eventLists) {
        messages.push_back(message(type, "net", 10, events));
    }
    return messages;
}

test::Event objectAbove(Events below) {
    test::Event made = test::object("e", {1});
    made.subEvents = std::move(below);
    return made;
}

std::string averageOf(const std::vector<Events>& eventLists) {
    TestStore store;
    store.takeAll(executions(eventLists));
    return inLine(store.executeAverage[0].record->events);
}

TEST(Statistics, PickDurationsTimestampsAndEvents) {
    const struct {
        std::vector<std::uint64_t> durations;
        std::uint64_t average;
        std::uint64_t max;
        int maxRecord;  ///< position of the record whose timestamp and events are kept, -1 for none
        std::uint64_t min;
        int minRecord;
    } cases[] = {
        {{}, 0, 0, -1, 0, -1},      {{0, 0}, 0, 0, 1, 0, -1},   {{100, 0, 201}, 150, 201, 2, 100, 0},
        {{5, 7, 7}, 6, 7, 2, 5, 0}, {{7, 5, 5}, 5, 7, 0, 5, 2}, {{0, 9}, 9, 9, 1, 9, 1},
    };
    const auto timestampAt = [](std::uint64_t position) { return position == 1 ? 0 : 50 + position; };
    for (const auto& expected : cases) {
        EventArena arena;
        RecordList records;
        for (const std::uint64_t durationUs : expected.durations) {
            const std::uint64_t position = records.countByWalking();
            const std::span<ProfileEvent> events = arena.makeEvents(1);
            events[0] = {arena.keepName("e"), 0, {}, EventValue::ofUint(position), {}};
            records.add({durationUs, timestampAt(position), arena.keepText("text"), EventList(events)},
                        arena);
        }
        const auto expectRecord = [&](const MethodRecord& record, std::uint64_t durationUs, int position) {
            EXPECT_EQ(record.durationUs, durationUs);
            EXPECT_EQ(record.timestamp, position < 0 ? 0U : timestampAt(static_cast<unsigned>(position)));
            EXPECT_EQ(inLine(record.events), position < 0 ? "" : "e=" + std::to_string(position));
            EXPECT_TRUE(record.message.empty());
        };
        expectRecord(*maxRecord(records, arena), expected.max, expected.maxRecord);
        expectRecord(*minRecord(records, arena), expected.min, expected.minRecord);
        const MethodRecord average = *averageRecords(records, arena);
        EXPECT_EQ(average.durationUs, expected.average);
        EXPECT_EQ(average.timestamp, records.empty() ? 0U : records.back().timestamp);
    }
}

TEST(Merging, AveragesEventsByName) {
    const struct {
        const char* rule;
        std::vector<Events> executions;
        const char* average;
    } cases[] = {
        {"a mean over the records that have the event, cut",
         {{event("e", number(10))}, {event("e", number(20))}, {event("e", number(31))}},
         "e=20x3"},
        {"a new name takes its place at the end",
         {{event("a", number(1)), event("b", number(2))}, {event("c", number(9)), event("b", number(4))}},
         "a=1 b=3x2 c=9"},
        {"of two events of one name the first is added to",
         {{event("e", number(1)), event("e", number(5))}, {event("e", number(3)), event("e", number(8))}},
         "e=4x3 e=5"},
        {"names that are new in one record do not merge with each other",
         {{event("a")}, {event("e", number(1)), event("e", number(2))}, {event("e", number(3))}},
         "a= e=2x2 e=2"},
        {"one signed number stays as it is", {{event("e", std::int64_t{-7})}, {}}, "e=-7"},
        {"signed numbers add up as unsigned ones, which wrap",
         {{event("e", std::int64_t{-1})}, {event("e", number(5))}},
         "e=2x2"},
        {"no value counts as 0", {{event("e")}, {event("e")}}, "e=0x2"},
        {"floats add up with floats", {{event("e", 1.5F)}, {event("e", 2.0F)}}, "e=1.750000x2"},
        {"doubles add up", {{event("e", 1.0)}, {event("e", 2.0)}, {event("e", 6.0)}}, "e=3.000000x3"},
        {"texts keep the latest", {{event("e", std::string("a"))}, {event("e", std::string("b"))}}, "e=bx2"},
        {"a number behind a text stands, and numbers behind it make a mean of their own",
         {{event("e", std::string("a"))}, {event("e", number(6))}, {event("e", number(9))}},
         "e=7x3"},
        {"sub-events merge level by level",
         {{event("p", number(1), {event("s", number(4), {event("t", number(1))})})},
          {event("p", number(3), {event("s", number(6), {event("t", number(3))}), event("u", number(8))})}},
         "p=2x2(s=5x2(t=2x2) u=8)"},
        {"sub-events may come in a later record first",
         {{event("p", number(1))}, {event("p", number(3), {event("s", number(6))})}},
         "p=2x2(s=6)"},
        {"objects do not start an entry",
         {{test::object("o", {1}), event("e", number(1))}, {test::object("o", {2})}},
         "e=1"},
        {"objects below an event go along with it",
         {{event("p", number(2), {test::object("o", {1})})},
          {event("p", number(4), {test::object("o", {1}), test::object("n", {1})})}},
         "p=3x2(o=0x2)"},
        {"an object is added to an event of its name",
         {{event("e", number(8))}, {test::object("e", {1})}},
         "e=4x2"},
        {"and so are the events below it",
         {{event("e", number(8), {event("s", number(2))})}, {objectAbove({event("s", number(4))})}},
         "e=4x2(s=3x2)"},
        {"a mean behind a change of kind is one of the values since",
         {{event("e", number(4))}, {event("e", number(4))}, {event("e", 1.0F)}, {event("e", 2.0F)}},
         "e=1.500000x4"},
    };
    for (const auto& [rule, eventLists, average] : cases) {
        EXPECT_EQ(averageOf(eventLists), average) << rule;
    }
}

TEST(Merging, WideListsMergeLikeNarrowOnesAndLeaveTheRecordsAsTheyAre) {
    const std::uint64_t width = 100;
    Events forwards;
    Events backwards;
    std::string expected;
    for (std::uint64_t index = 0; index < width; ++index) {
        forwards.push_back(event("e" + std::to_string(index), number(index)));
        backwards.push_back(event("e" + std::to_string(width - 1 - index), number(width)));
        expected += (index == 0 ? "e" : " e") + std::to_string(index) + "=" +
                    std::to_string((index + width) / 2) + "x2";
    }
    EXPECT_EQ(averageOf({forwards, backwards}), expected);
    TestStore store;
    store.takeAll(executions({{event("p", number(1), {event("s", number(4))})},
                              {event("p", number(5), {event("s", number(8))})}}));
    EXPECT_EQ(inLine(store.executeRecords[0].records.front().events), "p=1(s=4)");
    EXPECT_EQ(inLine(store.executeMax[0].record->events), "p=5(s=8)");
}

// Long enough for every list in it to take several blocks or rows.
TEST(Merging, NewNamesOfLaterRecordsAndGraphsComeInTheirOrder) {
    constexpr std::uint64_t records = 2500;
    constexpr std::uint64_t newOnes = 8;
    TestStore store;
    std::string below;
    std::string behind;
    Events again;
    for (std::uint64_t record = 0; record < records; ++record) {
        const std::string name = "below " + std::to_string(record);
        Events events = {event("all", number(record), {event(name, number(record)), event("last")})};
        below += (record < 2 ? "" : " ") + name + "=" + std::to_string(record) +
                 (record == 0 ? " last=0x2500 " : "");
        for (std::uint64_t position = record * newOnes; position < (record + 1) * newOnes; ++position) {
            events.push_back(event(std::to_string(position), number(position)));
            again.push_back(events.back());
            behind += " " + std::to_string(position) + "=" + std::to_string(position) + "x2";
        }
        store.take(message(MethodType::Execute, "net", 10, events));
    }
    constexpr std::size_t graphs = 9000;
    for (std::size_t graph = 1; graph < graphs; ++graph) {
        store.take(message(MethodType::Execute, std::to_string(graph), graph));
    }
    store.takeAll({message(MethodType::Execute, "net", 10, again)});
    EXPECT_EQ(inLine(store.executeAverage[0].record->events), "all=1249x2500(" + below + ")" + behind);
    ASSERT_EQ(store.executeMax.size(), graphs);
    for (std::size_t graph = 1; graph < graphs; ++graph) {
        ASSERT_EQ(store.executeMax[graph].name, std::to_string(graph));
        ASSERT_EQ(store.executeMax[graph].record->durationUs, graph);
    }
}

test::Event wait(std::uint64_t us) {
    return test::ofType(samplelog::queueWaitEventType, event("wait", number(us)));
}

TEST(QueueWaits, AreFoundAmongTheEventsOfAsynchronousRunsAndDirectlyBelow) {
    const std::vector<Events> eventLists = {
        {event("a"), wait(3)}, {event("a", {}, {wait(4)})}, {event("a", {}, {event("b"), wait(5)})}};
    TestStore store;
    EXPECT_EQ(store.takeAll(executions(eventLists, MethodType::ExecuteAsync)), "");
    ASSERT_EQ(store.executeQueueWaits.size(), 1U);
    EXPECT_EQ(store.executeQueueWaits[0].queueWaits, (std::vector<std::uint64_t>{3, 4, 5}));
    EXPECT_EQ(store.executeMaxQueueWaits.at(0).queueWaitUs, 5U) << "of the last of equally slow executions";
    EXPECT_EQ(store.executeMinQueueWaits.at(0).queueWaitUs, 5U);
    TestStore synchronous;
    EXPECT_EQ(synchronous.takeAll(executions({{wait(3), wait(4)}})), "");
    EXPECT_TRUE(synchronous.executeQueueWaits.empty() && synchronous.executeMaxQueueWaits.empty());
    test::Event text = wait(0);
    text.value = std::string("5");
    TestStore ofText;
    ofText.takeAll(executions({{text}}, MethodType::ExecuteAsync));
    EXPECT_EQ(ofText.executeQueueWaits.at(0).queueWaits.at(0), 0U) << "not an address";
}

TEST(QueueWaits, FailPassByPass) {
    const std::string multiple =
        "Multiple queue-wait time events found per execution. Cannot calculate Host Round-Trip excluding "
        "queue wait\n";
    const Lines none = {"5 No queue-wait time event found per execution.",
                        "5 No max queue-wait time event found per execution.",
                        "5 No min queue-wait time event found per execution."};
    TestStore store;
    std::vector<Message> messages = executions({{wait(1)}}, MethodType::ExecuteAsync);
    messages.push_back(message(MethodType::ExecuteAsync, "other", 5, {wait(2)}));
    messages.push_back(
        message(MethodType::ExecuteAsync, "other", 6, {event("a", {}, {event("b", {}, {wait(3)})})}));
    messages.push_back(message(MethodType::ExecuteAsync, "other", 7, {wait(2), event("a", {}, {wait(3)})}));
    const test::CaughtLog log;
    EXPECT_EQ(store.takeAll(messages), multiple) << "of the slowest execution alone";
    EXPECT_TRUE(store.executeQueueWaits.empty()) << "of the graphs before as well";
    EXPECT_TRUE(store.executeMaxQueueWaits.empty());
    EXPECT_EQ(store.executeMinQueueWaits.size(), 2U);
    EXPECT_EQ(log.lines(), Lines{none[0]});
    EXPECT_EQ(TestStore().takeAll(executions({{wait(1), wait(2)}}, MethodType::ExecuteAsync)),
              multiple + multiple + multiple);
    const test::CaughtLog otherLog;
    EXPECT_EQ(TestStore().takeAll(executions({{}}, MethodType::ExecuteAsync)), "");
    EXPECT_EQ(otherLog.lines(), none);
}

TEST(InitRow, ComesFromTheInitMessageOrFromTheStepsBeforeFinalize) {
    std::vector<Message> messages = {message(MethodType::InitStep, "", 5, {}, 11),
                                     message(MethodType::ComposeGraphs, "", 10)};
    const std::pair<Message, std::uint64_t> cases[] = {{message(MethodType::Execute, "", 1), 0},
                                                       {message(MethodType::Finalize, "a", 7), 22},
                                                       {message(MethodType::Init, "", 9, {}, 99), 9}};
    for (const auto& [next, durationUs] : cases) {
        messages.push_back(next);
        TestStore store;
        store.takeAll(messages);
        EXPECT_EQ(store.initDurationUs, durationUs);
        EXPECT_EQ(store.initTimestamp, durationUs == 0 ? 0U : durationUs == 9 ? 99U : 11U);
    }
}

}  // namespace
}  // namespace zeb::profiling
