#include <gtest/gtest.h>

#include "text/Utf8.h"

namespace zeb::profiling {
namespace {

TEST(Utf8, LongTextsLoseTheirMiddleAndNoPartOfACharacter) {
    EXPECT_EQ(cutInMiddle("0123456789abcdef", 16), "0123456789abcdef");
    EXPECT_EQ(cutInMiddle("0123456789abcdefg", 16), "012345…bcdefg");
    EXPECT_EQ(cutInMiddle("01234é-----é23456", 16), "01234…23456");
    EXPECT_EQ(cutInMiddle("012345層------層345678", 16), "012345…345678");
    EXPECT_EQ(cutInMiddle(std::string(100, '\x80'), 16).size(), 3 + 3 + 3U);
}

}  // namespace
}  // namespace zeb::profiling
