#include <gtest/gtest.h>

#include "MemoryLimit.h"

namespace zeb::viewer {
namespace {

TEST(MemoryLimit, TakesSizesAsUsersWriteThem) {
    const std::pair<std::string, std::uint64_t> cases[] = {
        {"1", 1},
        {"1000", 1000},
        {"2K", 2048},
        {"3m", 3 << 20U},
        {"4G", std::uint64_t{4} << 30U},
        {"9223372036854775807", 9223372036854775807U},
        {"8589934591G", std::uint64_t{8589934591} << 30U},
    };
    for (const auto& [text, bytes] : cases) {
        const auto size = parseMemorySize(text);
        ASSERT_TRUE(size) << text;
        EXPECT_EQ(size->bytes, bytes) << text;
        EXPECT_EQ(size->text, text);
    }
    for (const char* const text : {"9223372036854775808", "8589934592G", "18446744073709551616", "0", "0G",
                                   "", "G", "-1", "+1", " 1", "1 G", "1GB", "1.5G", "0x10", "1T", "1*"}) {
        EXPECT_FALSE(parseMemorySize(text)) << text;
    }
}

TEST(MemoryLimit, WritesSizesInTheLargestUnitThatDividesThem) {
    const std::pair<std::uint64_t, std::string> cases[] = {
        {1023, "1023"}, {1024, "1K"}, {1536, "1536"}, {3 << 20U, "3M"}, {1 << 30U, "1G"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(memorySizeOf(bytes).text, text);
    }
}

}  // namespace
}  // namespace zeb::viewer
