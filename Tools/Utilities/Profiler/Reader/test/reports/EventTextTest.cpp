// Values, units and events as text.

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <locale>

#include "reports/EventText.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::message;
using test::MethodType;
using test::number;

TEST(EventText, FollowsKindAndUnit) {
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
        {562, std::bit_cast<std::uint32_t>(0.1F) | 0xFFFF'FFFF'0000'0000U, "0.100000"},
        {612, std::bit_cast<std::uint64_t>(1e21), "1000000000000000000000.000000"},
        {612, 0x8000'0000'0000'0000U, "-0.000000"},
        {612, std::bit_cast<std::uint64_t>(-std::numeric_limits<double>::infinity()), "-inf"},
        {612, 0xFFF8'0000'0000'0000U, "-nan"},
        {1544, EventValue::ofText("a,b\n").payload, "a,b\n"},
        {2147483647, payload, ""},
        {101, payload, ""},
    };
    for (const auto& [kind, bits, text] : cases) {
        EXPECT_EQ(formatEventValue({static_cast<ValueKind>(kind), bits}), text) << "kind " << kind;
    }
    EXPECT_EQ(formatEventValue(EventValue::ofDouble(-std::numeric_limits<double>::max())).size(), 317U);
}

TEST(EventText, NamesTheUnitOfANumberInTheLog) {
    const struct {
        std::uint32_t number;
        const char* console;
        const char* csv;
    } cases[] = {{0, " us", "US"},           {1, " us", "US"},       {2, " bytes", "BYTES"},
                 {3, " cycles", "CYCLES"},   {4, " count", "COUNT"}, {5, " object", ""},
                 {6, " ", "NONE"},           {7, " us", "US"},       {0x102, " us", "US"},
                 {0xFFFF'FFFFU, " us", "US"}};
    for (const auto& [number, console, csv] : cases) {
        EXPECT_EQ(unitSuffix(unitOf(number)), console) << number;
        EXPECT_EQ(unitCsvText(unitOf(number)), csv) << number;
    }
}

test::Event objectAbove(test::Event below) {
    test::Event made = test::object("object", {1});
    made.subEvents = {std::move(below)};
    return made;
}

// Asks for every level of the tree, like an adapter of a reader.
class Counting final : public ZebProfileLogReader {
public:
    using ZebProfileLogReader::ZebProfileLogReader;
    void printEvent(std::ostream& out, const EventList& events, std::uint64_t level) override {
        levels += std::to_string(level);
        ZebProfileLogReader::printEvent(out, events, level);
    }
    std::string levels;
};

// What a stream of a host may have.
class Grouping final : public std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
};

TEST(Events, HaveALineAtEveryLevelAndCsvRowsOnTwoButObjectsHaveNone) {
    test::Loaded<Counting> loaded({message(
        MethodType::Init, "", 1,
        {event("parent", number(1),
               {event("child, first", 2.5, {event("grandchild")}), objectAbove(event("below", number(6)))}),
         objectAbove(event("below object", number(4), {event("deep", number(5))}))})});
    const EventList events = loaded.reader.store().initRecord.events;
    std::ostringstream out;
    loaded.reader.printEvent(out, events, 1);
    out << 2.75;  // as precise as the values are printed
    EXPECT_EQ(out.str(),
              "    Backend (parent): 1 us\n        child, first: 2.500000 us\n            grandchild:  us\n"
              "            below: 6 us\n        below object: 4 us\n            deep: 5 us\n3");
    EXPECT_EQ(loaded.reader.levels, "123434234") << "through the virtual operation";
    std::ostringstream csv;
    csv.imbue(std::locale(std::locale::classic(), new Grouping));
    csv << std::hex << std::showbase << std::setfill('*') << std::setw(30);
    loaded.reader.writeEventCsv(csv, events, 7700, "MSG");
    EXPECT_EQ(csv.str(),
              "7700,MSG,1,US,BACKEND,ROOT,parent\n7700,MSG,2.500000,US,BACKEND,SUB-EVENT,child, first\n"
              "7700,MSG,4,US,BACKEND,SUB-EVENT,below object\n");
}

}  // namespace
}  // namespace zeb::profiling
