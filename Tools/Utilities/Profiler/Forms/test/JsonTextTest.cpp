#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "forms/json/JsonText.h"

namespace zeb::forms {
namespace {

TEST(JsonText, EveryByteComesOutAsJsonTakesIt) {
    const struct {
        std::string text;
        std::string json;
    } cases[] = {
        {"", R"("")"},
        {"conv_1/relu é 層 \U0001F600", R"("conv_1/relu é 層 😀")"},
        {R"(say "a\b")", R"("say \"a\\b\"")"},
        {"a\nb\tc\r", R"("a\nb\tc\u000d")"},
        {std::string("\0\x1B[31m\x7F", 7), R"("\u0000\u001b[31m\u007f")"},
        {"\x80z\xFFz", "\"\uFFFDz\uFFFDz\""},
        {"cut \xE5\xB1", "\"cut \uFFFD\uFFFD\""},
        {"too long \xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAF",
         "\"too long "
         "\uFFFD\uFFFD"
         "\uFFFD\uFFFD\uFFFD"
         "\uFFFD\uFFFD\uFFFD\uFFFD\""},
        {"half \xED\xA0\x80", "\"half \uFFFD\uFFFD\uFFFD\""},
        {"last \xF4\x8F\xBF\xBF behind \xF4\x90\x80\x80",
         "\"last \U0010FFFF behind \uFFFD\uFFFD\uFFFD\uFFFD\""},
        {"\xE5(\xB1", "\"\uFFFD(\uFFFD\""},
    };
    for (const auto& [text, expected] : cases) {
        std::string json = "before ";
        appendJsonText(json, text);
        EXPECT_EQ(json, "before " + expected);
    }
}

template <typename Number>
std::string jsonOf(Number value) {
    std::string json;
    appendJsonNumber(json, value);
    return json;
}

TEST(JsonText, NumbersThatADoubleCannotHoldAreStrings) {
    EXPECT_EQ(jsonOf(std::uint64_t{0}), "0");
    EXPECT_EQ(jsonOf(std::uint64_t{9'007'199'254'740'992U}), "9007199254740992");
    EXPECT_EQ(jsonOf(std::uint64_t{9'007'199'254'740'993U}), "\"9007199254740993\"");
    EXPECT_EQ(jsonOf(std::int64_t{-9'007'199'254'740'992}), "-9007199254740992");
    EXPECT_EQ(jsonOf(std::numeric_limits<std::int64_t>::min()), "\"-9223372036854775808\"");
    EXPECT_EQ(jsonOf(0.1F), "0.1");
    EXPECT_EQ(jsonOf(-1.0e300), "-1e+300");
    EXPECT_EQ(jsonOf(std::numeric_limits<double>::quiet_NaN()), "\"nan\"");
    EXPECT_EQ(jsonOf(-std::numeric_limits<float>::infinity()), "\"-inf\"");
}

}  // namespace
}  // namespace zeb::forms
