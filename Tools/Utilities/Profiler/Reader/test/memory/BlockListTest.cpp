#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "memory/BlockList.h"
#include "support/AllocationFault.h"

namespace zeb::profiling {
namespace {

struct Triple {
    std::uint32_t first;
    std::uint32_t second;
    std::uint32_t third;
};

std::uint32_t numberIn(std::uint32_t entry) {
    return entry;
}
std::uint32_t numberIn(const Triple& entry) {
    return entry.third;
}

template <typename Entry>
void expectNumbers(const BlockList<Entry>& list, std::uint32_t count) {
    ASSERT_EQ(list.size(), count);
    std::uint32_t number = 0;
    for (const Entry& entry : list) {
        ASSERT_EQ(numberIn(entry), number);
        ASSERT_EQ(&entry, &list[number]);
        ++number;
    }
    EXPECT_EQ(number, count);
}

// One size divides a block, the other doesn't.
TEST(BlockList, KeepsItsEntriesOverAllBoundaries) {
    BlockList<std::uint32_t> numbers;
    BlockList<Triple> triples;
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(numbers.begin(), numbers.end());
    for (std::uint32_t number = 0; number < 100'000; ++number) {
        EXPECT_EQ(numbers.add(number), number);
        EXPECT_EQ(triples.add({~number, 0, number}).first, ~number);
        if ((number & (number + 1)) == 0) {  // full
            expectNumbers(numbers, number + 1);
            expectNumbers(triples, number + 1);
        }
    }
    expectNumbers(numbers, 100'000);
    expectNumbers(triples, 100'000);
    EXPECT_EQ(numbers.front(), 0U);
    EXPECT_EQ(numbers.back(), 99'999U);
}

TEST(BlockList, IsAsItWasWhenItCannotGrow) {
    BlockList<std::uint32_t> numbers;
    for (std::uint32_t number = 0; number < 70'000; ++number) {
        for (std::size_t failing = 1;; ++failing) {
            const test::AllocationFault fault(failing, test::FaultKind::single);
            try {
                numbers.makeRoom();
                break;
            } catch (const std::bad_alloc&) {
                ASSERT_EQ(numbers.size(), number);
            }
        }
        const test::AllocationFault fault(1, test::FaultKind::single);
        numbers.add(number);
        ASSERT_FALSE(fault.hasStruck()) << "there is room";
    }
    expectNumbers(numbers, 70'000);
}

}  // namespace
}  // namespace zeb::profiling
