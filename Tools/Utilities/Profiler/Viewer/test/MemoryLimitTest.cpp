#include <gtest/gtest.h>

#include "MemoryLimit.h"

namespace zeb::viewer {
namespace {

TEST(MemoryLimit, TakesSizesAsUsersWriteThem) {
    const struct {
        const char* text;
        std::uint64_t bytes;  // 0: no size
    } cases[] = {
        {"1", 1},
        {"1000", 1000},
        {"2K", 2048},
        {"3m", 3 << 20U},
        {"4G", std::uint64_t{4} << 30U},
        {"9223372036854775807", 9223372036854775807U},
        {"8589934591G", std::uint64_t{8589934591} << 30U},
        {"9223372036854775808", 0},
        {"8589934592G", 0},
        {"18446744073709551616", 0},
        {"0", 0},
        {"0G", 0},
        {"", 0},
        {"G", 0},
        {"-1", 0},
        {"+1", 0},
        {" 1", 0},
        {"1 G", 0},
        {"1GB", 0},
        {"1.5G", 0},
        {"0x10", 0},
        {"1T", 0},
        {"1*", 0},
    };
    for (const auto& [text, bytes] : cases) {
        const auto size = parseMemorySize(text);
        EXPECT_EQ(size ? size->bytes : 0, bytes) << text;
        EXPECT_EQ(size ? size->text : text, text);
    }
}

TEST(MemoryLimit, WritesSizesInTheLargestUnitThatDividesThem) {
    const struct {
        std::uint64_t bytes;
        const char* text;
    } cases[] = {{1, "1"}, {1023, "1023"}, {1024, "1K"}, {1536, "1536"}, {3 << 20U, "3M"}, {1 << 30U, "1G"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(memorySizeOf(bytes).text, text);
    }
}

}  // namespace
}  // namespace zeb::viewer
