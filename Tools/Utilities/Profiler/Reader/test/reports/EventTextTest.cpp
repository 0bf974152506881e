// Values, units and events as text.

#include <gtest/gtest.h>

#include <limits>

#include "reports/EventText.h"
#include "support/TestReader.h"
#include "support/TestStore.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::inUnit;
using test::message;
using test::MethodType;
using test::number;
using test::object;

TEST(EventValueText, FollowsTheKind) {
    constexpr std::uint64_t payload = 0x89AB'CDEF'F654'B281U;
    const struct {
        int kind;
        std::uint64_t payload;
        const char* text;
    } cases[] = {
        {8, payload, "-127"},
        {22, payload, "-19839"},
        {50, payload, "-162221439"},
        {100, payload, "-8526495038982278527"},
        {264, payload, "129"},
        {278, payload, "45697"},
        {306, payload, "4132745857"},
        {356, payload, "9920249034727273089"},
        {550, payload, "-19839"},
        {1288, payload, "129"},
        {562, std::bit_cast<std::uint32_t>(2.5F), "2.500000"},
        {562, std::bit_cast<std::uint32_t>(0.1F) | 0xFFFF'FFFF'0000'0000U, "0.100000"},
        {562, std::bit_cast<std::uint32_t>(16777217.0F), "16777216.000000"},
        {612, std::bit_cast<std::uint64_t>(-2.5), "-2.500000"},
        {612, std::bit_cast<std::uint64_t>(1e21), "1000000000000000000000.000000"},
        {1544, EventValue::ofText("a,b\n").payload, "a,b\n"},
        {2147483647, payload, ""},
        {0, payload, ""},
        {101, payload, ""},
        {-1, payload, ""},
    };
    for (const auto& [kind, bits, text] : cases) {
        EXPECT_EQ(formatEventValue({static_cast<ValueKind>(kind), bits}), text) << "kind " << kind;
    }
}

TEST(EventValueText, NeverCutsANumber) {
    const std::string text = formatEventValue(EventValue::ofDouble(-std::numeric_limits<double>::max()));
    EXPECT_EQ(text.size(), 1U + 309U + 7U);
    EXPECT_EQ(text.substr(0, 10), "-179769313");
}

TEST(UnitTexts, AreThoseOfTheirCode) {
    const struct {
        std::uint32_t unit;
        const char* suffix;
        const char* csv;
    } cases[] = {
        {0, " us", "US"},       {1, " us", "US"}, {2, " bytes", "BYTES"}, {3, " cycles", "CYCLES"},
        {4, " count", "COUNT"}, {6, " ", "NONE"}, {7, " us", "US"},       {0xFFFF'FFFF, " us", "US"},
    };
    for (const auto& [unit, suffix, csv] : cases) {
        EXPECT_EQ(unitSuffix(static_cast<EventUnit>(unit)), suffix);
        EXPECT_EQ(unitCsvText(static_cast<EventUnit>(unit)), csv);
    }
    EXPECT_EQ(unitSuffix(EventUnit::object), " object");
}

TEST(FindEventValue, GoesDepthFirstAndPassesOverObjects) {
    const struct {
        const char* rule;
        std::vector<test::Event> events;
        std::optional<std::string> value;
    } cases[] = {
        {"nothing in an empty list", {}, {}},
        {"the whole name counts", {event("wante", number(1)), event("wanted2"), event("Wanted")}, {}},
        {"an event without a value is found", {event("wanted")}, ""},
        {"the first one wins", {event("wanted", number(1)), event("wanted", number(2))}, "1"},
        {"a parent comes before its children",
         {event("wanted", number(1), {event("wanted", number(2))})},
         "1"},
        {"a child comes before the next event",
         {event("a", {}, {event("b", {}, {event("wanted", number(3))})}), event("wanted", number(1))},
         "3"},
        {"an object is no match", {object("wanted", {1})}, {}},
        {"what is below an object is",
         {[] {
             test::Event parent = object("wanted", {1});
             parent.subEvents = {event("wanted", std::string("below"))};
             return parent;
         }()},
         "below"},
    };
    for (const auto& [rule, events, value] : cases) {
        test::TestStore store;
        store.take(message(MethodType::Init, "", 1, events));
        EXPECT_EQ(findEventValue("wanted", store.initRecord.events), value) << rule;
    }
}

// A tree with objects at all levels, and one of each kind of row.
std::vector<test::Event> tree() {
    test::Event hidden = object("hidden", {1});
    hidden.subEvents = {event("below object", number(4), {event("deep", number(5))})};
    test::Event hiddenChild = object("hidden child", {1});
    hiddenChild.subEvents = {event("below child", number(6))};
    return {
        inUnit(samplelog::Unit::cycles,
               event("parent", number(1), {event("child, first", 2.5, {event("grandchild")}), hiddenChild})),
        hidden, inUnit(samplelog::Unit::none, event("last", std::string("text")))};
}

TEST(Events, ArePrintedAsATreeThatObjectsHaveNoLineIn) {
    test::Loaded<ZebProfileLogReader> loaded({message(MethodType::Init, "", 1, tree())});
    const EventList events = loaded.reader.store().initRecord.events;
    std::ostringstream out;
    loaded.reader.printEvent(out, events, 1);
    out << 2.75;
    EXPECT_EQ(out.str(),
              "    Backend (parent): 1 cycles\n"
              "        child, first: 2.500000 us\n"
              "            grandchild:  us\n"
              "            below child: 6 us\n"
              "        below object: 4 us\n"
              "            deep: 5 us\n"
              "    Backend (last): text \n"
              "3");
}

TEST(Events, HaveCsvRowsOnTwoLevels) {
    test::Loaded<ZebProfileLogReader> loaded({message(MethodType::Init, "", 1, tree())});
    std::ostringstream out;
    loaded.reader.writeEventCsv(out, loaded.reader.store().initRecord.events, 77, "MSG");
    EXPECT_EQ(out.str(),
              "77,MSG,1,CYCLES,BACKEND,ROOT,parent\n"
              "77,MSG,2.500000,US,BACKEND,SUB-EVENT,child, first\n"
              "77,MSG,4,US,BACKEND,SUB-EVENT,below object\n"
              "77,MSG,text,NONE,BACKEND,ROOT,last\n");
}

// An adapter of a reader is asked for every level of the tree.
TEST(Events, ArePrintedThroughTheVirtualOperation) {
    class Counting final : public ZebProfileLogReader {
    public:
        using ZebProfileLogReader::ZebProfileLogReader;
        void printEvent(std::ostream& out, const EventList& events, std::uint64_t level) override {
            out << level;
            ZebProfileLogReader::printEvent(out, events, level);
        }
    };
    test::Loaded<Counting> loaded({message(MethodType::Init, "", 1, {event("a", {}, {event("b")})})});
    std::ostringstream out;
    loaded.reader.printEvent(out, loaded.reader.store().initRecord.events, 1);
    EXPECT_EQ(out.str(), "1    Backend (a):  us\n2        b:  us\n3");
}

}  // namespace
}  // namespace zeb::profiling
