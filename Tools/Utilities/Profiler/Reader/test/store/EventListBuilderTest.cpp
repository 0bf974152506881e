#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "store/EventListBuilder.h"
#include "support/AllocationFault.h"

namespace zeb::profiling {
namespace {

ProfileEvent numbered(std::uint64_t number) {
    return {StoredText(), 0, EventUnit::count, EventValue::ofUint(number), EventList()};
}

void expectNumbers(const EventList& list, std::uint64_t count) {
    std::uint64_t number = 0;
    for (const ProfileEvent& event : list) {
        ASSERT_EQ(event.value().asNumber(), number++);
    }
    EXPECT_EQ(number, count);
}

// Lists grow beside each other in one arena. The sizes end before, at and behind the ends of rows.
TEST(EventListBuilder, KeepsOrderAndPlacesOverAllRows) {
    for (const std::size_t expected : {0U, 1U, 2U, 7U, 2000U}) {
        for (std::uint64_t count = 0; count < 6000; count += count < 40 ? 1 : 1021) {
            EventArena arena;
            EventListBuilder builder(arena, expected);
            EventListBuilder other(arena, 1);
            EXPECT_EQ(builder.first(), nullptr);
            std::vector<ProfileEvent*> places;
            for (std::uint64_t number = 0; number < count; ++number) {
                places.push_back(&builder.add(numbered(99)));
                other.add(numbered(number));
                EXPECT_EQ(builder.last(), places.back());
            }
            for (std::uint64_t number = 0; number < count; ++number) {
                places[number]->setValue(EventValue::ofUint(number));
                ASSERT_TRUE(number == 0 ? places[0] == builder.first()
                                        : places[number] == EventListBuilder::next(*places[number - 1]));
            }
            const EventList list = builder.finish();
            EXPECT_EQ(list.empty(), count == 0);
            expectNumbers(list, count);
            expectNumbers(other.finish(), count);
        }
    }
}

TEST(EventListBuilder, TakesTheLastEventOfAnotherList) {
    EventArena arena;
    EventListBuilder one(arena, 1);
    one.add(numbered(0));
    const EventList finished = one.finish();
    EventListBuilder builder(arena, 3);
    builder.add(*finished.begin());
    builder.add(numbered(1));
    expectNumbers(builder.finish(), 2);
    expectNumbers(finished, 1);
}

TEST(EventListBuilder, KeepsWhatItHasWhenThereIsNoMemoryForARow) {
    EventArena arena;
    EventListBuilder builder(arena, 1);
    std::size_t failures = 0;
    for (std::uint64_t number = 0; number < 3000; ++number) {
        for (std::size_t failing = 1;; ++failing) {
            const test::AllocationFault fault(failing, test::FaultKind::single);
            try {
                builder.add(numbered(number));
                break;
            } catch (const std::bad_alloc&) {
                ++failures;
                if (number > 0) {
                    ASSERT_EQ(builder.last()->value().asNumber(), number - 1);
                }
            }
        }
    }
    EXPECT_GT(failures, 2U);
    expectNumbers(builder.finish(), 3000);
}

}  // namespace
}  // namespace zeb::profiling
