#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "reader/backend/PayloadReader.h"

namespace zeb::profiling {
namespace {

constexpr std::uint64_t huge = std::numeric_limits<std::uint64_t>::max();

std::vector<std::byte> bytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(),
            bytes.end()};  // exactly as long, so that the sanitizer sees what is read behind it
}

TEST(PayloadReader, ReadsNumbersAtAnyPlaceAndNoneThatIsNotWhole) {
    const std::vector<std::byte> bytes = bytesOf("\x01\x82\x03\x84\x05\x86\x07\x88\x09\x8A\x0B");
    const PayloadReader payload(bytes);
    const struct {
        std::uint64_t offset;
        std::uint32_t narrow;
        std::uint64_t wide;
    } cases[] = {
        {0, 0x84038201U, 0x8807860584038201U},
        {1, 0x05840382U, 0x0988078605840382U},
        {3, 0x07860584U, 0x0B8A098807860584U},
        {4, 0x88078605U, 0},
        {7, 0x0B8A0988U, 0},
        {8, 0, 0},
        {11, 0, 0},
        {huge - 3, 0, 0},
        {huge, 0, 0},
    };
    for (const auto& [offset, narrow, wide] : cases) {
        EXPECT_EQ(payload.u32(offset), narrow) << offset;
        EXPECT_EQ(payload.u64(offset), wide) << offset;
    }
    EXPECT_EQ(PayloadReader({}).u32(0), 0U);
}

TEST(PayloadReader, CountsWholeRecordsUpToWhatIsAnnounced) {
    const std::vector<std::byte> bytes(10);
    const PayloadReader payload(bytes);
    const struct {
        std::uint64_t offset;
        std::uint64_t announced;
        std::size_t records;
    } cases[] = {
        {0, huge, 3}, {0, 2, 2},  {1, huge, 3},  {2, huge, 2},    {7, 9, 1},
        {8, 9, 0},    {10, 9, 0}, {11, huge, 0}, {huge, huge, 0},
    };
    for (const auto& [offset, announced, records] : cases) {
        EXPECT_EQ(payload.records(offset, 3, announced), records) << offset;
    }
    EXPECT_TRUE(payload.has(10, 0));
    EXPECT_FALSE(payload.has(10, 1));
    EXPECT_FALSE(payload.has(11, 0));
    EXPECT_FALSE(payload.has(2, huge));
    EXPECT_FALSE(payload.has(huge, 2));
}

TEST(PayloadReader, EndsATextAtItsNulItsLimitOrTheEnd) {
    const std::vector<std::byte> bytes = bytesOf(std::string_view("ab\0cde", 6));
    const PayloadReader payload(bytes);
    const struct {
        std::uint64_t offset;
        std::uint64_t limit;
        std::string_view text;
    } cases[] = {
        {0, huge, "ab"}, {0, 2, "ab"}, {1, 1, "b"},   {0, 0, ""},    {2, huge, ""},    {3, huge, "cde"},
        {3, 2, "cd"},    {5, 9, "e"},  {6, huge, ""}, {7, huge, ""}, {huge, huge, ""},
    };
    for (const auto& [offset, limit, text] : cases) {
        EXPECT_EQ(payload.text(offset, limit), text) << offset << " " << limit;
    }
    EXPECT_EQ(PayloadReader({}).text(0, huge), "");
}

}  // namespace
}  // namespace zeb::profiling
